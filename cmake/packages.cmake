# Debian packages by `cpack` of a tree configured with PEXQUO_PACKAGES=ON; scripts/package.sh does it
# all. The components of the installation are the packages:
#
#   runtime      libpexquo1      the shared libraries
#   development  libpexquo-dev   headers, CMake package, pkg-config files, manual of the library
#   tools        pexquo-tools    the program and its manual
#   python       python3-pexquo  the Python module, where it was built
if(NOT PEXQUO_PACKAGES)
  return()
endif()
if(NOT CMAKE_INSTALL_PREFIX STREQUAL "/usr")
  message(FATAL_ERROR "PEXQUO_PACKAGES needs -DCMAKE_INSTALL_PREFIX=/usr: see scripts/package.sh")
endif()
set(package_runtime libpexquo1)
set(package_development libpexquo-dev)
set(package_tools pexquo-tools)
set(package_python python3-pexquo)

set(CPACK_COMPONENTS_ALL runtime development)
if(TARGET pexquo_program)
  list(APPEND CPACK_COMPONENTS_ALL tools)
endif()
if(TARGET pexquo_python)
  list(APPEND CPACK_COMPONENTS_ALL python)
endif()

compress(${PROJECT_SOURCE_DIR}/packaging/changelog changelog)
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
  set(folder share/doc/${package_${component}})
  install(FILES packaging/copyright DESTINATION ${folder} COMPONENT ${component})
  install(FILES ${changelog} DESTINATION ${folder} RENAME changelog.Debian.gz
    COMPONENT ${component})
endforeach()

install(FILES packaging/libpexquo1.lintian-overrides DESTINATION share/lintian/overrides
  RENAME libpexquo1 COMPONENT runtime)

# What stands in the control part of libpexquo1.
set(control_folder ${PROJECT_BINARY_DIR}/packaging/control)
set(control_files ${control_folder}/symbols ${control_folder}/shlibs ${control_folder}/triggers)
set(libraries $<TARGET_SONAME_FILE:kro> $<TARGET_SONAME_FILE:pexquo>
  $<TARGET_SONAME_FILE:pexquo_front>)
add_custom_command(OUTPUT ${control_files} ${control_folder}/depends
  COMMAND ${CMAKE_COMMAND} -DNM=${PEXQUO_NM} "-DLIBRARIES=${libraries}" -DFOLDER=${control_folder}
    -P ${PROJECT_SOURCE_DIR}/packaging/control.cmake
  DEPENDS ${libraries} packaging/control.cmake VERBATIM)
add_custom_target(package_control ALL DEPENDS ${control_files})

set(CPACK_GENERATOR DEB)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_OUTPUT_FILE_PREFIX ${PROJECT_BINARY_DIR}/packages)
set(CPACK_PACKAGE_NAME pexquo)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")  # each package has its own
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(release ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})
file(STRINGS packaging/changelog heading LIMIT_COUNT 1)
if(NOT heading MATCHES "^pexquo \\(${release}\\) ")
  message(FATAL_ERROR "packaging/changelog does not begin with release ${release}")
endif()
file(STRINGS packaging/changelog signature REGEX "^ -- " LIMIT_COUNT 1)
string(REGEX REPLACE "^ -- (.*>)  .*" "\\1" CPACK_DEBIAN_PACKAGE_MAINTAINER "${signature}")
set(CPACK_DEBIAN_PACKAGE_SOURCE pexquo)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
# Dependencies are those of the binaries; the packages' own libraries are found in the build tree.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/lib)
set(own "libpexquo1 (= ${release})")

set(CPACK_PROJECT_CONFIG_FILE ${PROJECT_SOURCE_DIR}/packaging/at_cpack.cmake)
set(CPACK_POST_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/packaging/installed_size.cmake)
set(CPACK_PEXQUO_CONTROL ${control_folder})

# describe(COMPONENT SYNOPSIS LINES...): lines of at most 79 characters.
function(describe component synopsis)
  list(APPEND lines "${synopsis}"
    "pexquo computes mathematical functions of arrays in three honest tiers of"
    "accuracy, with errors reported element by element, and draws random numbers"
    "from streams that can be partitioned and stored. Results have the same bits"
    "on every x86-64 processor of level v2 (all since about 2009) and at every"
    "vector level."
    "." ${ARGN})
  list(JOIN lines "\n" text)
  set(CPACK_DEBIAN_${component}_DESCRIPTION "${text}" PARENT_SCOPE)
endfunction()

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME libpexquo1)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS OFF)  # at_cpack.cmake
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${control_files})
describe(RUNTIME "vector math and random streams, the same bits everywhere"
  "This package has the shared libraries.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libpexquo-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SHLIBDEPS OFF)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${own}")
describe(DEVELOPMENT "vector math and random streams - development files"
  "This package has the headers for C and C++, the CMake package and the"
  "pkg-config files.")

set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME pexquo-tools)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION math)
set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS "${own}")
describe(TOOLS "vector math and random numbers from a shell"
  "This package has the program pexquo: functions of columns and arrays, random"
  "numbers into files.")

if(TARGET pexquo_python)
  set(CPACK_DEBIAN_PYTHON_PACKAGE_NAME python3-pexquo)
  set(CPACK_DEBIAN_PYTHON_PACKAGE_SECTION python)
  # The module is built for one Python and one binary interface of NumPy.
  execute_process(COMMAND ${PEXQUO_PYTHON_INTERPRETER} -c
      "import sys; print('python3 (>= %d.%d), python3 (<< %d.%d)' % (sys.version_info[:2] + (3, sys.version_info[1] + 1)))"
    OUTPUT_VARIABLE python OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  execute_process(COMMAND dpkg-query -W -f \${Provides} python3-numpy
    OUTPUT_VARIABLE provides COMMAND_ERROR_IS_FATAL ANY)
  string(REGEX MATCH "python3-numpy-abi[0-9]+" numpy "${provides}")
  set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS "${own}, ${python}, python3-numpy, ${numpy}")
  set(CPACK_DEBIAN_PYTHON_PACKAGE_CONTROL_EXTRA
    ${PROJECT_SOURCE_DIR}/packaging/python/postinst ${PROJECT_SOURCE_DIR}/packaging/python/prerm)
  describe(PYTHON "vector math and random streams on NumPy arrays"
    "This package has the Python module pexquo.")
endif()

include(CPack)
