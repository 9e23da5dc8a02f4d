# What `cmake --install` lays down: the shared library, its headers, the CMake package and the pkg-config file.

include(CMakePackageConfigHelpers)

set(QILSYS_PACKAGE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/qilsys)

install(TARGETS qilsys EXPORT qilsysTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/public/qilsys DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN *.h)

install(EXPORT qilsysTargets NAMESPACE qilsys:: DESTINATION ${QILSYS_PACKAGE_DIR})
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/qilsysConfig.cmake.in
                              ${PROJECT_BINARY_DIR}/qilsysConfig.cmake INSTALL_DESTINATION ${QILSYS_PACKAGE_DIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/qilsysConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/qilsysConfig.cmake ${PROJECT_BINARY_DIR}/qilsysConfigVersion.cmake
        DESTINATION ${QILSYS_PACKAGE_DIR})

# The pkg-config file finds its prefix from where it lies, so that an installed tree can be moved.
file(RELATIVE_PATH QILSYS_PC_PREFIX /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
string(REGEX REPLACE "/$" "" QILSYS_PC_PREFIX ${QILSYS_PC_PREFIX})
configure_file(${PROJECT_SOURCE_DIR}/cmake/qilsys.pc.in ${PROJECT_BINARY_DIR}/qilsys.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/qilsys.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
