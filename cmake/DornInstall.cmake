# What `cmake --install` puts where. Nothing of it names a place of this machine: it can be moved, and packed.
#
# Install components: runtime (the command), dev (library, provider, TestKit, conformance suite, pages), tools (simulated
# boards and their services).
include_guard(GLOBAL)
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)
include("${CMAKE_CURRENT_LIST_DIR}/DornAddService.cmake")

set(DORN_INSTALL_CMAKEDIR "${CMAKE_INSTALL_LIBDIR}/cmake/Dorn")

# dorn_install(NAME PART part [ROOT folder] [HEADERS headers...]) installs the target behind dorn::NAME under that name, with those
# of its headers that a user includes: files below ROOT, by default the target's folder, or patterns of them.
# A PART (library, host, testkit, conformance) is an include root of what is installed: a header is spelled there as it is in the
# tree.
function(dorn_install name)
    cmake_parse_arguments(INSTALL "" "PART;ROOT" "HEADERS" ${ARGN})
    if(NOT INSTALL_ROOT)
        set(INSTALL_ROOT "${CMAKE_CURRENT_SOURCE_DIR}")
    endif()
    set(includes "${CMAKE_INSTALL_INCLUDEDIR}/dorn/${INSTALL_PART}")
    get_target_property(target dorn::${name} ALIASED_TARGET)
    set_target_properties(${target} PROPERTIES EXPORT_NAME ${name})
    get_property(parts GLOBAL PROPERTY DORN_INSTALLED_PARTS)
    if(NOT INSTALL_PART IN_LIST parts)
        set_property(GLOBAL APPEND PROPERTY DORN_INSTALLED_PARTS ${INSTALL_PART})
    endif()
    target_include_directories(${target} INTERFACE "$<INSTALL_INTERFACE:${includes}>")
    install(TARGETS ${target} EXPORT Dorn-${INSTALL_PART} ARCHIVE COMPONENT dev)
    foreach(pattern IN LISTS INSTALL_HEADERS)
        file(GLOB headers CONFIGURE_DEPENDS RELATIVE "${INSTALL_ROOT}" "${INSTALL_ROOT}/${pattern}")
        if(NOT headers)
            message(FATAL_ERROR "dorn_install(${name}): no header is called '${pattern}' below ${INSTALL_ROOT}")
        endif()
        foreach(header IN LISTS headers)
            cmake_path(GET header PARENT_PATH folder)
            install(FILES "${INSTALL_ROOT}/${header}" DESTINATION "${includes}/${folder}" COMPONENT dev)
        endforeach()
    endforeach()
endfunction()

