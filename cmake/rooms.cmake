# A room is one folder of sources and one static library. Its headers are reached as "room/header.h", and only by
# those that link the room: each target's include folder holds a link to its own room and to nothing else. So the link
# lines are the floors of the house, and an include that breaks a floor does not compile.
function(qv_room name)
  cmake_parse_arguments(ROOM "" "FOLDER" "SOURCES;LINKS" ${ARGN})
  if(NOT ROOM_FOLDER)
    set(ROOM_FOLDER ${CMAKE_CURRENT_SOURCE_DIR})
  endif()
  set(view ${CMAKE_BINARY_DIR}/rooms/${name})
  file(MAKE_DIRECTORY ${view})
  file(CREATE_LINK ${ROOM_FOLDER} ${view}/${name} SYMBOLIC)
  if(ROOM_SOURCES)
    add_library(qv_${name} STATIC ${ROOM_SOURCES})
    target_include_directories(qv_${name} PUBLIC ${view})
    target_link_libraries(qv_${name} PUBLIC ${ROOM_LINKS} PRIVATE qv_warnings)
  else()
    add_library(qv_${name} INTERFACE)
    target_include_directories(qv_${name} INTERFACE ${view})
    target_link_libraries(qv_${name} INTERFACE ${ROOM_LINKS})
  endif()
endfunction()

# The dialogs of rooms belong into the program or library itself. A static library cannot carry them, so whoever links
# the rooms compiles their resources: the last in the chain only, or they would be there twice.
function(qv_link_resources target)
  foreach(room IN LISTS ARGN)
    set(folder ${CMAKE_SOURCE_DIR}/src/${room})
    target_sources(${target} PRIVATE ${folder}/dialogs.rc)
    target_include_directories(${target} PRIVATE $<$<COMPILE_LANGUAGE:RC>:${folder}>)
    # The resource compiler names no headers to the build: a changed number would meet dialogs with the old one.
    set_property(SOURCE ${folder}/dialogs.rc APPEND PROPERTY OBJECT_DEPENDS ${folder}/resource.h)
  endforeach()
endfunction()
