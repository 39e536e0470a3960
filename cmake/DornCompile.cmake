# How everything in this tree is compiled.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 11)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(THREADS_PREFER_PTHREAD_FLAG ON)
find_package(Threads REQUIRED)

find_program(DORN_CCACHE ccache)
if(DORN_CCACHE)
    set(CMAKE_C_COMPILER_LAUNCHER "${DORN_CCACHE}")
    set(CMAKE_CXX_COMPILER_LAUNCHER "${DORN_CCACHE}")
endif()

add_compile_options(-Wall -Wextra -Wpedantic -Wconversion -Wshadow)
if(DORN_WERROR)
    add_compile_options(-Werror)
endif()

# __FILE__ is relative to the root of the tree, in log lines and exceptions alike. A compiler cache may name the sources
# from the build folder, so that clones of the tree share what they have compiled.
file(RELATIVE_PATH sourcesFromBuild "${CMAKE_BINARY_DIR}" "${CMAKE_SOURCE_DIR}")
string(REGEX REPLACE "/$" "" sourcesFromBuild "${sourcesFromBuild}")
add_compile_options("-fmacro-prefix-map=${CMAKE_SOURCE_DIR}/=" "-fmacro-prefix-map=${sourcesFromBuild}/=")

if(DORN_SANITIZE)
    add_compile_options(-fsanitize=${DORN_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    add_link_options(-fsanitize=${DORN_SANITIZE})
    if(DORN_SANITIZE MATCHES "undefined")
        # Needs a descriptor for every check, and takes each call for a fault where descriptors have run out.
        add_compile_options(-fno-sanitize=vptr)
    endif()
    if(DORN_SANITIZE MATCHES "thread" AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        add_compile_options(-Wno-tsan) # fences are not modelled; none is relied on
    endif()
endif()

if(DORN_COVERAGE)
    add_compile_options(-fprofile-instr-generate -fcoverage-mapping)
    add_link_options(-fprofile-instr-generate)
endif()

if(CMAKE_SIZEOF_VOID_P EQUAL 4)
    # Files of any size and inode number, and times after 2038.
    add_compile_definitions(_FILE_OFFSET_BITS=64 _TIME_BITS=64)
endif()
