# A module is one folder of sources and one static library. Its headers are reached as "module/header.h", and only by
# those that link the module: each target's include folder holds a link to its own module and to nothing else. So the link
# lines are the layers, and an include that breaks a layer does not compile.
#
# qv_module(NAME [ENGINE] SOURCES... [RESOURCES...] [PUBLIC...] [PRIVATE...]): PUBLIC names what the module's headers
# include, PRIVATE what its sources use besides.
#
# The headers of the standard library and the system are half of what there is to compile, so they are precompiled:
# once for the engines, which get the standard's only, once for all others. The project's own headers never are: that
# would carry them past the layers. ./qv check --changed compiles each changed file without any of this, so it still has
# to include what it uses.
function(qv_module name)
  cmake_parse_arguments(MODULE "ENGINE" "" "SOURCES;RESOURCES;PUBLIC;PRIVATE" ${ARGN})
  set(view ${CMAKE_BINARY_DIR}/modules/${name})
  file(MAKE_DIRECTORY ${view})
  file(CREATE_LINK ${CMAKE_CURRENT_SOURCE_DIR} ${view}/${name} SYMBOLIC)
  add_library(qv_${name} STATIC ${MODULE_SOURCES})
  target_include_directories(qv_${name} PUBLIC ${view})
  target_link_libraries(qv_${name} PUBLIC ${MODULE_PUBLIC} PRIVATE ${MODULE_PRIVATE} qv_warnings)
  if(MODULE_ENGINE)
    target_compile_definitions(qv_${name} PRIVATE QV_ENGINE)
    qv_precompile(qv_${name} engines ${qv_standard_headers})
  else()
    qv_precompile(qv_${name} system ${qv_standard_headers} ${CMAKE_SOURCE_DIR}/src/win32/windows.h)
  endif()
  list(TRANSFORM MODULE_RESOURCES PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/)
  file(GLOB_RECURSE numbers CONFIGURE_DEPENDS *resource.h)
  set_property(GLOBAL PROPERTY qv_resources_${name} ${MODULE_RESOURCES})
  set_property(GLOBAL PROPERTY qv_resource_numbers_${name} ${numbers})
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

# qv_link_resources(TARGET MODULES...): the dialogs of modules belong into the program or library itself. A static
# library cannot carry them, so the last target in the chain compiles the modules' resources, and no other: they would
# be there twice.
function(qv_link_resources target)
  target_include_directories(${target} PRIVATE $<$<COMPILE_LANGUAGE:RC>:${CMAKE_SOURCE_DIR}/src>)
  foreach(module IN LISTS ARGN)
    get_property(resources GLOBAL PROPERTY qv_resources_${module})
    get_property(numbers GLOBAL PROPERTY qv_resource_numbers_${module})
    target_sources(${target} PRIVATE ${resources})
    # The resource compiler names no headers to the build: a changed number would meet dialogs with the old one.
    set_property(SOURCE ${resources} APPEND PROPERTY OBJECT_DEPENDS ${numbers})
  endforeach()
endfunction()
