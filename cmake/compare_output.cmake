# Fails unless the output of TOOL (with ARGS) is the content of FILE.
execute_process(COMMAND ${TOOL} ${ARGS} OUTPUT_VARIABLE output RESULT_VARIABLE status)
file(READ ${FILE} expected)
if(NOT status EQUAL 0)
  message(FATAL_ERROR "${TOOL} ended with ${status}")
endif()
if(NOT output STREQUAL expected)
  message(FATAL_ERROR "${FILE} differs from the output of ${TOOL}: run the tool again")
endif()
