# dorn_test(NAME SOURCES sources... LIBRARIES libraries...) makes a GoogleTest program whose tests ctest runs one by one.
find_package(GTest REQUIRED)
include(GoogleTest)

set(DORN_LIBRARY_ROOMS Common Interface AdetS Startup Reset Firmware SwDlS)
# All test programs of the library's rooms; what they run stands in their dependencies.
add_custom_target(dorn_library_tests)

# dorn_discover_tests(NAME TIMEOUT seconds) tells ctest of the tests in a GoogleTest program. Tests of the library's rooms
# bear the label "library".
function(dorn_discover_tests name)
    cmake_parse_arguments(TEST "" "TIMEOUT" "" ${ARGN})
    set(labels)
    cmake_path(RELATIVE_PATH CMAKE_CURRENT_SOURCE_DIR BASE_DIRECTORY "${PROJECT_SOURCE_DIR}/Tests" OUTPUT_VARIABLE room)
    string(REGEX REPLACE "/.*" "" room "${room}")
    if(room IN_LIST DORN_LIBRARY_ROOMS)
        set(labels LABELS library)
        add_dependencies(dorn_library_tests ${name})
    endif()
    if(CMAKE_CROSSCOMPILING)
        math(EXPR TEST_TIMEOUT "${TEST_TIMEOUT} * 5") # an emulator takes its time
    endif()
    gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST PROPERTIES TIMEOUT ${TEST_TIMEOUT} ${labels})
endfunction()

function(dorn_test name)
    cmake_parse_arguments(TEST "" "TIMEOUT" "SOURCES;LIBRARIES" ${ARGN})
    if(NOT TEST_TIMEOUT)
        set(TEST_TIMEOUT 120)
    endif()
    add_executable(${name} ${TEST_SOURCES})
    target_link_libraries(${name} PRIVATE ${TEST_LIBRARIES} dorn::testkit GTest::gmock GTest::gtest_main)
    dorn_discover_tests(${name} TIMEOUT ${TEST_TIMEOUT})
endfunction()
