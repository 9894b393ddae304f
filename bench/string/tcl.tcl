proc main {} {
    set text ""
    for {set i 0} {$i < 300000} {incr i} {
        append text "piece;"
    }
    puts [string length $text]
}
main
