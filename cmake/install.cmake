# Headers, library, tool, resources, and a package that find_package(SharedClasses) reads.
include(CMakePackageConfigHelpers)

set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/SharedClasses)

install(TARGETS SharedClasses EXPORT SharedClassesTargets
  FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/SharedClasses)
install(EXPORT SharedClassesTargets NAMESPACE SharedClasses:: DESTINATION ${package_folder})

configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/SharedClassesConfig.cmake.in
  ${CMAKE_BINARY_DIR}/SharedClassesConfig.cmake INSTALL_DESTINATION ${package_folder})
write_basic_package_version_file(${CMAKE_BINARY_DIR}/SharedClassesConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/SharedClassesConfig.cmake ${CMAKE_BINARY_DIR}/SharedClassesConfigVersion.cmake
  DESTINATION ${package_folder})
