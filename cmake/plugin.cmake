# zel_add_plugin(NAME OBJECTS...): the plugin NAME.so that a host loads, from these object libraries.
function(zel_add_plugin name)
  set(exports ${PROJECT_SOURCE_DIR}/plugin/exports.map)
  add_library(${name} MODULE)
  zel_say_version(${name} ${name})
  target_link_libraries(${name} PRIVATE ${ARGN} zelnative gnustep-base objc)
  # Linked as C: the product needs no C++ runtime library, and a name that does is an error here.
  set_target_properties(${name} PROPERTIES
    PREFIX "" LINKER_LANGUAGE C BUILD_RPATH "$ORIGIN" BUILD_RPATH_USE_ORIGIN ON
    LINK_DEPENDS ${exports})
  target_link_options(${name} PRIVATE
    -Wl,--version-script=${exports} -Wl,--no-undefined -Wl,--as-needed -Wl,-z,relro -Wl,-z,now)
endfunction()
