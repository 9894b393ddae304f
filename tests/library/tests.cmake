# plaincast_test(NAME ROOM...), in alphabetical order of the names.
plaincast_test(PatternMatchTest strings)
plaincast_test(RegistryTest registry)
plaincast_test(StringFormatTest strings)
plaincast_test(StringNumbersTest strings)
plaincast_test(StringTest strings)
plaincast_test(ThreadTest threads)
