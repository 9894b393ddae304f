# plaincast_test(NAME ROOM...), in alphabetical order of the names.
plaincast_test(ArgumentsTest ScriptEngine3)
plaincast_test(BasicFileTest files)
plaincast_test(BasicStreamTest streams)
plaincast_test(BuiltInVariablesTest ScriptEngine3)
plaincast_test(BundleTest bundles)
if(NOT WIN32)
    # With gzip and Python as the other side.
    add_test(NAME BundlePeersTest COMMAND python3 ${PROJECT_SOURCE_DIR}/tests/peers/bundles.py
        $<TARGET_FILE:quorel_plaincast>)
endif()
plaincast_test(CalendarTest time)
plaincast_test(CommandAliasTest ScriptEngine3)
plaincast_test(CommandCasesTest ScriptEngine3 logmessages)
set_tests_properties(CommandCasesTest PROPERTIES ENVIRONMENT TZ=UTC0)
plaincast_test(CommandTableTest ScriptEngine3)
set(program ${PROJECT_SOURCE_DIR}/programs/utilities/plaincast)
target_sources(CommandTableTest PRIVATE ${program}/AppCommands.cpp ${program}/ProcessWait.cpp)
target_include_directories(CommandTableTest PRIVATE ${program})
plaincast_test(ConfPatcherTest config)
if(NOT WIN32)
    # Its long form is a soak test.
    add_test(NAME ConfigSaves COMMAND ${PROJECT_SOURCE_DIR}/tests/soak/config_saves
        $<TARGET_FILE:quorel_plaincast> 15)
endif()
plaincast_test(CryptTest crypt)
plaincast_test(EngineFaultTest ScriptEngine3)
plaincast_test(FileCasesTest ScriptEngine3 logmessages)
plaincast_test(LanguageCasesTest ScriptEngine3 logmessages)
plaincast_test(ListTest containers)
plaincast_test(LockTest containers)
plaincast_test(LogMessagesTest logmessages)
plaincast_test(LoggerTest logger)
if(WIN32)
    # Locks are files on the other system only.
    list(APPEND PLAINCAST_LISTED_TESTS NamedLockFolderTest.cpp)
else()
    plaincast_test(NamedLockFolderTest threads)
endif()
plaincast_test(NamedLockTest processes)
target_compile_definitions(NamedLockTest PRIVATE
    PLAINCAST_PROGRAM="$<TARGET_FILE:quorel_plaincast>")
add_dependencies(NamedLockTest quorel_plaincast quorel_testchild)
if(WIN32)
    # In both directions with the other system's program, where that is built.
    add_test(NAME NetworkPeers COMMAND python3 ${PROJECT_SOURCE_DIR}/tests/peers/network.py
        $<TARGET_FILE:quorel_plaincast> ${PROJECT_SOURCE_DIR}/build/linux/quorel_plaincast)
else()
    add_test(NAME NetworkPeers COMMAND python3 ${PROJECT_SOURCE_DIR}/tests/peers/network.py
        $<TARGET_FILE:quorel_plaincast>)
    # Its long form is a soak test.
    add_test(NAME NetworkSoak COMMAND ${PROJECT_SOURCE_DIR}/tests/soak/network
        $<TARGET_FILE:quorel_plaincast> 300)
    set_tests_properties(NetworkPeers NetworkSoak PROPERTIES LABELS threads)
endif()
plaincast_test(PathOperationsTest paths)
plaincast_test(PathTreeTest pathtree)
if(WIN32)
    # Names, links and pipes that this system does not have.
    list(APPEND PLAINCAST_LISTED_TESTS PathTreesTest.cpp)
else()
    plaincast_test(PathTreesTest paths)
    target_compile_definitions(PathTreesTest PRIVATE
        PLAINCAST_PROGRAM="$<TARGET_FILE:quorel_plaincast>")
    add_dependencies(PathTreesTest quorel_plaincast)
endif()
plaincast_test(PathsTest paths)
plaincast_test(PatternMatchTest strings)
plaincast_test(PlainCastTest strings)
plaincast_test(PoolTest containers)
plaincast_test(ProcessTest processes)
add_dependencies(EngineFaultTest quorel_testchild)
add_dependencies(ProcessTest quorel_testchild)
plaincast_test(RbTreeTest containers)
plaincast_test(RecordDiffTest text)
if(WIN32)
    # The registry is a file on the other system only.
    list(APPEND PLAINCAST_LISTED_TESTS RegistryStoreTest.cpp)
else()
    add_test(NAME RegistryProcesses COMMAND ${PROJECT_SOURCE_DIR}/tests/soak/registry
        $<TARGET_FILE:quorel_plaincast> 4)  # seconds; the soak test takes longer
    plaincast_test(RegistryStoreTest ScriptEngine3 logmessages)
    set_tests_properties(RegistryStoreTest PROPERTIES RESOURCE_LOCK registry)
