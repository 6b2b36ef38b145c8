# cmake --install: the libraries, their public headers, the command line, and the two ways in which
# other projects find them, find_package and pkg-config.
include(CMakePackageConfigHelpers)

install(TARGETS encap EXPORT encapTargets
    FILE_SET HEADERS DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}"
    FILE_SET generated_headers DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}")
install(TARGETS encap_host EXPORT encapTargets
    FILE_SET HEADERS DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}")
if(TARGET encap_cli)
    install(TARGETS encap_cli)
endif()
install(FILES LICENSE DESTINATION "${CMAKE_INSTALL_DOCDIR}")
if(WIN32)
    install(FILES encap/host/encap-units.tsv DESTINATION "${CMAKE_INSTALL_DATADIR}/encap")
endif()

# find_package(encap)
set(package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/encap")
install(EXPORT encapTargets NAMESPACE encap:: DESTINATION "${package_dir}")
configure_package_config_file(cmake/encapConfig.cmake.in
    "${PROJECT_BINARY_DIR}/package/encapConfig.cmake" INSTALL_DESTINATION "${package_dir}")
write_basic_package_version_file("${PROJECT_BINARY_DIR}/package/encapConfigVersion.cmake"
    COMPATIBILITY SameMinorVersion)
install(FILES
    "${PROJECT_BINARY_DIR}/package/encapConfig.cmake"
    "${PROJECT_BINARY_DIR}/package/encapConfigVersion.cmake"
    cmake/FindUtf8proc.cmake
    cmake/FindUdunits2.cmake
    DESTINATION "${package_dir}")

# pkg-config: the prefix is found from the file's own place, so that a moved tree works. A static
# library is linked with pkg-config --static.
set(pkgconfig_dir "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
file(RELATIVE_PATH from_pkgconfig_to_prefix
     "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig" "${CMAKE_INSTALL_PREFIX}")
file(RELATIVE_PATH from_prefix_to_lib "${CMAKE_INSTALL_PREFIX}" "${CMAKE_INSTALL_FULL_LIBDIR}")
file(RELATIVE_PATH from_prefix_to_include "${CMAKE_INSTALL_PREFIX}"
     "${CMAKE_INSTALL_FULL_INCLUDEDIR}")
set(unit_package " udunits")
if(WIN32)
    set(unit_package)
endif()
set(static_definition)
if(NOT BUILD_SHARED_LIBS)
    set(static_definition " -DENCAP_STATIC")
endif()
foreach(name encap encap-host)
    configure_file(cmake/${name}.pc.in "${PROJECT_BINARY_DIR}/package/${name}.pc" @ONLY)
    install(FILES "${PROJECT_BINARY_DIR}/package/${name}.pc" DESTINATION "${pkgconfig_dir}")
endforeach()
