proc main {} {
    set text ""
    for {set i 0} {$i < 9375} {incr i} {
        append text "alpha;$i;some text;2026-11-23;01:45;host;17;ok\n"
    }
    for {set i 0} {$i < 5} {incr i} {
        append text $text
    }
    set records {}
    foreach line [lrange [split $text "\n"] 0 end-1] {
        lappend records [split $line ";"]
    }
    set record [lindex $records 123456]
    puts "[llength $records] [llength $record] [lindex $record 1]"
}
main
