# What CPack makes of the install components: Debian packages with their debug symbols apart.
#
#   script/package
#
# The names are the distribution's: a library's package carries the major version of its interface.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME misctools)
set(CPACK_PACKAGE_VENDOR MiscTools)
set(CPACK_PACKAGE_CONTACT "MiscTools developers <misctools@example.org>" CACHE STRING
  "Who answers for the packages, as \"Name <address>\"")
set(CPACK_PACKAGING_INSTALL_PREFIX ${CMAKE_INSTALL_PREFIX})
set(CPACK_PACKAGE_CHECKSUM SHA256)

set(CPACK_COMPONENTS_ALL runtime development)
if(MISCTOOLS_BUILD_TOOLS AND MISCTOOLS_PLATFORM STREQUAL "bundled")
  list(APPEND CPACK_COMPONENTS_ALL tools)
endif()
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
# Programs that are packaged against the library learn from this which package they need.
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_STRIP_FILES OFF)

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME libmisctools${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_DEBUGINFO_PACKAGE ON)
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION "This package holds the library that programs load.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libmisctools-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "qtbase5-dev (>= 5.15)")
set(CPACK_COMPONENT_DEVELOPMENT_DEPENDS runtime)
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "This package holds what programs are built with: headers, CMake package, pkg-config file.")

set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME misctools-tools)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_TOOLS_DEBUGINFO_PACKAGE ON)
set(CPACK_COMPONENT_TOOLS_DEPENDS runtime)
set(CPACK_COMPONENT_TOOLS_DESCRIPTION "This package holds the programs for the bench: EEPROM images, INI files, device reports.")

# Which packages hold the libraries that a program needs is asked of the machine's own database,
# which knows nothing of another processor's.
if(CMAKE_CROSSCOMPILING)
  set(CPACK_DEBIAN_RUNTIME_PACKAGE_DEPENDS "libqt5core5a (>= 5.15)")
  if(CMAKE_LIBRARY_ARCHITECTURE MATCHES "^aarch64-")
    set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE arm64)
  elseif(CMAKE_LIBRARY_ARCHITECTURE MATCHES "^arm-.*hf$")
    set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE armhf)
  endif()
else()
  foreach(component RUNTIME TOOLS)
    set(CPACK_DEBIAN_${component}_PACKAGE_SHLIBDEPS ON)
  endforeach()
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
endif()

include(CPack)
