# The system's libraries that windows, the shell and COM need are loaded with the first call of one of their functions
# (the linker's delay loading). A command line needs no such library, and loading them takes as long as everything else
# that happens before a command runs.
#
# Only libraries that Windows takes from its own folder whatever lies beside the program (its known DLLs) may be named
# here: the others are loaded from full paths (win32/module.h). advapi32 and kernel32 stay ordinary imports, since every
# call needs them.
#
# The import libraries made here have the names of the compiler's own and are found before them, so that the link lines
# say -luser32 as always.
function(qv_late_libraries)
  set(folder ${CMAKE_BINARY_DIR}/late_libraries)
  foreach(library IN LISTS ARGN)
    if(NOT EXISTS ${folder}/lib${library}.a)
      execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=lib${library}.a
        OUTPUT_VARIABLE original OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
      execute_process(COMMAND ${CMAKE_NM} -g ${original}
        OUTPUT_VARIABLE symbols ERROR_QUIET COMMAND_ERROR_IS_FATAL ANY)
      string(REGEX MATCHALL " T [A-Za-z][A-Za-z0-9_]*" functions "${symbols}")
      list(TRANSFORM functions REPLACE " T " "  ")
      list(JOIN functions "\n" functions)
      file(WRITE ${folder}/${library}.def "LIBRARY ${library}.dll\nEXPORTS\n${functions}\n")
      # Beside its .def, because the names within are made from the path.
      execute_process(COMMAND ${CMAKE_DLLTOOL} -d ${library}.def --output-delaylib lib${library}.a
        WORKING_DIRECTORY ${folder} COMMAND_ERROR_IS_FATAL ANY)
    endif()
  endforeach()
  # Relative, as the build runs in its own folder: the linker sorts what it puts together by the names of files, and the
  # same sources are to give the same bytes wherever they are built.
  add_link_options(-Llate_libraries)
endfunction()
