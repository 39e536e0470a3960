# dorn_library(NAME SOURCES...) makes the static library dorn_NAME with the alias dorn::NAME; its folder is an include root.
function(dorn_library name)
    add_library(dorn_${name} STATIC ${ARGN})
    add_library(dorn::${name} ALIAS dorn_${name})
    target_include_directories(dorn_${name} PUBLIC "$<BUILD_INTERFACE:${CMAKE_CURRENT_SOURCE_DIR}>")
    target_link_libraries(dorn_${name} PUBLIC Threads::Threads)
endfunction()

# dorn_service(NAME SOURCES sources... [LIBRARIES libraries...]) makes the executable DornNAMEExe of a hardware service on
# the host platform. The libraries stand in front of the platform's provider, whose functions they use.
function(dorn_service name)
    cmake_parse_arguments(SERVICE "" "" "SOURCES;LIBRARIES" ${ARGN})
    dorn_add_service(${name} SOURCES ${SERVICE_SOURCES} LIBRARIES ${SERVICE_LIBRARIES})
    set_target_properties(Dorn${name}Exe PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")
endfunction()
