# Runs the tool once and compares what it did with what is expected:
#   TOOL      the built tool
#   ARGS      its arguments, separated by "|"
#   DIR       the folder to run it in
#   EXIT      the expected exit status
#   STDOUT    a file holding the exact expected standard output (optional)
#   STDERR    a regular expression standard error must match; "" means it must be empty
# A failure is always one line on standard error; that is checked whenever EXIT is not 0.
string(REPLACE "|" ";" arguments "${ARGS}")
execute_process(COMMAND ${TOOL} ${arguments} WORKING_DIRECTORY ${DIR}
                RESULT_VARIABLE status OUTPUT_VARIABLE out ERROR_VARIABLE err)
set(failed "")
if(NOT status STREQUAL EXIT)
  string(APPEND failed "exit status ${status}, expected ${EXIT}\n")
endif()
if(DEFINED STDOUT AND NOT STDOUT STREQUAL "")
  file(READ ${STDOUT} expected)
  if(NOT out STREQUAL expected)
    file(WRITE ${CMAKE_CURRENT_BINARY_DIR}/actual-output.txt "${out}")
    string(APPEND failed "standard output differs from ${STDOUT}:\n${out}\n")
  endif()
endif()
if(STDERR STREQUAL "")
  if(NOT err STREQUAL "")
    string(APPEND failed "standard error should be empty:\n${err}\n")
  endif()
elseif(NOT err MATCHES "${STDERR}")
  string(APPEND failed "standard error does not match '${STDERR}':\n${err}\n")
endif()
if(NOT EXIT STREQUAL "0" AND NOT err STREQUAL "")
  string(REGEX MATCHALL "\n" breaks "${err}")
  list(LENGTH breaks lines)
  if(NOT lines EQUAL 1)
    string(APPEND failed "a failure must be one line on standard error, got ${lines}:\n${err}\n")
  endif()
endif()
if(failed)
  message(FATAL_ERROR "${TOOL} ${arguments}\n${failed}")
endif()
