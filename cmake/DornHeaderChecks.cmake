# dorn_check_headers(TARGET) compiles every header in the folder of a target alone, and twice in a row: all of them as
# C++, those called .h also as C11. What the build makes of it, TARGET_header_checks, is not used.
# Folders below that have a CMakeLists.txt of their own belong to other targets.
# dorn_check_headers(TARGET PREFIX) is for a target whose folder is PREFIX below its include root.
include_guard(GLOBAL)

function(dorn_check_headers target)
    get_target_property(folder ${target} SOURCE_DIR)
    file(GLOB_RECURSE headers CONFIGURE_DEPENDS RELATIVE "${folder}" "${folder}/*.h" "${folder}/*.hpp")
    file(GLOB_RECURSE others RELATIVE "${folder}" "${folder}/*/CMakeLists.txt")
    foreach(other IN LISTS others)
        cmake_path(GET other PARENT_PATH subfolder)
        list(FILTER headers EXCLUDE REGEX "^${subfolder}/")
    endforeach()
    list(TRANSFORM headers PREPEND "${ARGV1}")
    set(sources)
    foreach(header IN LISTS headers)
        set(languages cpp)
        if(header MATCHES "\\.h$")
            list(APPEND languages c)
        endif()
        foreach(language IN LISTS languages)
            set(source "${CMAKE_CURRENT_BINARY_DIR}/${target}_header_checks/${header}.${language}")
            file(CONFIGURE OUTPUT "${source}" CONTENT "#include \"${header}\"\n#include \"${header}\"\n" @ONLY)
            list(APPEND sources "${source}")
        endforeach()
    endforeach()
    add_library(${target}_header_checks OBJECT ${sources})
    target_link_libraries(${target}_header_checks PRIVATE ${target})
    set_target_properties(${target}_header_checks PROPERTIES
        C_STANDARD 11 C_STANDARD_REQUIRED ON C_EXTENSIONS OFF)
endfunction()
