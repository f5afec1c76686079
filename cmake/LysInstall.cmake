# What installs: libraries, headers and a CMake package.

include(CMakePackageConfigHelpers)

install(DIRECTORY host/ DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/lys"
        FILES_MATCHING PATTERN "*.h" PATTERN "*_p.h" EXCLUDE)
if(NOT LYS_CORE_ONLY)
  install(DIRECTORY colortable DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/lys"
          FILES_MATCHING PATTERN "*.h" PATTERN "*_p.h" EXCLUDE)
endif()

install(EXPORT lys_colortable_targets NAMESPACE lys:: DESTINATION "${CMAKE_INSTALL_LIBDIR}/cmake/lys_colortable")
configure_package_config_file(cmake/lys_colortableConfig.cmake.in lys_colortableConfig.cmake
  INSTALL_DESTINATION "${CMAKE_INSTALL_LIBDIR}/cmake/lys_colortable")
write_basic_package_version_file(lys_colortableConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES "${CMAKE_CURRENT_BINARY_DIR}/lys_colortableConfig.cmake" "${CMAKE_CURRENT_BINARY_DIR}/lys_colortableConfigVersion.cmake"
        DESTINATION "${CMAKE_INSTALL_LIBDIR}/cmake/lys_colortable")
