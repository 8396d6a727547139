# A room is one folder of sources and one static library. Its headers are reached as "room/header.h", and only by
# those that link the room: each target's include folder holds a link to its own room and to nothing else. So the link
# lines are the floors of the house, and an include that breaks a floor does not compile.
#
# The headers of the standard library and the system are half of what there is to compile, so they are precompiled:
# once for the rooms of pure engines (ENGINES), which get the standard's only, once for all others. The project's own
# headers never are: that would carry them past the floors. ./qv check reads each file without any of this, so each
# still has to include what it uses.
function(qv_room name)
  cmake_parse_arguments(ROOM "ENGINES" "FOLDER" "SOURCES;LINKS" ${ARGN})
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
    if(ROOM_ENGINES)
      qv_precompile(qv_${name} engines ${qv_standard_headers})
    else()
      qv_precompile(qv_${name} system ${qv_standard_headers} ${CMAKE_SOURCE_DIR}/src/win32/windows.h)
    endif()
  else()
    add_library(qv_${name} INTERFACE)
    target_include_directories(qv_${name} INTERFACE ${view})
    target_link_libraries(qv_${name} INTERFACE ${ROOM_LINKS})
  endif()
endfunction()

# What many files include; the rare and large ones (<regex>, <sstream>) would cost all others more than they save.
set(qv_standard_headers <algorithm> <array> <atomic> <cstdint> <cstring> <functional> <limits> <map> <memory> <mutex>
  <optional> <span> <string> <string_view> <unordered_map> <utility> <vector>)

# qv_precompile(TARGET KIND HEADERS...): the first target of a kind makes the precompiled headers, the others use them.
# All are compiled with the same flags, or the compiler would refuse them.
function(qv_precompile target kind)
  get_property(maker GLOBAL PROPERTY qv_precompiled_${kind})
  if(maker)
    target_precompile_headers(${target} REUSE_FROM ${maker})
  else()
    target_precompile_headers(${target} PRIVATE ${ARGN})
    set_property(GLOBAL PROPERTY qv_precompiled_${kind} ${target})
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
