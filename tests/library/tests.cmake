# plaincast_test(NAME ROOM...), in alphabetical order of the names.
