proc main {} {
    set in [open log.txt rb]
    set out [open hits-tcl.txt wb]
    set hits 0
    while {[gets $in line] >= 0} {
        if {[string match "2026*ERROR*" $line]} {
            puts $out $line
            incr hits
        }
    }
    close $in
    close $out
    puts "$hits [file size hits-tcl.txt]"
}
main
