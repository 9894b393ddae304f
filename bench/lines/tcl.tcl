proc main {} {
    set in [open log.txt rb]
    while {[gets $in line] >= 0} {
        lappend lines $line
    }
    close $in
    set out [open copy-tcl.txt wb]
    foreach line $lines {
        puts $out $line
    }
    close $out
    puts "[llength $lines] [file size copy-tcl.txt] [lindex $lines 777777]"
}
main
