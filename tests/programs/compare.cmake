# cmake -DCOMMAND=... -DEXPECTATION=FILE -P compare.cmake
#
# NAME.out holds what the program NAME.xojo_script prints, or those in the folder NAME one after the
# other; nothing may be left over in the host then. NAME.err holds what is said about a broken one.
get_filename_component(folder ${EXPECTATION} DIRECTORY)
get_filename_component(name ${EXPECTATION} NAME_WLE)
get_filename_component(kind ${EXPECTATION} LAST_EXT)
file(READ ${EXPECTATION} expected)

set(options --leaks)
set(expectedStatus 0)
if(kind STREQUAL ".err")
  set(options --check)
  set(expectedStatus 1)
endif()
set(programs ${name}.xojo_script)
if(IS_DIRECTORY ${folder}/${name})
  file(GLOB programs RELATIVE ${folder} ${folder}/${name}/*.xojo_script)
endif()

# In its folder, so that messages name the file alone.
execute_process(COMMAND ${COMMAND} ${options} ${programs}
  WORKING_DIRECTORY ${folder}
  OUTPUT_VARIABLE output ERROR_VARIABLE messages RESULT_VARIABLE status)

set(found "${output}")
if(kind STREQUAL ".err")
  set(found "${messages}")
endif()
if(NOT status EQUAL expectedStatus)
  message(SEND_ERROR "${name} ended with ${status} instead of ${expectedStatus}:\n${messages}")
endif()
if(NOT found STREQUAL expected)
  message(SEND_ERROR "${name} printed\n${found}\ninstead of\n${expected}\nIts messages:\n${messages}")
endif()
