# Writes the symbols file of libpexquo1 (deb-symbols(5)): every exported symbol with its version and
# the first release of the package that has it. Variables: NM; LIBRARIES, a list; OUTPUT.
cmake_minimum_required(VERSION 3.25)
set(text "")
foreach(library IN LISTS LIBRARIES)
  get_filename_component(soname ${library} NAME)
  string(APPEND text "${soname} libpexquo1 #MINVER#\n* Build-Depends-Package: libpexquo-dev\n")
  execute_process(COMMAND ${NM} -D --defined-only ${library}
    OUTPUT_VARIABLE lines COMMAND_ERROR_IS_FATAL ANY)
  # A version node stands for itself: X_1.0@X_1.0.
  string(REGEX MATCHALL "[^ \n]+\n" names "${lines}")
  list(TRANSFORM names STRIP)
  list(TRANSFORM names REPLACE "^([A-Z_]+_[0-9.]+)$" "\\1@\\1")
  list(TRANSFORM names REPLACE "@@" "@")
  list(SORT names)
  foreach(name IN LISTS names)
    # The number of a version is that of the release that brought it.
    string(REGEX MATCH "_([0-9]+\\.[0-9]+)$" release "${name}")
    string(APPEND text " ${name} ${CMAKE_MATCH_1}.0\n")
  endforeach()
endforeach()
file(WRITE ${OUTPUT} "${text}")
