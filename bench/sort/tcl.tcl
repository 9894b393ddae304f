proc main {} {
    set x 1
    set text ""
    for {set i 0} {$i < 185000} {incr i} {
        set x [expr {($x * 7141 + 54773) % 259200}]
        append text $x
    }
    set text [string range $text 0 1000002]
    for {set i 0} {$i < 4} {incr i} {
        append text $text
    }
    set lines {}
    set size [string length $text]
    for {set at 0} {$at < $size} {incr at 16} {
        lappend lines [string range $text $at [expr {$at + 15}]]
    }
    set lines [lsort $lines]
    puts "[llength $lines] [lindex $lines 0] [lindex $lines 500000] [lindex $lines 1000002]"
}
main
