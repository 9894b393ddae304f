proc main {} {
    for {set i 0} {$i < 300000} {incr i} {
        set names(name[expr {$i * 7001 % 300000}]) 1
    }
    set place 0
    set sum 0
    foreach name [lsort [array names names]] {
        incr place
        incr sum [expr {$place * [string length $name] % 7}]
    }
    puts "$place $sum"
}
main
