# Debian packages: the libraries, what is needed to develop with them, and the tool. `./dev package` makes them.

set(documents ${PROJECT_BINARY_DIR}/packages)
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME ostraka)
set(CPACK_PACKAGE_VENDOR libOstraka)
set(CPACK_PACKAGE_CONTACT "libOstraka maintainers <maintainers@ostraka.invalid>")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE
    GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL runtime development)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
set(CPACK_COMPONENT_DEVELOPMENT_DEPENDS runtime)
set(CPACK_COMPONENT_TOOL_DEPENDS runtime)

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME libostraka0)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${PROJECT_SOURCE_DIR}/cmake/triggers ${documents}/shlibs)
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION "reader of C++ and IDL sources that don't build, libraries
libOstraka reads an old C++ code base in a dialect of its own with a tolerant
parser, keeps a symbol table over many files, and holds the reports of memory
checkers. This package has the shared libraries.")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libostraka-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "reader of C++ and IDL sources that don't build, headers
libOstraka reads an old C++ code base in a dialect of its own with a tolerant
parser, keeps a symbol table over many files, and holds the reports of memory
checkers. This package has what programs are built with.")

# Debian's policy wants these beside each package.
string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)
configure_file(${PROJECT_SOURCE_DIR}/cmake/changelog.in ${documents}/changelog @ONLY)
file(WRITE ${documents}/shlibs "")
foreach(library basalt gneiss ostraka)
    file(APPEND ${documents}/shlibs "lib${library} 0 libostraka0 (>= ${PROJECT_VERSION})\n")
endforeach()
execute_process(COMMAND gzip -9nf changelog WORKING_DIRECTORY ${documents})
function(ostraka_package_documents component package)
    install(FILES ${PROJECT_SOURCE_DIR}/cmake/copyright ${documents}/changelog.gz
            DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${package} COMPONENT ${component})
endfunction()
ostraka_package_documents(runtime libostraka0)
ostraka_package_documents(development libostraka-dev)

if(TARGET ostraka_tool)
    list(APPEND CPACK_COMPONENTS_ALL tool)
    set(CPACK_DEBIAN_TOOL_PACKAGE_NAME ostraka)
    set(CPACK_DEBIAN_TOOL_PACKAGE_SECTION devel)
    set(CPACK_COMPONENT_TOOL_DESCRIPTION "asks C++ and IDL sources that don't build
The tool answers, at a shell and in an editor, what an engineer asks of a
large C++ code base that doesn't build on this machine: which classes there
are, who derives from whom, where a name is declared, which header an include
means, and whom to charge for the findings of a memory checker.")
    ostraka_package_documents(tool ostraka)
endif()
include(CPack)
