# Finds LMDB (Debian: liblmdb-dev) and defines LMDB::LMDB. For this tree and for those who link what it installs.
include(FindPackageHandleStandardArgs)
find_library(DORN_LMDB NAMES lmdb DOC "The library LMDB")
find_path(DORN_LMDB_INCLUDE NAMES lmdb.h DOC "Where lmdb.h is")
mark_as_advanced(DORN_LMDB DORN_LMDB_INCLUDE)
find_package_handle_standard_args(LMDB REQUIRED_VARS DORN_LMDB DORN_LMDB_INCLUDE
                                       REASON_FAILURE_MESSAGE "On Debian: apt-get install liblmdb-dev")
if(LMDB_FOUND AND NOT TARGET LMDB::LMDB)
    add_library(LMDB::LMDB UNKNOWN IMPORTED)
    set_target_properties(LMDB::LMDB PROPERTIES IMPORTED_LOCATION "${DORN_LMDB}"
                                                INTERFACE_INCLUDE_DIRECTORIES "${DORN_LMDB_INCLUDE}")
endif()
