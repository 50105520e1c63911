# SPDX-License-Identifier: MIT
# Runs one acceptance script and compares what it prints with NAME.out;
# HOST_ARGS, if given, go before the script.
# A script may end with status 1 (a command failed on purpose); a crash fails.
file(REMOVE_RECURSE ${WORKDIR})
file(MAKE_DIRECTORY ${WORKDIR})
# Data files the scripts load are copied next to them.
file(GLOB data ${DATADIR}/*)
if(data)
  file(COPY ${data} DESTINATION ${WORKDIR})
endif()
execute_process(COMMAND ${HOST} ${HOST_ARGS} ${SCRIPT}
                WORKING_DIRECTORY ${WORKDIR}
                OUTPUT_VARIABLE actual
                ERROR_VARIABLE errors
                RESULT_VARIABLE status)
if(NOT status MATCHES "^[01]$")
  message(FATAL_ERROR "kelvarin-host ended with ${status}\n${errors}")
endif()
file(READ ${EXPECTED} expected)
if(NOT actual STREQUAL expected)
  file(WRITE ${WORKDIR}/actual.out "${actual}")
  execute_process(COMMAND diff -u ${EXPECTED} ${WORKDIR}/actual.out OUTPUT_VARIABLE difference)
  message(FATAL_ERROR "output differs from ${EXPECTED}:\n${difference}")
endif()
