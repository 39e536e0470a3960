# dorn_add_service(NAME SOURCES sources... [LIBRARIES libraries...] [PLATFORM libraries...]) makes the executable
# DornNAMEExe of a hardware service, which is called NAME in its constructor too: ClimateS gives DornClimateSExe.
#
# LIBRARIES stand in front of the library, which they use; PLATFORM behind it: what implements the functions of the seams,
# where that is not the host provider that find_package(Dorn) brings.
include_guard(GLOBAL)

function(dorn_add_service name)
    cmake_parse_arguments(SERVICE "" "" "SOURCES;LIBRARIES;PLATFORM" ${ARGN})
    if(NOT name MATCHES "^[A-Za-z_][A-Za-z0-9_]*$" OR name MATCHES "Exe$")
        message(FATAL_ERROR "dorn_add_service: '${name}' cannot be a service's name: it is made of letters, digits and '_', "
                            "and 'Dorn' and 'Exe' are put around it")
    endif()
    if(NOT SERVICE_SOURCES)
        message(FATAL_ERROR "dorn_add_service(${name}): SOURCES are missing")
    endif()
    if(SERVICE_UNPARSED_ARGUMENTS)
        message(FATAL_ERROR "dorn_add_service(${name}): '${SERVICE_UNPARSED_ARGUMENTS}' is none of SOURCES, LIBRARIES and "
                            "PLATFORM")
    endif()
    if(SERVICE_PLATFORM)
        # One group: nothing else keeps the platform behind the library.
        get_target_property(parts dorn::dorn INTERFACE_LINK_LIBRARIES)
        list(FILTER parts EXCLUDE REGEX "boundaryif|bifs") # headers
        list(JOIN parts "," group)
        list(JOIN SERVICE_PLATFORM "," platform)
        set(library dorn::boundaryif dorn::bifs "$<LINK_GROUP:RESCAN,${group},${platform}>")
    elseif(TARGET dorn::service)
        set(library dorn::service)
    else()
        message(FATAL_ERROR "dorn_add_service(${name}): this installation has no provider of the platform. Name yours with "
                            "PLATFORM, or ask for one: find_package(Dorn REQUIRED COMPONENTS service)")
    endif()
    add_executable(Dorn${name}Exe ${SERVICE_SOURCES})
    target_link_libraries(Dorn${name}Exe PRIVATE ${SERVICE_LIBRARIES} ${library})
endfunction()
