# What is installed, and how it is packed: a Debian package, or a zip for
# Windows. Every program below programs/ comes in by itself.

set(CMAKE_SKIP_INSTALL_ALL_DEPENDENCY ON)
if(WIN32)
    # One folder, which finds its catalogue when it lies on the search path.
    set(program_folder .)
    set(config_folder .)
    set(text_folder .)
    configure_file(packaging/windows/INSTALL.txt INSTALL.txt @ONLY NEWLINE_STYLE DOS)
    install(FILES ${CMAKE_BINARY_DIR}/INSTALL.txt DESTINATION .)
else()
    set(program_folder bin)
    set(config_folder /etc/quorel)
    set(text_folder share/doc/plaincast)
    file(GLOB manual CONFIGURE_DEPENDS docs/*.1)
    install(FILES ${manual} DESTINATION share/man/man1)
    install(FILES packaging/debian/directories.qcs DESTINATION share/quorel)
    # The configured directories that only we use.
    foreach(folder lib/quorel/scripts lib/quorel/work lib/quorel/sandbox log/quorel)
        install(DIRECTORY DESTINATION /var/${folder})
    endforeach()
endif()

add_custom_target(programs)
get_property(folders DIRECTORY PROPERTY SUBDIRECTORIES)
list(FILTER folders INCLUDE REGEX "^${PROJECT_SOURCE_DIR}/programs/")
foreach(folder ${folders})
    get_property(targets DIRECTORY ${folder} PROPERTY BUILDSYSTEM_TARGETS)
    foreach(target ${targets})
        get_target_property(kind ${target} TYPE)
        if(kind STREQUAL "EXECUTABLE")
            install(TARGETS ${target} DESTINATION ${program_folder})
            add_dependencies(programs ${target})
        endif()
    endforeach()
endforeach()
install(FILES programs/utilities/plaincast/logmsg.conf DESTINATION ${config_folder})
install(FILES README.md DESTINATION ${text_folder})
install(DIRECTORY docs examples DESTINATION ${text_folder} USE_SOURCE_PERMISSIONS
    PATTERN "*.1" EXCLUDE)

set(CPACK_PACKAGE_NAME plaincast)
set(CPACK_PACKAGE_VENDOR "Quorel Tools")
set(CPACK_PACKAGE_CONTACT "Quorel Tools <plaincast@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Runs administration scripts in a small language of its own")
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
if(WIN32)
    set(CPACK_GENERATOR ZIP)
    set(CPACK_PACKAGE_FILE_NAME plaincast-${PROJECT_VERSION}-windows)
else()
    set(CPACK_GENERATOR DEB)
    set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
    set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
    set(CPACK_DEBIAN_PACKAGE_SECTION admin)
    set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
"Scripts work with texts, lists and maps, files and directories, processes and
services, settings and bundles, and mean the same on Windows.")
    set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
    # Loaded when a script asks for services.
    set(CPACK_DEBIAN_PACKAGE_RECOMMENDS libsystemd0)
    set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA ${PROJECT_SOURCE_DIR}/packaging/debian/conffiles
        ${PROJECT_SOURCE_DIR}/packaging/debian/postinst
        ${PROJECT_SOURCE_DIR}/packaging/debian/postrm)
    set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
endif()
include(CPack)
