# dorn_library(NAME SOURCES...) makes the static library dorn_NAME with the alias dorn::NAME; its folder is an include root.
function(dorn_library name)
    add_library(dorn_${name} STATIC ${ARGN})
    add_library(dorn::${name} ALIAS dorn_${name})
    target_include_directories(dorn_${name} PUBLIC "${CMAKE_CURRENT_SOURCE_DIR}")
    target_link_libraries(dorn_${name} PUBLIC Threads::Threads)
endfunction()

# dorn_service(NAME SOURCES...) makes the executable DornNAMEExe of a hardware service on the host platform.
function(dorn_service name)
    add_executable(Dorn${name}Exe ${ARGN})
    target_link_libraries(Dorn${name}Exe PRIVATE dorn::dorn dorn::host)
    set_target_properties(Dorn${name}Exe PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")
endfunction()
