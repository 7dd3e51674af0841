# COMPILER takes the public C++ headers, with EACH every one by itself, and the examples, without a
# warning.
file(GLOB sources ${ROOT}/include/pexquo/*.hpp)
list(FILTER sources EXCLUDE REGEX "function_list.hpp$")  # a part of functions.hpp
if(NOT EACH)
  list(TRANSFORM sources REPLACE "(.+)" "#include \"\\1\"\n")
  list(JOIN sources "" text)
  set(sources ${WORK}/all_headers.cc)
  file(WRITE ${sources} "${text}")
endif()
list(APPEND sources ${ROOT}/examples/quickstart.cc ${ROOT}/examples/parallel_monte_carlo.cc)
foreach(source IN LISTS sources)
  execute_process(
    COMMAND ${COMPILER} -std=c++20 -Wall -Wextra -pedantic -Werror -fsyntax-only
      -I${ROOT}/include -x c++ ${source}
    RESULT_VARIABLE status ERROR_VARIABLE messages)
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "${source}:\n${messages}")
  endif()
endforeach()
