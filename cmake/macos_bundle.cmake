# How a macOS bundle is compiled and linked. Needs the toolchain file macos.cmake.
#
#   zel_add_bundle(NAME LIBRARIES TARGET...)   NAME.bundle in the product folder
#
# The bundle is linked against stand-ins for macOS's libraries, which are made here from the list of
# imports and carry macOS's own install names.
set_property(GLOBAL PROPERTY TARGET_SUPPORTS_SHARED_LIBS TRUE)
set(zel_darwin ${PROJECT_SOURCE_DIR}/native/darwin)
set(zel_stand_ins ${CMAKE_BINARY_DIR}/imports)

# --- the list of imports

set(zel_imports ${zel_darwin}/imports.txt)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${zel_imports})

# The lines of the list's sections of that name, whichever bundle they are for.
function(zel_import_lines section result)
  file(STRINGS ${zel_imports} lines)
  set(within "")
  set(found)
  foreach(line IN LISTS lines)
    if(line MATCHES "^\\[(.*)\\]$")
      string(REGEX MATCH "^${section}( |$)" within "${CMAKE_MATCH_1}")
    elseif(NOT within STREQUAL "" AND line MATCHES "^[^#]")
      list(APPEND found "${line}")
    endif()
  endforeach()
  set(${result} "${found}" PARENT_SCOPE)
endfunction()

# The symbols that the bundles for this processor take from the library.
function(zel_symbols_of library result)
  zel_import_lines(symbols lines)
  set(found)
  foreach(line IN LISTS lines)
    if(line MATCHES "^${library} +(any|[^ ]*${ZEL_MACOS_ARCH}[^ ]*) +([^ ]+)")
      list(APPEND found ${CMAKE_MATCH_2})
    endif()
  endforeach()
  set(${result} "${found}" PARENT_SCOPE)
endfunction()

# --- the processors: how they are compiled and linked, and zel_stand_in(LIBRARY VERSION INSTALL_NAME)

if(ZEL_MACOS_ARCH STREQUAL "i386")
  include(${CMAKE_CURRENT_LIST_DIR}/macos_link_32.cmake)
else()
  include(${CMAKE_CURRENT_LIST_DIR}/macos_link_64.cmake)
endif()

zel_import_lines(libraries libraries)
foreach(line IN LISTS libraries)
  separate_arguments(words UNIX_COMMAND "${line}")
  zel_stand_in(${words})
endforeach()
get_property(zel_stand_ins_made GLOBAL PROPERTY zel_stand_ins)
add_custom_target(stand_ins DEPENDS ${zel_stand_ins_made})

# --- the bundle

set(CMAKE_CXX_CREATE_SHARED_MODULE
  "${zel_link} -bundle -dead_strip <LINK_FLAGS> -o <TARGET> <OBJECTS> <LINK_LIBRARIES>")

function(zel_add_bundle name)
  cmake_parse_arguments(arg "" "" "LIBRARIES" ${ARGN})
  set(contents ${CMAKE_LIBRARY_OUTPUT_DIRECTORY}/${name}.bundle/Contents)
  foreach(library IN LISTS arg_LIBRARIES)
    get_target_property(sources ${library} SOURCES)
    set_property(SOURCE ${sources} TARGET_DIRECTORY ${library} APPEND PROPERTY
      OBJECT_DEPENDS ${zel_compile_depends})
  endforeach()
  add_library(${name} MODULE)
  zel_say_version(${name} ${name})
  target_link_libraries(${name} PRIVATE ${arg_LIBRARIES} ${zel_stand_ins_made})
  add_dependencies(${name} stand_ins)
  set_target_properties(${name} PROPERTIES
    PREFIX "" SUFFIX "" LINKER_LANGUAGE CXX LIBRARY_OUTPUT_DIRECTORY ${contents}/MacOS
    LINK_FLAGS "-exported_symbols_list ${zel_darwin}/exports.txt"
    LINK_DEPENDS "${zel_darwin}/exports.txt;${zel_stand_ins_made}")
  zel_strip(${name})
  configure_file(${zel_darwin}/Info.plist.in ${contents}/Info.plist @ONLY)
  file(WRITE ${contents}/PkgInfo "BNDL????")
endfunction()
