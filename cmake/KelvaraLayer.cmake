# A folder of src/ is a static library, and what it links is what it may include:
#
#   kelvara_layer(services SOURCES FileScanner.cpp USES kelvara_model PRIVATE_USES ICU::uc)
#
# USES is what its headers need, PRIVATE_USES only its sources.
function(kelvara_layer name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;USES;PRIVATE_USES")
  add_library(kelvara_${name} STATIC ${arg_SOURCES})
  target_include_directories(kelvara_${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
  target_link_libraries(kelvara_${name}
    PUBLIC ${arg_USES}
    PRIVATE kelvara_options ${arg_PRIVATE_USES})
endfunction()

# A folder of src/ that has only headers.
function(kelvara_header_layer name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "USES")
  add_library(kelvara_${name} INTERFACE)
  target_include_directories(kelvara_${name} INTERFACE ${PROJECT_SOURCE_DIR}/src)
  target_link_libraries(kelvara_${name} INTERFACE ${arg_USES})
endfunction()

# A test program of GoogleTest, every test of it known to ctest:
#
#   kelvara_test(model SOURCES RatingTest.cpp USES kelvara_model)
function(kelvara_test name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;USES")
  add_executable(${name}_tests ${arg_SOURCES})
  target_include_directories(${name}_tests PRIVATE ${PROJECT_SOURCE_DIR}/tests)
  target_link_libraries(${name}_tests PRIVATE ${arg_USES} kelvara_options GTest::gmock GTest::gtest_main)
  gtest_discover_tests(${name}_tests TEST_PREFIX ${name}. NO_PRETTY_VALUES DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 300)
endfunction()
