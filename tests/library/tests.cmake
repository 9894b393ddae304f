# plaincast_test(NAME ROOM...), in alphabetical order of the names.
plaincast_test(BasicFileTest files)
plaincast_test(BasicStreamTest streams)
plaincast_test(BuiltInVariablesTest ScriptEngine3)
plaincast_test(CalendarTest time)
plaincast_test(EngineFaultTest ScriptEngine3)
plaincast_test(CommandAliasTest ScriptEngine3)
plaincast_test(ListTest containers)
plaincast_test(LockTest containers)
plaincast_test(LogMessagesTest logmessages)
plaincast_test(LoggerTest logger)
plaincast_test(PathTreeTest pathtree)
plaincast_test(PathsTest paths)
plaincast_test(PatternMatchTest strings)
plaincast_test(PlainCastTest strings)
plaincast_test(PoolTest containers)
plaincast_test(RbTreeTest containers)
plaincast_test(RegistryTest registry)
plaincast_test(ScriptObjectTest ScriptEngine3)
plaincast_test(ScriptMessagesTest ScriptEngine3 logmessages)
plaincast_test(SetMapTest containers)
plaincast_test(StringFormatTest strings)
plaincast_test(StringNumbersTest strings)
plaincast_test(StringTest strings)
plaincast_test(SystemInfoTest system)
if(WIN32)
    # Requests to stop are signals on the other system only.
    list(APPEND PLAINCAST_LISTED_TESTS ThreadSignalTest.cpp)
else()
    plaincast_test(ThreadSignalTest threads)
endif()
plaincast_test(ThreadTest threads)
plaincast_test(VectorTest containers)
plaincast_test(ZFileTest files)
configure_file(${PROJECT_SOURCE_DIR}/programs/utilities/plaincast/logmsg.conf
    ${CMAKE_CURRENT_BINARY_DIR}/logmsg.conf COPYONLY)  # LogMessagesTest reads it
target_compile_definitions(PlainCastTest PRIVATE
    PLAINCAST_PROGRAM="$<TARGET_FILE:quorel_plaincast>")
add_dependencies(PlainCastTest quorel_plaincast)
# Under Windows the registry is one for all tests: those that write settings or need
# them absent run one after the other.
set_tests_properties(BuiltInVariablesTest LogMessagesTest PathsTest PlainCastTest RegistryTest
    ScriptMessagesTest SystemInfoTest PROPERTIES RESOURCE_LOCK registry)
