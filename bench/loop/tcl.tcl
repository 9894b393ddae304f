proc main {} {
    set total 0
    for {set i 0} {$i < 1000000} {incr i} {
        if {$i % 3 == 0} {
            set total [expr {$total + $i * 2}]
        }
        incr total -1
    }
    puts $total
}
main
