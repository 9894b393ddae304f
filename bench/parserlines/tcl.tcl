proc main {} {
    set text "2026-11-23 01:45:10 host01 daemon\[1234\]: INFO  request served, 200 bytes out\n"
    append text "2026-11-23 01:45:11 host02 daemon\[1235\]: ERROR no space left on the device\n"
    for {set i 0} {$i < 19} {incr i} {
        append text $text
    }
    set errors [lsearch -all -inline -glob [split $text "\n"] "*: ERROR*"]
    puts "[string length $text] [llength $errors] [lindex $errors 300000]"
}
main
