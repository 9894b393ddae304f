proc main {} {
    set a 2
    set b 3
    set total 0
    for {set i 0} {$i < 200000} {incr i} {
        set total [expr {$total + ((($i + 1) * $a - ($i - $b)) * 4 + (($i + 5) * ($a - 7) - (($i - 8) * $b + (10 + $i) * 0.5))) * (($a - 12) * (13 + ($b - (15 - ($a + 17)))))}]
    }
    puts [format "%.0f" $total]
}
main
