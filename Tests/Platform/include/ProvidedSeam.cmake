# Looks whether each provider defines everything that the headers of its seam declare.
include("${CMAKE_CURRENT_LIST_DIR}/SeamSymbols.cmake")

# check_provider(PROVIDER LEAST HEADER...) requires at least LEAST declarations, all of them defined.
function(check_provider provider least)
    dorn_declared_symbols(declared ${ARGN})
    dorn_archive_symbols(defined "TDBRV" "${provider}")
    list(LENGTH declared count)
    if(count LESS least)
        message(FATAL_ERROR "only ${count} symbols are declared; have the headers been read?")
    endif()
    foreach(symbol IN LISTS declared)
        if(NOT symbol IN_LIST defined)
            message(SEND_ERROR "declared and not defined: ${symbol}")
        endif()
    endforeach()
    message(STATUS "${count} symbols are declared, and defined in ${provider}.")
endfunction()

file(GLOB platform_headers "${SOURCE}/Platform/include/*.h")
check_provider("${PLATFORM_PROVIDER}" 60 ${platform_headers})
file(GLOB driver_headers "${SOURCE}/Ddal/include/*.h")
check_provider("${DRIVER_PROVIDER}" 27 ${driver_headers})
