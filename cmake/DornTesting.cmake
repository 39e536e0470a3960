# dorn_test(NAME SOURCES sources... LIBRARIES libraries...) makes a GoogleTest program whose tests ctest runs one by one.
find_package(GTest REQUIRED)
include(GoogleTest)

function(dorn_test name)
    cmake_parse_arguments(TEST "" "TIMEOUT" "SOURCES;LIBRARIES" ${ARGN})
    if(NOT TEST_TIMEOUT)
        set(TEST_TIMEOUT 120)
    endif()
    add_executable(${name} ${TEST_SOURCES})
    target_link_libraries(${name} PRIVATE ${TEST_LIBRARIES} dorn::testkit GTest::gmock GTest::gtest_main)
    gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST PROPERTIES TIMEOUT ${TEST_TIMEOUT})
endfunction()
