# Assembles the BBC's disc formatter and makes its sum right.
#
# The loader on the BBC takes the program only if its bytes sum to 206 modulo 256, so it is assembled
# once with a last byte of 0, summed, and assembled again with the byte that makes up the difference.
#
# Usage: cmake -DASSEMBLER=64tass -DSOURCE=aform.s -DOUTPUT=aform -P BuildAform.cmake

set(kLength 5738)
set(kSum 206)

function(assemble balance)
  execute_process(
    COMMAND "${ASSEMBLER}" --quiet --nostart -Wall -D "kBalance=${balance}" -o "${OUTPUT}" "${SOURCE}"
    RESULT_VARIABLE failed)
  if(failed)
    file(REMOVE "${OUTPUT}")
    message(FATAL_ERROR "${SOURCE} did not assemble")
  endif()
endfunction()

function(sum_of_bytes result)
  file(READ "${OUTPUT}" hex HEX)
  string(LENGTH "${hex}" digits)
  math(EXPR length "${digits} / 2")
  if(NOT length EQUAL kLength)
    file(REMOVE "${OUTPUT}")
    message(FATAL_ERROR "${OUTPUT} has ${length} bytes, not ${kLength}")
  endif()
  string(REGEX REPLACE "(..)" "+0x\\1" terms "${hex}")
  math(EXPR sum "(0${terms}) % 256")
  set(${result} ${sum} PARENT_SCOPE)
endfunction()

assemble(0)
sum_of_bytes(sum)
math(EXPR balance "(${kSum} - ${sum} + 256) % 256")
assemble(${balance})
sum_of_bytes(sum)
if(NOT sum EQUAL kSum)
  file(REMOVE "${OUTPUT}")
  message(FATAL_ERROR "${OUTPUT} sums to ${sum}, not ${kSum}")
endif()
