# Compiling and linking for 32-bit macOS, which ld64.lld-14 doesn't know: by the last linker of LLVM
# that does.
find_program(ZEL_MACOS_LINKER_32 ld64.lld.darwinold-13 REQUIRED)
# It leaves the gaps between constants as it found its memory. So the C library, which hands memory
# out filled with the complement of this number, gives it zeros: the same sources make the same file.
set(zel_link "${CMAKE_COMMAND} -E env MALLOC_PERTURB_=255 ${ZEL_MACOS_LINKER_32} -arch i386")
string(APPEND zel_link " -macosx_version_min ${ZEL_MACOS_MINIMUM} -sdk_version ${ZEL_MACOS_MINIMUM}")

# indirect_imports.awk says why the assembly can't stay as the compiler writes it.
find_program(ZEL_AWK awk REQUIRED)
set(rewrite ${zel_darwin}/indirect_imports.awk)
set(zel_compile_depends ${rewrite} ${zel_imports})
set(CMAKE_CXX_COMPILE_OBJECT
  "<CMAKE_CXX_COMPILER> <DEFINES> <INCLUDES> <FLAGS> -S -o <OBJECT>.compiled.s <SOURCE>"
  "${ZEL_AWK} -v imports=${zel_imports} -f ${rewrite} <OBJECT>.compiled.s ><OBJECT>.s"
  "<CMAKE_CXX_COMPILER> --target=${CMAKE_CXX_COMPILER_TARGET} -c -o <OBJECT> <OBJECT>.s")

# A library that defines every symbol as nothing; this linker reads no descriptions of libraries.
function(zel_stand_in library version install_name)
  set(file ${zel_stand_ins}/${library})
  zel_symbols_of(${library} symbols)
  set(source)
  foreach(symbol IN LISTS symbols)
    string(APPEND source "\t.globl\t${symbol}\n${symbol}:\n\tnop\n")
  endforeach()
  file(CONFIGURE OUTPUT ${file}.s CONTENT "${source}" @ONLY)
  # Every other library needs the system's.
  set(system)
  if(NOT library STREQUAL "libSystem")
    set(system ${zel_stand_ins}/libSystem.dylib)
  endif()
  separate_arguments(link UNIX_COMMAND "${zel_link}")
  add_custom_command(OUTPUT ${file}.dylib
    COMMAND ${CMAKE_C_COMPILER} --target=${CMAKE_C_COMPILER_TARGET} -c -o ${file}.o ${file}.s
    COMMAND ${link} -dylib -install_name ${install_name} -compatibility_version ${version}
      -current_version ${version} -o ${file}.dylib ${file}.o ${system}
    DEPENDS ${file}.s ${system}
    COMMENT "Making a stand-in for ${library}" VERBATIM)
  set_property(GLOBAL APPEND PROPERTY zel_stand_ins ${file}.dylib)
endfunction()

find_program(ZEL_MACOS_STRIP llvm-strip-14 REQUIRED)
find_program(ZEL_MACOS_DUMP llvm-objdump-14 REQUIRED)

# Takes the local symbols out of the finished bundle: two thirds of what the linker writes. The file
# with all of them stays in the product folder, as NAME.full, for whoever has the addresses of a crash.
function(zel_strip target)
  set(full ${CMAKE_LIBRARY_OUTPUT_DIRECTORY}/${target}.full)
  set(script ${PROJECT_SOURCE_DIR}/cmake/macos_strip_32.cmake)
  set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${script})
  add_custom_command(TARGET ${target} POST_BUILD BYPRODUCTS ${full} VERBATIM
    COMMAND ${CMAKE_COMMAND} -E copy $<TARGET_FILE:${target}> ${full}
    COMMAND ${CMAKE_COMMAND} -DFILE=$<TARGET_FILE:${target}> -DSTRIP=${ZEL_MACOS_STRIP}
      -DDUMP=${ZEL_MACOS_DUMP} -P ${script})
endfunction()
