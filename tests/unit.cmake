# What the tests of both plugins share.
add_library(plugin_test OBJECT support/fresh_plugin.cc support/plugin_test.cc)
target_link_libraries(plugin_test PUBLIC
  test_support reference_host host_family foundation_double)
zel_test_options(plugin_test)
target_precompile_headers(plugin_test REUSE_FROM test_support)

# The product's units, between the reference host and the Foundation double.
zel_add_tests(unit_tests SHARDS 4
  SOURCES
    support/intercept.cc
    plugin/host_test.cc
    plugin/main_test.cc
    plugin/tables_test.cc
    plugin/downgrade_test.cc
    plugin/errors_test.cc
    bridge/strings_test.cc
    bridge/strings_to_host_test.cc
    bridge/string_data_test.cc
    bridge/class_memory_test.cc
    bridge/data_test.cc
    bridge/dates_test.cc
    bridge/files_test.cc
    bridge/dictionaries_test.cc
    bridge/native_classes_test.cc
    bridge/native_to_variant_test.cc
    bridge/variant_to_native_test.cc
    bridge/variant_arrays_test.cc
    bridge/objects_to_native_test.cc
    defaults/lifecycle_test.cc
    defaults/joining_test.cc
    defaults/scalars_test.cc
    defaults/objects_test.cc
    defaults/domains_test.cc
    defaults/lists_test.cc
    defaults/nesting_test.cc
    defaults/empty_host_test.cc
    defaults/calls_test.cc
    defaults/fault_calls.cc
    defaults/fault_rows.cc
    defaults/object_fault_calls.cc
    defaults/faults_test.cc
    defaults/every_method_test.cc
  LIBRARIES plugin_test plugin_objects frame_objects)

# The companion plugin's, which has an entry point of its own.
zel_add_tests(companion_tests
  SOURCES
    companion/companion_test.cc
    companion/tables_test.cc
    companion/exceptions_test.cc
    companion/family_test.cc
    companion/faults_test.cc
  LIBRARIES plugin_test companion_objects frame_objects)

# What keeps tests apart.
zel_add_test_program(apart_sample SOURCES support/apart_sample.cc)
zel_add_tests(apart_tests SOURCES support/apart_test.cc)
add_dependencies(apart_tests apart_sample)
target_compile_definitions(apart_tests PRIVATE ZEL_SAMPLE="$<TARGET_FILE:apart_sample>")
