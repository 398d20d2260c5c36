# Linking for 64-bit macOS.
find_program(ZEL_MACOS_LINKER_64 ld64.lld-14 REQUIRED)
set(zel_link "${ZEL_MACOS_LINKER_64} -arch ${ZEL_MACOS_ARCH}")
string(APPEND zel_link " -platform_version macos ${ZEL_MACOS_MINIMUM} ${ZEL_MACOS_MINIMUM}")

# A description of a library is enough for this linker.
function(zel_stand_in library version install_name)
  set(target ${ZEL_MACOS_ARCH}-macos)
  zel_symbols_of(${library} symbols)
  list(JOIN symbols ", " symbols)
  file(CONFIGURE OUTPUT ${zel_stand_ins}/${library}.tbd @ONLY CONTENT "--- !tapi-tbd
tbd-version: 4
targets: [ ${target} ]
install-name: ${install_name}
current-version: ${version}
compatibility-version: ${version}
exports:
  - targets: [ ${target} ]
    symbols: [ ${symbols} ]
...
")
  set_property(GLOBAL APPEND PROPERTY zel_stand_ins ${zel_stand_ins}/${library}.tbd)
endfunction()

# What this linker writes stays as it is: stripping would break the signature of a file for arm64.
function(zel_strip target)
endfunction()
