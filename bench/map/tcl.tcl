proc main {} {
    for {set i 0} {$i < 500000} {incr i} {
        set word word[expr {$i * 7 % 50000}]
        incr count($word)
    }
    puts "[array size count] $count(word123)"
}
main
