# Finds libfdt (Debian: libfdt-dev) and defines LibFdt::LibFdt. For this tree and for those who link what it installs.
# The archive, where there is one: a service that uses no driver then needs no library for it.
include(FindPackageHandleStandardArgs)
find_library(DORN_LIBFDT NAMES libfdt.a fdt DOC "The library libfdt")
find_path(DORN_LIBFDT_INCLUDE NAMES libfdt.h DOC "Where libfdt.h is")
mark_as_advanced(DORN_LIBFDT DORN_LIBFDT_INCLUDE)
find_package_handle_standard_args(LibFdt REQUIRED_VARS DORN_LIBFDT DORN_LIBFDT_INCLUDE
                                         REASON_FAILURE_MESSAGE "On Debian: apt-get install libfdt-dev")
if(LibFdt_FOUND AND NOT TARGET LibFdt::LibFdt)
    add_library(LibFdt::LibFdt UNKNOWN IMPORTED)
    set_target_properties(LibFdt::LibFdt PROPERTIES IMPORTED_LOCATION "${DORN_LIBFDT}"
                                                    INTERFACE_INCLUDE_DIRECTORIES "${DORN_LIBFDT_INCLUDE}")
endif()
