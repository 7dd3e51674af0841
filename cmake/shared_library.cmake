# shared_library(TARGET): the number of the binary interface in the file's name, and its symbols'
# version by cmake/TARGET.map. An entry of a later release goes into a further node of the map, with
# the last one as its parent, and into tests/abi; one that changes or goes away takes a new SOVERSION.
function(shared_library target)
  set_target_properties(${target} PROPERTIES
    VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})
  # The sanitizers' own symbols have to stay visible.
  if(NOT PEXQUO_SANITIZE)
    set(map ${PROJECT_SOURCE_DIR}/cmake/${target}.map)
    target_link_options(${target} PRIVATE -Wl,--version-script=${map})
    set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${map})
  endif()
endfunction()
