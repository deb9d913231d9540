# What the three libraries have in common: how they are built, and how they are installed so that
# find_package(Package) and pkg-config find them wherever the prefix has been moved to.

include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

# A library of ours: its sources, the word its macros begin with, and the folder its headers are included from.
function(ostraka_library name upper include_root)
    add_library(${name} ${ARGN})
    ostraka_warnings(${name})
    if(NOT BUILD_SHARED_LIBS)
        target_compile_definitions(${name} PUBLIC ${upper}_STATIC)
    endif()
    target_compile_features(${name} PUBLIC cxx_std_20)
    target_include_directories(${name} PUBLIC $<BUILD_INTERFACE:${include_root}>
                               $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
    set_target_properties(${name} PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION 0 INSTALL_RPATH $ORIGIN)
endfunction()

# ostraka_install(TARGET PACKAGE DESCRIPTION [REQUIRED PACKAGE...]): the library with its package files; headers
# are installed by whoever knows which are public.
function(ostraka_install name package description)
    if(NOT OSTRAKA_INSTALL)
        return()
    endif()
    install(TARGETS ${name} EXPORT ${package}Targets
            LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development
            ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)
    set(folder ${CMAKE_INSTALL_LIBDIR}/cmake/${package})
    install(EXPORT ${package}Targets NAMESPACE ${package}:: DESTINATION ${folder} COMPONENT development)

    set(dependencies "")
    set(pc_requires "")
    foreach(required ${ARGN})
        # The packages lie beside each other.
        string(APPEND dependencies
               "find_dependency(${required} ${PROJECT_VERSION} CONFIG HINTS \${CMAKE_CURRENT_LIST_DIR}/..)\n")
        string(TOLOWER ${required} lower)
        list(APPEND pc_requires "${lower} = ${PROJECT_VERSION}")
    endforeach()
    list(JOIN pc_requires ", " pc_requires)
    set(pc_flags "")
    if(NOT BUILD_SHARED_LIBS)
        string(TOUPPER ${name} upper)
        set(pc_flags " -D${upper}_STATIC")
    endif()
    file(RELATIVE_PATH pc_prefix /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)

    set(made ${PROJECT_BINARY_DIR}/packages)
    configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/Config.cmake.in ${made}/${package}Config.cmake
                                  INSTALL_DESTINATION ${folder} NO_SET_AND_CHECK_MACRO)
    configure_file(${PROJECT_SOURCE_DIR}/cmake/ConfigVersion.cmake.in ${made}/${package}ConfigVersion.cmake @ONLY)
    configure_file(${PROJECT_SOURCE_DIR}/cmake/library.pc.in ${made}/${name}.pc @ONLY)
    install(FILES ${made}/${package}Config.cmake ${made}/${package}ConfigVersion.cmake
            DESTINATION ${folder} COMPONENT development)
    install(FILES ${made}/${name}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
endfunction()
