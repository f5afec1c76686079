# The CMake package: find_package(lys_colortable) gives the targets lys::core, lys::volume, lys::colortable, ... of what
# this build made. Libraries, programs and headers install where they are declared.

include(CMakePackageConfigHelpers)

set(package_directory "${CMAKE_INSTALL_LIBDIR}/cmake/lys_colortable")

get_property(dependencies GLOBAL PROPERTY LYS_PUBLIC_DEPENDENCIES)
list(REMOVE_DUPLICATES dependencies)
list(JOIN dependencies "\n" LYS_FIND_DEPENDENCIES)

install(EXPORT lys_colortable_targets NAMESPACE lys:: DESTINATION "${package_directory}")
configure_package_config_file(cmake/lys_colortableConfig.cmake.in lys_colortableConfig.cmake
  INSTALL_DESTINATION "${package_directory}" PATH_VARS LYS_MODULE_INSTALL_DIRECTORY)
write_basic_package_version_file(lys_colortableConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES "${CMAKE_CURRENT_BINARY_DIR}/lys_colortableConfig.cmake" "${CMAKE_CURRENT_BINARY_DIR}/lys_colortableConfigVersion.cmake"
        DESTINATION "${package_directory}")
