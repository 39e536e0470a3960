# Debian packages: `cpack --preset release`, or cpack in the build folder, makes dorn, dorn-dev and dorn-tools of what
# `cmake --install` installs as runtime, dev and tools. They are for the distribution that they are built on.
set(DORN_MAINTAINER "Dorn developers <dorn@example.org>" CACHE STRING "Who answers for the packages")

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_CONTACT "${DORN_MAINTAINER}")
set(CPACK_PACKAGE_DIRECTORY "${PROJECT_BINARY_DIR}/packages")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
# What is built for its tests and the like is nobody's who installs.
set(CPACK_INSTALL_CMAKE_PROJECTS "${PROJECT_BINARY_DIR};${PROJECT_NAME};ALL;/")
set(CPACK_COMPONENTS_ALL dev)
if(DORN_PLATFORM STREQUAL "host")
    list(APPEND CPACK_COMPONENTS_ALL runtime tools)
endif()
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS OFF)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "") # every package has its own, the first line of its description
set(sameVersion "(= ${PROJECT_VERSION})")

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME dorn)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION admin)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA
    "${PROJECT_SOURCE_DIR}/packaging/debian/postinst"
    "${PROJECT_SOURCE_DIR}/packaging/debian/prerm"
    "${PROJECT_SOURCE_DIR}/packaging/debian/postrm")
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION "command for the hardware services of a base-station board
The command dorn shows and changes what runs on a node: services, parameters,
tags, messages, log, alarms and hardware. With its manual, completion for
shells, and systemd units that run hardware services and the gateway to other
boards.")

set(CPACK_DEBIAN_DEV_PACKAGE_NAME dorn-dev)
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEV_PACKAGE_SHLIBDEPS ON) # of dorn-conformance
set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS "libboost-dev, zlib1g-dev, liblmdb-dev, libfdt-dev")
set(CPACK_DEBIAN_DEV_PACKAGE_RECOMMENDS
    "dorn ${sameVersion}, g++, cmake (>= 3.25), libgtest-dev, libgmock-dev")
set(CPACK_DEBIAN_DEV_DESCRIPTION "library and test kit for hardware services of a base-station board
Headers, archives, and what CMake and pkg-config need to build services
outside of the source tree and to test them without a board; the program
dorn-conformance, which holds a platform against the rules of the seams, as an
archive to link with one's own, too; and all pages about it.")

set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME dorn-tools)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION devel)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS "dorn ${sameVersion}")
set(CPACK_DEBIAN_TOOLS_DESCRIPTION "simulated base-station boards and the services that run on them
Descriptions of boards and small real services, among them a fault manager
and a redundancy manager, to try things with on a PC.")

# Debian wants manual pages compressed, and a copyright and a changelog in every package.
string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)
foreach(package IN ITEMS dorn dorn-dev dorn-tools)
    configure_file(packaging/debian/changelog.in "${PROJECT_BINARY_DIR}/packaging/${package}/changelog" @ONLY)
endforeach()
configure_file(cmake/DebianFiles.cmake.in "${PROJECT_BINARY_DIR}/packaging/DebianFiles.cmake" @ONLY)
set(CPACK_PRE_BUILD_SCRIPTS "${PROJECT_BINARY_DIR}/packaging/DebianFiles.cmake")
include(CPack)
