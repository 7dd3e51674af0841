# Libraries, headers, the CMake package (find_package(pexquo) gives pexquo::cpp, pexquo::front,
# pexquo::pexquo and pexquo::kro), the pkg-config files pexquo-front.pc, pexquo.pc and kro.pc, and the manual pages.
include(CMakePackageConfigHelpers)

install(TARGETS kro pexquo pexquo_front pexquo_cpp EXPORT pexquo
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY include/pexquo DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
  FILES_MATCHING PATTERN "*.h" PATTERN "*.hpp")

# libpexquo finds libkro beside it, wherever both are.
set_target_properties(pexquo PROPERTIES INSTALL_RPATH "$ORIGIN")

set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/pexquo)
install(EXPORT pexquo NAMESPACE pexquo:: FILE pexquoTargets.cmake DESTINATION ${package_folder})
configure_package_config_file(cmake/pexquoConfig.cmake.in pexquoConfig.cmake
  INSTALL_DESTINATION ${package_folder})
write_basic_package_version_file(pexquoConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/pexquoConfig.cmake
  ${PROJECT_BINARY_DIR}/pexquoConfigVersion.cmake
  DESTINATION ${package_folder})

# The prefix is found from the file's own place, so that the tree may be moved.
file(RELATIVE_PATH PEXQUO_PC_TO_PREFIX
  /p/${CMAKE_INSTALL_LIBDIR}/pkgconfig /p)
foreach(name IN ITEMS pexquo-front pexquo kro)
  configure_file(cmake/${name}.pc.in ${name}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${name}.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endforeach()

install(FILES man/pexquo.3 DESTINATION ${CMAKE_INSTALL_MANDIR}/man3)
install(FILES man/pexquo.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
