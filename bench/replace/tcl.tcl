proc main {} {
    set text "The quick brown fox is no dog but an old fox 51.\n "
    for {set i 0} {$i < 20} {incr i} {
        append text $text
    }
    set text [string map {fox horse} $text]
    puts -nonewline "[string length $text] "
    set text [string map {horse ox} $text]
    puts -nonewline "[string length $text] "
    set text [string map {{no such word} {}} $text]
    puts [string length $text]
}
main
