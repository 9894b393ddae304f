proc main {} {
    set v {}
    for {set i 0} {$i < 1000000} {incr i} {
        lappend v $i
    }
    set sum 0
    foreach x $v {
        incr sum $x
    }
    puts $sum
}
main
