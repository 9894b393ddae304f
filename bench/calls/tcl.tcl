proc add {first second} {
    expr {$first + $second}
}
proc main {} {
    set total 0
    for {set i 0} {$i < 500000} {incr i} {
        incr total [add $i 2]
    }
    puts $total
}
main
