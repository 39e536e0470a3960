# Looks whether a provider defines everything that the platform's headers declare.
include("${CMAKE_CURRENT_LIST_DIR}/SeamSymbols.cmake")

file(GLOB headers "${SOURCE}/Platform/include/*.h")
dorn_declared_symbols(declared ${headers})
dorn_archive_symbols(defined "TDBRV" "${PROVIDER}")
list(LENGTH declared count)
if(count LESS 60)
    message(FATAL_ERROR "only ${count} symbols are declared; have the headers been read?")
endif()

foreach(symbol IN LISTS declared)
    if(NOT symbol IN_LIST defined)
        message(SEND_ERROR "declared and not defined: ${symbol}")
    endif()
endforeach()
message(STATUS "The platform's headers declare ${count} symbols.")
