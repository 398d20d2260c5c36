# Toolchain file: building for 32-bit Linux with Debian's cross compilers, or with clang and their
# headers and libraries, against a sysroot in the user's cache folder. What is built also runs here, on any 64-bit x86 machine: the sysroot's dynamic
# linker is its interpreter, and tools/i386 says where that finds libraries.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR i686)
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES ZEL_I386_SYSROOT)

cmake_path(GET CMAKE_CURRENT_LIST_DIR PARENT_PATH zel_project)
if(NOT ZEL_I386_SYSROOT)
  execute_process(COMMAND ${zel_project}/tools/i386 --sysroot COMMAND_ERROR_IS_FATAL ANY
    OUTPUT_VARIABLE sysroot OUTPUT_STRIP_TRAILING_WHITESPACE)
  set(ZEL_I386_SYSROOT ${sysroot} CACHE INTERNAL "What tools/i386 --sysroot says")
endif()
find_program(CMAKE_C_COMPILER i686-linux-gnu-gcc-12)
find_program(CMAKE_CXX_COMPILER i686-linux-gnu-g++-12)
if(NOT CMAKE_C_COMPILER OR NOT CMAKE_CXX_COMPILER OR NOT IS_DIRECTORY ${ZEL_I386_SYSROOT})
  message(FATAL_ERROR
    "The cross compilers or the sysroot are missing. Set them up: tools/setup --build-only --i386")
endif()

set(CMAKE_SYSROOT ${ZEL_I386_SYSROOT})
set(CMAKE_LIBRARY_ARCHITECTURE i386-linux-gnu)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
foreach(kind LIBRARY INCLUDE PACKAGE)
  set(CMAKE_FIND_ROOT_PATH_MODE_${kind} ONLY)
endforeach()
set(ENV{PKG_CONFIG_SYSROOT_DIR} ${CMAKE_SYSROOT})
set(ENV{PKG_CONFIG_LIBDIR} ${CMAKE_SYSROOT}/usr/lib/${CMAKE_LIBRARY_ARCHITECTURE}/pkgconfig)

# Wherever the sysroot stands, the same files come out.
foreach(language C CXX OBJC ASM)
  set(CMAKE_${language}_FLAGS_INIT -ffile-prefix-map=${CMAKE_SYSROOT}=)
  set(CMAKE_${language}_COMPILER_TARGET i686-linux-gnu)  # for clang, which has one compiler for all
endforeach()
set(CMAKE_EXE_LINKER_FLAGS_INIT -Wl,--dynamic-linker=${CMAKE_SYSROOT}/lib/ld-linux.so.2)
set(CMAKE_CROSSCOMPILING_EMULATOR ${zel_project}/tools/i386)
