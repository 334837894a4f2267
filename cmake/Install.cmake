# Installation: the library (component runtime), everything that is needed to build programs against it
# (component development), and the command-line programs (component tools).
include(CMakePackageConfigHelpers)

set(misctools_targets MiscTools)
if(TARGET MiscToolsPlatform)
  list(APPEND misctools_targets MiscToolsPlatform)
endif()
install(TARGETS ${misctools_targets} EXPORT MiscToolsTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    COMPONENT runtime
    NAMELINK_COMPONENT development)

if(TARGET eeprom-image)
  set(misctools_tools device-report eeprom-image ini-lint peak-meter run-and-grep watch-media)
  install(TARGETS ${misctools_tools} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tools)
  foreach(tool IN LISTS misctools_tools)
    install(FILES docs/man/${tool}.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tools)
    # These shells look for a file with the name of the command.
    install(FILES ${PROJECT_BINARY_DIR}/tools/completion/misctools.bash RENAME ${tool}
      DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions COMPONENT tools)
    install(FILES ${PROJECT_BINARY_DIR}/tools/completion/misctools.fish RENAME ${tool}.fish
      DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d COMPONENT tools)
  endforeach()
  install(FILES ${PROJECT_BINARY_DIR}/tools/completion/misctools.zsh RENAME _misctools
    DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/site-functions COMPONENT tools)
endif()

file(GLOB misctools_headers CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/include/*.h)
install(FILES ${misctools_headers}
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/MiscTools COMPONENT development)

set(misctools_cmake_dir ${CMAKE_INSTALL_LIBDIR}/cmake/MiscTools)
install(EXPORT MiscToolsTargets NAMESPACE MiscTools::
  DESTINATION ${misctools_cmake_dir} COMPONENT development)
# The package can also be found in the build directory.
export(EXPORT MiscToolsTargets NAMESPACE MiscTools:: FILE MiscToolsTargets.cmake)
configure_package_config_file(cmake/MiscToolsConfig.cmake.in MiscToolsConfig.cmake
  INSTALL_DESTINATION ${misctools_cmake_dir})
write_basic_package_version_file(MiscToolsConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES
    ${CMAKE_CURRENT_BINARY_DIR}/MiscToolsConfig.cmake
    ${CMAKE_CURRENT_BINARY_DIR}/MiscToolsConfigVersion.cmake
  DESTINATION ${misctools_cmake_dir} COMPONENT development)

# All paths are relative to the .pc file, so that the installed tree can be moved.
file(RELATIVE_PATH misctools_pc_to_prefix
  ${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
configure_file(cmake/MiscTools.pc.in MiscTools.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/MiscTools.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
