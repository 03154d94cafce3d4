# What `cmake --install` lays down: libraries, the plug-in, the command with its manual page and
# completions, and for those who embed the evaluator or write plug-ins the headers and a package:
#
#   find_package(Gatotu REQUIRED)
#   target_link_libraries(mine PRIVATE gatotu::Evaluator)
include(CMakePackageConfigHelpers)

set(gatotu_package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/Gatotu)
set(gatotu_libraries Evaluator EvaluatorPlugin Frameworks Portable Frame PortableInspectors
  GatotuDirectory)

foreach(library ${gatotu_libraries})
  target_include_directories(${library} INTERFACE $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
endforeach()

# The options come along since the frame's objects name them; their flags stay ours.
install(TARGETS ${gatotu_libraries} gatotu_options EXPORT GatotuTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  OBJECTS DESTINATION ${CMAKE_INSTALL_LIBDIR}/gatotu)
install(EXPORT GatotuTargets NAMESPACE gatotu:: DESTINATION ${gatotu_package_dir})

install(TARGETS gatotu RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
# Loaded while the command runs, and looked for beside the libraries.
install(TARGETS Gatotu FrameworksLdap FrameworksLogin FrameworksMounts FrameworksUnicode
  PortableInspectorsDigest PortableInspectorsRegex
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})

install(FILES evaluator/evaluator.h evaluator/diagnostic.h evaluator/evidence.h
  evaluator/function_ref.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/evaluator)
install(DIRECTORY evaluator/plugin DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/evaluator
  FILES_MATCHING PATTERN "*.h")
install(DIRECTORY frame portable frameworks portable_inspectors
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN "*.h")
install(DIRECTORY inspectors/activedirectory/directory
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/inspectors/activedirectory
  FILES_MATCHING PATTERN "*.h" PATTERN "*xml*" EXCLUDE)
install(DIRECTORY machine DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
  FILES_MATCHING PATTERN "*.h" PATTERN live EXCLUDE)

configure_package_config_file(cmake/GatotuConfig.cmake.in ${PROJECT_BINARY_DIR}/GatotuConfig.cmake
  INSTALL_DESTINATION ${gatotu_package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/GatotuConfigVersion.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/GatotuConfig.cmake
  ${PROJECT_BINARY_DIR}/GatotuConfigVersion.cmake DESTINATION ${gatotu_package_dir})

install(FILES docs/gatotu.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES host/completion.bash RENAME gatotu
  DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
install(FILES README.md LICENSE CHANGELOG.md docs/language.md docs/captures.md
  DESTINATION ${CMAKE_INSTALL_DOCDIR})