# dorn_pkg_config(NAME DESCRIPTION text PARTS parts... ARCHIVES archives... [LIBRARIES libraries...] [OPTIONS options...])
# installs NAME.pc for builds without CMake. The archives call each other, so they are a group.
function(dorn_pkg_config name)
    cmake_parse_arguments(PC "" "DESCRIPTION" "PARTS;ARCHIVES;LIBRARIES;OPTIONS" ${ARGN})
    list(TRANSFORM PC_PARTS REPLACE "(.+)" "-I\${includedir}/dorn/\\1")
    list(TRANSFORM PC_ARCHIVES PREPEND "-l")
    list(TRANSFORM PC_LIBRARIES PREPEND "-l")
    list(JOIN PC_PARTS " " includes)
    list(JOIN PC_ARCHIVES " " archives)
    list(JOIN PC_LIBRARIES " " libraries)
    list(JOIN PC_OPTIONS " " options)
    # From where the file lies to the prefix.
    file(RELATIVE_PATH up "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
    string(REGEX REPLACE "/$" "" up "${up}")
    configure_file("${PROJECT_SOURCE_DIR}/cmake/dorn.pc.in" "${PROJECT_BINARY_DIR}/pkgconfig/${name}.pc" @ONLY)
    install(FILES "${PROJECT_BINARY_DIR}/pkgconfig/${name}.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig"
            COMPONENT dev)
endfunction()

# Debug information names the folders that it was made in, and is most of what is installed: the build folder keeps it.
function(dorn_install_stripped component what pattern)
    install(CODE "
        file(GLOB stripped \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${pattern}\")
        foreach(file IN LISTS stripped)
            execute_process(COMMAND \"${CMAKE_STRIP}\" ${what} \"\${file}\" COMMAND_ERROR_IS_FATAL ANY)
        endforeach()" COMPONENT ${component})
endfunction()

# dorn_install_program(TARGET COMPONENT component [DESTINATION folder]) installs an executable, by default beside others.
function(dorn_install_program target)
    cmake_parse_arguments(PROGRAM "" "COMPONENT;DESTINATION" "" ${ARGN})
    if(NOT PROGRAM_DESTINATION)
        set(PROGRAM_DESTINATION "${CMAKE_INSTALL_BINDIR}")
    endif()
    get_target_property(name ${target} OUTPUT_NAME)
    if(NOT name)
        set(name ${target})
    endif()
    install(TARGETS ${target} RUNTIME DESTINATION "${PROGRAM_DESTINATION}" COMPONENT ${PROGRAM_COMPONENT})
    dorn_install_stripped(${PROGRAM_COMPONENT} --strip-all "${PROGRAM_DESTINATION}/${name}")
endfunction()

# dorn_install_documents(COMPONENT component PACKAGE package [PAGES]) installs the licence where the Debian package of that name
# has its copyright; with PAGES all pages, which lead to each other as in this tree.
function(dorn_install_documents)
    cmake_parse_arguments(DOCUMENTS "PAGES" "COMPONENT;PACKAGE" "" ${ARGN})
    set(folder "${CMAKE_INSTALL_DATADIR}/doc/${DOCUMENTS_PACKAGE}")
    install(FILES "${PROJECT_SOURCE_DIR}/LICENSE" DESTINATION "${folder}" COMPONENT ${DOCUMENTS_COMPONENT})
    if(NOT DOCUMENTS_PAGES)
        return()
    endif()
    install(FILES "${PROJECT_SOURCE_DIR}/README.md" "${PROJECT_SOURCE_DIR}/CHANGELOG.md" DESTINATION "${folder}"
            COMPONENT ${DOCUMENTS_COMPONENT})
    install(DIRECTORY "${PROJECT_SOURCE_DIR}/Docs" DESTINATION "${folder}" COMPONENT ${DOCUMENTS_COMPONENT}
            PATTERN CMakeLists.txt EXCLUDE PATTERN Doxyfile EXCLUDE)
endfunction()

# dorn_install_package() installs what find_package(Dorn) reads. Called once, behind every dorn_install().
function(dorn_install_package)
    get_property(parts GLOBAL PROPERTY DORN_INSTALLED_PARTS)
    foreach(part IN LISTS parts)
        install(EXPORT Dorn-${part} NAMESPACE dorn:: DESTINATION "${DORN_INSTALL_CMAKEDIR}" COMPONENT dev)
    endforeach()
    set(config "${PROJECT_BINARY_DIR}/DornConfig.cmake")
    set(version "${PROJECT_BINARY_DIR}/DornConfigVersion.cmake")
    configure_package_config_file("${PROJECT_SOURCE_DIR}/cmake/DornConfig.cmake.in" "${config}"
        INSTALL_DESTINATION "${DORN_INSTALL_CMAKEDIR}" NO_SET_AND_CHECK_MACRO NO_CHECK_REQUIRED_COMPONENTS_MACRO)
    write_basic_package_version_file("${version}" COMPATIBILITY SameMinorVersion)
    install(FILES "${config}" "${version}"
                  "${PROJECT_SOURCE_DIR}/cmake/DornAddService.cmake"
                  "${PROJECT_SOURCE_DIR}/cmake/FindLMDB.cmake"
                  "${PROJECT_SOURCE_DIR}/cmake/FindLibFdt.cmake"
            DESTINATION "${DORN_INSTALL_CMAKEDIR}" COMPONENT dev)
    dorn_install_stripped(dev --strip-debug "${CMAKE_INSTALL_LIBDIR}/libdorn_*.a")
endfunction()
