# A room is one folder under c/library/source and one static library. It sees
# its own headers and those of the rooms it is linked to, and no others: each
# room's headers are reached through a folder that holds nothing but a link to
# that room, so an include that points upward does not compile.

set(PLAINCAST_ROOM_LINKS ${CMAKE_BINARY_DIR}/rooms)

function(plaincast_expose_room target folder)
    file(MAKE_DIRECTORY ${PLAINCAST_ROOM_LINKS}/${folder})
    file(CREATE_LINK ${PROJECT_SOURCE_DIR}/c/library/source/${folder}
         ${PLAINCAST_ROOM_LINKS}/${folder}/${folder} SYMBOLIC)
    get_target_property(kind ${target} TYPE)
    if(kind STREQUAL "INTERFACE_LIBRARY")
        target_include_directories(${target} INTERFACE ${PLAINCAST_ROOM_LINKS}/${folder})
    else()
        target_include_directories(${target} PUBLIC ${PLAINCAST_ROOM_LINKS}/${folder})
    endif()
endfunction()

# plaincast_room(NAME [FOLDER folder] [EXCLUDE file...] [ONLY file...] [DEPENDS target...])
function(plaincast_room name)
    cmake_parse_arguments(ROOM "" "FOLDER" "DEPENDS;EXCLUDE;ONLY" ${ARGN})
    if(NOT ROOM_FOLDER)
        set(ROOM_FOLDER ${name})
    endif()
    set(path ${PROJECT_SOURCE_DIR}/c/library/source/${ROOM_FOLDER})
    if(ROOM_ONLY)
        list(TRANSFORM ROOM_ONLY PREPEND ${path}/ OUTPUT_VARIABLE sources)
    else()
        file(GLOB sources CONFIGURE_DEPENDS ${path}/*.cpp)
        foreach(file ${ROOM_EXCLUDE})
            list(REMOVE_ITEM sources ${path}/${file})
        endforeach()
    endif()
    if(sources)
        add_library(${name} STATIC ${sources})
        target_link_libraries(${name} PUBLIC ${ROOM_DEPENDS} PRIVATE plaincast_flags)
    else()
        add_library(${name} INTERFACE)
        target_link_libraries(${name} INTERFACE ${ROOM_DEPENDS})
    endif()
    plaincast_expose_room(${name} ${ROOM_FOLDER})
endfunction()
