# cmake --install: headers under their include root, the library, the CMake package and the pkg-config file.
include(CMakePackageConfigHelpers)

set(packageFolder "${CMAKE_INSTALL_LIBDIR}/cmake/Tessera")
set(pkgConfigFolder "${CMAKE_INSTALL_LIBDIR}/pkgconfig")

install(TARGETS tessera EXPORT TesseraTargets LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}")
install(DIRECTORY "${PROJECT_SOURCE_DIR}/tessera" DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}"
    FILES_MATCHING PATTERN "*.h" PATTERN "*.hpp")
install(EXPORT TesseraTargets NAMESPACE Tessera:: DESTINATION "${packageFolder}")

configure_package_config_file(cmake/TesseraConfig.cmake.in "${PROJECT_BINARY_DIR}/TesseraConfig.cmake"
    INSTALL_DESTINATION "${packageFolder}" NO_SET_AND_CHECK_MACRO NO_CHECK_REQUIRED_COMPONENTS_MACRO)
# Before 1.0 a minor version may change what a host sees.
write_basic_package_version_file("${PROJECT_BINARY_DIR}/TesseraConfigVersion.cmake" COMPATIBILITY SameMinorVersion)
install(FILES "${PROJECT_BINARY_DIR}/TesseraConfig.cmake" "${PROJECT_BINARY_DIR}/TesseraConfigVersion.cmake"
    DESTINATION "${packageFolder}")

# The prefix in the file is found from the file's own place, so an installed tree can be moved.
file(RELATIVE_PATH pkgConfigToPrefix "/prefix/${pkgConfigFolder}" "/prefix")
configure_file(cmake/tessera.pc.in "${PROJECT_BINARY_DIR}/tessera.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/tessera.pc" DESTINATION "${pkgConfigFolder}")
