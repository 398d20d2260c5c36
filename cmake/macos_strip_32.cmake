# Takes the local symbols out of a finished 32-bit bundle: cmake -DFILE=... -DSTRIP=... -DDUMP=... -P this
#
# llvm-strip leaves zeros behind the last segment, and a file that goes on there can't be signed. So it
# is cut where that segment, the link data, ends. The table of indirect symbols, which is empty, is then
# said to be at the end of the zeros: it gets the offset of a table that isn't there.
execute_process(COMMAND ${STRIP} -x ${FILE} COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${DUMP} --macho --private-headers ${FILE}
  OUTPUT_VARIABLE headers COMMAND_ERROR_IS_FATAL ANY)
if(NOT headers MATCHES "segname __LINKEDIT[^_]*fileoff ([0-9]+)[ \n]+filesize ([0-9]+)")
  message(FATAL_ERROR "${FILE} has no link data")
endif()
math(EXPR end "${CMAKE_MATCH_1} + ${CMAKE_MATCH_2}")
if(NOT headers MATCHES "nindirectsyms 0[^0-9]")
  message(FATAL_ERROR "${FILE} has indirect symbols")
endif()

# The commands stand behind the header; the one of the symbol tables has the offset 56 bytes in.
string(REGEX REPLACE "cmd LC_DYSYMTAB.*" "" before "${headers}")
string(REGEX MATCHALL "cmdsize [0-9]+" sizes "${before}")
set(offset 84)
foreach(size IN LISTS sizes)
  string(REPLACE "cmdsize " "" size "${size}")
  math(EXPR offset "${offset} + ${size}")
endforeach()
execute_process(COMMAND dd if=/dev/zero of=${FILE} bs=1 seek=${offset} count=4 conv=notrunc status=none
  COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND truncate --size=${end} ${FILE} COMMAND_ERROR_IS_FATAL ANY)
