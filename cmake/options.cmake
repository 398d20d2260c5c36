# Compiler settings, as interface targets.

# Every source of the project.
add_library(zel_common INTERFACE)
target_include_directories(zel_common INTERFACE ${PROJECT_SOURCE_DIR})
target_compile_options(zel_common INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror -fasynchronous-unwind-tables
  # The same sources make the same files, wherever they stand.
  -ffile-prefix-map=${PROJECT_SOURCE_DIR}=.)

# Product code: nothing of the C++ runtime library, and no name visible that isn't exported. Native
# exceptions pass through it, so it keeps its unwind tables.
add_library(zel_product INTERFACE)
target_link_libraries(zel_product INTERFACE zel_common)
target_compile_options(zel_product INTERFACE
  -fvisibility=hidden
  $<$<COMPILE_LANGUAGE:CXX>:-fno-exceptions -fno-rtti -fno-threadsafe-statics>)
