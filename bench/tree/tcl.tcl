proc grow {path level} {
    global value children
    for {set i 0} {$i < 1000} {incr i} {
        set child $path.n$i
        lappend children($path) $child
        set value($child) $i
        if {$level < 3 && $i % 100 == 0} {
            grow $child [expr {$level + 1}]
        }
    }
}
proc walk {path} {
    global value children
    set sum 0
    foreach child $children($path) {
        incr sum $value($child)
        if {[info exists children($child)]} {
            incr sum [walk $child]
        }
    }
    return $sum
}
grow "" 1
puts [walk ""]
