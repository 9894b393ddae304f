proc main {} {
    set text "some text;"
    for {set i 0} {$i < 20} {incr i} {
        append text $text
    }
    set items [split $text ";"]
    if {[lindex $items end] eq ""} {
        set items [lrange $items 0 end-1]
    }
    set total 0
    foreach item $items {
        incr total [string length $item]
    }
    puts "$total [string length $text] [llength $items] [lindex $items 777777]"
}
main
