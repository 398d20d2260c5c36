# Compiler settings, as interface targets.

# Native exceptions pass through the code, so it keeps its unwind tables, and no name is visible that
# isn't exported. The linker for 32-bit macOS can do with neither: exceptions unwind nothing there,
# and the list of exports hides the names.
set(zel_unwinding -fasynchronous-unwind-tables)
set(zel_visibility -fvisibility=hidden)
if(ZEL_MACOS_ARCH STREQUAL "i386")
  set(zel_unwinding -fno-asynchronous-unwind-tables)
  set(zel_visibility -fvisibility=default)
endif()

# Every source of the project.
add_library(zel_common INTERFACE)
target_include_directories(zel_common INTERFACE ${PROJECT_SOURCE_DIR})
target_compile_options(zel_common INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror ${zel_unwinding}
  # The same sources make the same files, wherever they stand.
  -ffile-prefix-map=${PROJECT_SOURCE_DIR}=.)

# What another library has is called through the table of its addresses, without a stub on the way:
# nearly every call of the product leaves it. (macOS has stubs of its own, or none.)
set(zel_calls)
if(ZEL_PLATFORM STREQUAL "gnustep")
  set(zel_calls -fno-plt)
endif()

# A buffer is cleared by the C library, which knows the processor: g++ would have it done word by word.
set(zel_clearing)
if(ZEL_PLATFORM STREQUAL "gnustep")
  set(zel_clearing $<$<COMPILE_LANG_AND_ID:CXX,GNU>:-mmemset-strategy=libcall:-1:noalign>)
endif()

# For the sources whose functions a host calls. Some code for 32-bit macOS takes 16 bytes at once, and
# a host may call with a stack of any alignment. What is called from there finds it aligned.
set(zel_called_by_host)
if(ZEL_MACOS_ARCH STREQUAL "i386")
  set(zel_called_by_host -mstackrealign)
endif()

# Product code: nothing of the C++ runtime library.
add_library(zel_product INTERFACE)
target_link_libraries(zel_product INTERFACE zel_common)
target_compile_options(zel_product INTERFACE
  ${zel_visibility}
  ${zel_calls}
  ${zel_clearing}
  $<$<COMPILE_LANGUAGE:CXX>:-fno-exceptions -fno-rtti -fno-threadsafe-statics>)

# zel_say_version(TARGET NAME): the target's file says this name and the version, for who looks into it.
function(zel_say_version target name)
  set(source ${PROJECT_SOURCE_DIR}/native/version.c)
  target_sources(${target} PRIVATE ${source})
  target_compile_definitions(${target} PRIVATE ZEL_VERSION="${name} ${PROJECT_VERSION}")
  if(ZEL_PLATFORM STREQUAL "darwin")
    # The rules for bundles are those of C++.
    set_source_files_properties(${source} TARGET_DIRECTORY ${target} PROPERTIES LANGUAGE CXX)
  endif()
endfunction()

# For the code around the product, in the folder that calls it: only what is under test is worth
# optimising, so its own targets say where that isn't so.
macro(zel_add_support_options)
  add_compile_options(-O0 -g1)
endmacro()

# Reading the same few headers is most of what compiling the larger parts takes.
# zel_precompile_headers(PART HEADER...): the part's own headers that nearly all of its sources include.
function(zel_precompile_headers part)
  list(TRANSFORM ARGN PREPEND ${PROJECT_SOURCE_DIR}/ OUTPUT_VARIABLE own)
  target_precompile_headers(${part} PRIVATE
    <algorithm> <functional> <map> <optional> <string> <string_view> <vector> ${own})
endfunction()