endif()
plaincast_test(RegistryTest registry)
plaincast_test(ScriptBlockTest ScriptEngine3)
plaincast_test(ScriptMessagesTest ScriptEngine3 logmessages)
plaincast_test(ScriptObjectTest ScriptEngine3)
plaincast_test(ServiceTest ScriptEngine3 logmessages)
if(WIN32)
    add_executable(quorel_testservice services/windows/quorel_testservice.cpp)
    target_sources(ServiceTest PRIVATE services/windows/ServiceWorld.cpp)
    target_compile_definitions(ServiceTest PRIVATE
        PLAINCAST_SERVICE="$<TARGET_FILE:quorel_testservice>")
    add_dependencies(ServiceTest quorel_testservice)
else()
    find_library(PLAINCAST_SYSTEMD NAMES libsystemd.so.0 REQUIRED)
    target_sources(ServiceTest PRIVATE services/posix/ServiceWorld.cpp)
    target_link_libraries(ServiceTest PRIVATE ${PLAINCAST_SYSTEMD})
endif()
target_include_directories(ServiceTest PRIVATE services)
plaincast_test(ScriptTrustTest ScriptEngine3 logmessages)
target_compile_definitions(ScriptTrustTest PRIVATE
    PLAINCAST_PROGRAM="$<TARGET_FILE:quorel_plaincast>")
add_dependencies(ScriptTrustTest quorel_plaincast)
plaincast_test(ShellObjectsTest paths)
plaincast_test(SignScriptTest strings)
target_compile_definitions(SignScriptTest PRIVATE
    PLAINCAST_PROGRAM="$<TARGET_FILE:quorel_plaincast>"
    PLAINCAST_SIGNSCRIPT="$<TARGET_FILE:quorel_signscript>")
add_dependencies(SignScriptTest quorel_plaincast quorel_signscript)
plaincast_test(SocketsTest sockets)
plaincast_test(StringFormatTest strings)
plaincast_test(StringNumbersTest strings)
plaincast_test(StringTest strings)
plaincast_test(SystemInfoTest system)
plaincast_test(TextParserTest text)
if(WIN32)
    # Requests to stop are signals on the other system only.
    list(APPEND PLAINCAST_LISTED_TESTS ThreadSignalTest.cpp)
else()
    plaincast_test(ThreadSignalTest threads)
endif()
plaincast_test(ThreadTest threads)
plaincast_test(TimeCommandsTest ScriptEngine3Functions)
plaincast_test(TimeTextTest time)
plaincast_test(TimeZoneTest time)
set_tests_properties(TimeZoneTest PROPERTIES ENVIRONMENT TZ=UTC0)
foreach(zone QRL-3:30 QRL-13 QRL3:30 QRL12 EST5EDT)
    add_test(NAME TimeZoneTest.${zone} COMMAND TimeZoneTest)
    set_tests_properties(TimeZoneTest.${zone} PROPERTIES ENVIRONMENT TZ=${zone})
endforeach()
plaincast_test(TransferTest sockets)
plaincast_test(VectorTest containers)
plaincast_test(ZFileTest files)
configure_file(${PROJECT_SOURCE_DIR}/programs/utilities/plaincast/logmsg.conf
    ${CMAKE_CURRENT_BINARY_DIR}/logmsg.conf COPYONLY)  # LogMessagesTest reads it
foreach(test EngineFaultTest NamedLockTest ProcessTest)
    target_compile_definitions(${test} PRIVATE
        PLAINCAST_CHILD="${CMAKE_BINARY_DIR}/quorel_testchild${CMAKE_EXECUTABLE_SUFFIX}")
endforeach()
target_compile_definitions(PlainCastTest PRIVATE
    PLAINCAST_PROGRAM="$<TARGET_FILE:quorel_plaincast>")
add_dependencies(PlainCastTest quorel_plaincast)
# Only where it runs is the stand-in for the library of shell objects found.
add_library(quorel_shellobj MODULE shellobj/quorel_shellobj.cpp)
set(shellobj_folder ${CMAKE_CURRENT_BINARY_DIR}/shellobj)
set_target_properties(quorel_shellobj PROPERTIES PREFIX ""
    LIBRARY_OUTPUT_DIRECTORY ${shellobj_folder})
add_dependencies(ShellObjectsTest quorel_shellobj)
set_tests_properties(ShellObjectsTest PROPERTIES WORKING_DIRECTORY ${shellobj_folder}
    ENVIRONMENT LD_LIBRARY_PATH=${shellobj_folder})
# Under Windows the registry is one for all tests: those that write settings or need
# them absent run one after the other, as do those of ScriptCases.h, which share a file.
set_tests_properties(BuiltInVariablesTest CommandCasesTest FileCasesTest LanguageCasesTest
    LogMessagesTest NamedLockTest PathsTest PlainCastTest RegistryTest ScriptMessagesTest
    ScriptTrustTest ServiceTest SocketsTest SystemInfoTest PROPERTIES RESOURCE_LOCK registry)
