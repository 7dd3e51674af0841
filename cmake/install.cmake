# Libraries, headers, the CMake package and the pkg-config files. A component of find_package is
# there when its part was built; the components of the installation are those of packages.cmake.
#
#   kernels  pexquo::pexquo, pexquo::kro    pexquo.pc, kro.pc
#   front    pexquo::front                  pexquo-front.pc
#   cpp      pexquo::cpp                    pexquo-cpp.pc
include(CMakePackageConfigHelpers)
set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/pexquo)

# install_component(NAME TARGETS ...): the targets and the file that imports them.
function(install_component name)
  cmake_parse_arguments(arg "" "" "TARGETS" ${ARGN})
  install(TARGETS ${arg_TARGETS} EXPORT pexquo_${name}
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
      COMPONENT runtime NAMELINK_COMPONENT development)
  install(EXPORT pexquo_${name} NAMESPACE pexquo:: FILE pexquo-${name}.cmake
    DESTINATION ${package_folder} COMPONENT development)
endfunction()

# The prefix is found from the file's own place, so that the tree may be moved.
file(RELATIVE_PATH PEXQUO_PC_TO_PREFIX /p/${CMAKE_INSTALL_LIBDIR}/pkgconfig /p)
function(install_pkgconfig name)
  configure_file(cmake/${name}.pc.in ${name}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${name}.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
endfunction()

install_component(kernels TARGETS kro pexquo)
install_pkgconfig(kro)
install_pkgconfig(pexquo)
install_component(front TARGETS pexquo_front)
install_pkgconfig(pexquo-front)

# The headers for C++20 stand on the front and have no library of their own.
if(EXISTS ${PROJECT_SOURCE_DIR}/include/pexquo/pexquo.hpp)
  if(NOT TARGET pexquo_cpp)
    add_library(pexquo_cpp INTERFACE)
    target_link_libraries(pexquo_cpp INTERFACE pexquo_front Threads::Threads)
    target_compile_features(pexquo_cpp INTERFACE cxx_std_20)
  endif()
  set_target_properties(pexquo_cpp PROPERTIES EXPORT_NAME cpp)
  install_component(cpp TARGETS pexquo_cpp)
  install_pkgconfig(pexquo-cpp)
endif()

install(DIRECTORY include/pexquo DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development
  FILES_MATCHING PATTERN "*.h" PATTERN "*.hpp")

# Debian wants manuals and changelogs compressed, without a time stamp.
option(PEXQUO_PACKAGES "Prepare for cpack: Debian's paths and files (needs the prefix /usr)" OFF)
function(compress file result)
  get_filename_component(name ${file} NAME)
  set(compressed ${PROJECT_BINARY_DIR}/packaging/${name}.gz)
  file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/packaging)
  execute_process(COMMAND gzip -9nc ${file} OUTPUT_FILE ${compressed} COMMAND_ERROR_IS_FATAL ANY)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${file})
  set(${result} ${compressed} PARENT_SCOPE)
endfunction()

function(install_manual section component)
  set(page ${PROJECT_SOURCE_DIR}/man/pexquo.${section})
  if(EXISTS ${page})
    if(PEXQUO_PACKAGES)
      compress(${page} page)
    endif()
    install(FILES ${page} DESTINATION ${CMAKE_INSTALL_MANDIR}/man${section}
      COMPONENT ${component})
  endif()
endfunction()
install_manual(1 tools)
install_manual(3 development)

# A library finds the others beside it, wherever they all are.
set_target_properties(pexquo pexquo_front PROPERTIES INSTALL_RPATH "$ORIGIN")

configure_package_config_file(cmake/pexquoConfig.cmake.in pexquoConfig.cmake
  INSTALL_DESTINATION ${package_folder})
write_basic_package_version_file(pexquoConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/pexquoConfig.cmake
  ${PROJECT_BINARY_DIR}/pexquoConfigVersion.cmake
  DESTINATION ${package_folder} COMPONENT development)

include(cmake/packages.cmake)
