# Toolchain file: building for macOS, for the one processor ZEL_MACOS_ARCH, with Debian's compiler and
# linkers. docs/macos.md tells the whole way.
set(CMAKE_SYSTEM_NAME Generic)
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES ZEL_MACOS_ARCH)
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)

# The oldest system that the processor's bundle is for.
set(ZEL_MACOS_MINIMUM_i386 10.6)
set(ZEL_MACOS_MINIMUM_x86_64 10.6)
set(ZEL_MACOS_MINIMUM_arm64 11.0)
set(ZEL_MACOS_MINIMUM ${ZEL_MACOS_MINIMUM_${ZEL_MACOS_ARCH}})
if(NOT ZEL_MACOS_MINIMUM)
  message(FATAL_ERROR "ZEL_MACOS_ARCH is '${ZEL_MACOS_ARCH}'; it has to be i386, x86_64 or arm64.")
endif()
set(CMAKE_SYSTEM_PROCESSOR ${ZEL_MACOS_ARCH})

find_program(CMAKE_C_COMPILER clang-14 REQUIRED)
find_program(CMAKE_CXX_COMPILER clang++-14 REQUIRED)
find_program(CMAKE_AR llvm-ar-14 REQUIRED)
find_program(CMAKE_RANLIB llvm-ranlib-14 REQUIRED)
foreach(language C CXX)
  set(CMAKE_${language}_COMPILER_TARGET ${ZEL_MACOS_ARCH}-apple-macosx${ZEL_MACOS_MINIMUM})
endforeach()

# None of the build machine's C library is visible, and of the C++ library only the headers that
# stand without one. features.h is what they ask of the C library.
file(GLOB cxx_configuration /usr/include/*/c++/12)
if(NOT cxx_configuration)
  message(FATAL_ERROR "The headers of libstdc++ 12 are missing: install libstdc++-12-dev.")
endif()
list(GET cxx_configuration 0 cxx_configuration)
cmake_path(GET CMAKE_CURRENT_LIST_DIR PARENT_PATH project)
set(freestanding "-ffreestanding -nostdlibinc -isystem ${project}/native/darwin/include")
string(APPEND freestanding " -fno-ident -fno-common -fno-stack-protector")
set(CMAKE_C_FLAGS_INIT "${freestanding}")
set(CMAKE_CXX_FLAGS_INIT
  "${freestanding} -nostdinc++ -isystem /usr/include/c++/12 -isystem ${cxx_configuration}")
# Without debugging information, which would tell where the bundle was built.
set(CMAKE_C_FLAGS_RELEASE "-O2" CACHE STRING "")
set(CMAKE_CXX_FLAGS_RELEASE "-O2" CACHE STRING "")
