# How a macOS bundle is compiled and linked. Needs the toolchain file macos.cmake.
#
#   zel_add_bundle(NAME LIBRARIES TARGET...)   NAME.bundle in the product folder
#
# The bundle is linked against libraries that are made here from the list of imports, under the
# install names of macOS's own.
set_property(GLOBAL PROPERTY TARGET_SUPPORTS_SHARED_LIBS TRUE)
set(zel_darwin ${PROJECT_SOURCE_DIR}/native/darwin)
set(zel_imports ${zel_darwin}/imports.txt)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${zel_imports})
find_program(ZEL_AWK awk REQUIRED)

# --- compiling and linking, by processor

# ld64.lld-14 has no 32-bit targets; this is the last linker of LLVM that has.
find_program(ZEL_MACOS_LINKER_i386 ld64.lld.darwinold-13 REQUIRED)
set(zel_link "${ZEL_MACOS_LINKER_i386} -arch i386 -sdk_version 10.6")
string(APPEND zel_link " -macosx_version_min ${ZEL_MACOS_MINIMUM}")

# indirect_imports.awk says why the assembly can't stay as the compiler writes it.
set(rewrite ${zel_darwin}/indirect_imports.awk)
set(CMAKE_CXX_COMPILE_OBJECT
  "<CMAKE_CXX_COMPILER> <DEFINES> <INCLUDES> <FLAGS> -S -o <OBJECT>.compiled.s <SOURCE>"
  "${ZEL_AWK} -v imports=${zel_imports} -f ${rewrite} <OBJECT>.compiled.s ><OBJECT>.s"
  "<CMAKE_CXX_COMPILER> --target=${CMAKE_CXX_COMPILER_TARGET} -c -o <OBJECT> <OBJECT>.s")

set(CMAKE_CXX_CREATE_SHARED_MODULE
  "${zel_link} -bundle -dead_strip <LINK_FLAGS> -o <TARGET> <OBJECTS> <LINK_LIBRARIES>")

# --- the libraries

# The lines of the list's section that aren't comments.
function(zel_import_lines section result)
  file(STRINGS ${zel_imports} lines)
  set(within FALSE)
  set(found)
  foreach(line IN LISTS lines)
    if(line MATCHES "^\\[(.*)\\]$")
      string(COMPARE EQUAL "${CMAKE_MATCH_1}" "${section}" within)
    elseif(within AND line MATCHES "^[^#]")
      list(APPEND found "${line}")
    endif()
  endforeach()
  set(${result} "${found}" PARENT_SCOPE)
endfunction()

# zel_import_library(NAME VERSION INSTALL_NAME): a library that defines the symbols which the list has
# for it, as nothing.
function(zel_import_library name version install_name)
  set(file ${CMAKE_BINARY_DIR}/imports/${name})
  set(source)
  zel_import_lines(symbols symbols)
  foreach(line IN LISTS symbols)
    if(line MATCHES "^${name} +(any|${ZEL_MACOS_ARCH}) +([^ ]+)")
      string(APPEND source "\t.globl\t${CMAKE_MATCH_2}\n${CMAKE_MATCH_2}:\n\tnop\n")
    endif()
  endforeach()
  file(CONFIGURE OUTPUT ${file}.s CONTENT "${source}" @ONLY)
  # Every library of the system's needs the first one.
  set(system)
  if(NOT name STREQUAL "libSystem")
    set(system ${CMAKE_BINARY_DIR}/imports/libSystem.dylib)
  endif()
  separate_arguments(link UNIX_COMMAND "${zel_link}")
  add_custom_command(OUTPUT ${file}.dylib
    COMMAND ${CMAKE_C_COMPILER} --target=${CMAKE_C_COMPILER_TARGET} -c -o ${file}.o ${file}.s
    COMMAND ${link} -dylib -install_name ${install_name} -compatibility_version ${version}
      -current_version ${version} -o ${file}.dylib ${file}.o ${system}
    DEPENDS ${file}.s ${system}
    COMMENT "Making the import library ${name}" VERBATIM)
  set_property(GLOBAL APPEND PROPERTY zel_import_libraries ${file}.dylib)
endfunction()

zel_import_lines(libraries libraries)
foreach(line IN LISTS libraries)
  separate_arguments(words UNIX_COMMAND "${line}")
  zel_import_library(${words})
endforeach()
get_property(zel_import_libraries GLOBAL PROPERTY zel_import_libraries)
add_custom_target(import_libraries DEPENDS ${zel_import_libraries})

# --- the bundle

function(zel_add_bundle name)
  cmake_parse_arguments(arg "" "" "LIBRARIES" ${ARGN})
  set(contents ${CMAKE_LIBRARY_OUTPUT_DIRECTORY}/${name}.bundle/Contents)
  add_library(${name} MODULE)
  target_link_libraries(${name} PRIVATE ${arg_LIBRARIES} ${zel_import_libraries})
  add_dependencies(${name} import_libraries)
  set_target_properties(${name} PROPERTIES
    PREFIX "" SUFFIX "" LINKER_LANGUAGE CXX LIBRARY_OUTPUT_DIRECTORY ${contents}/MacOS
    LINK_FLAGS "-exported_symbols_list ${zel_darwin}/exports.txt"
    LINK_DEPENDS "${zel_darwin}/exports.txt;${zel_import_libraries}")
  configure_file(${zel_darwin}/Info.plist.in ${contents}/Info.plist @ONLY)
  file(WRITE ${contents}/PkgInfo "BNDL????")
endfunction()
