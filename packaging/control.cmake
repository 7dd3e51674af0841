# Writes what stands in the control part of libpexquo1: symbols (deb-symbols(5)), shlibs
# (deb-shlibs(5)) and triggers, and into `depends` what the libraries need from other packages.
# Variables: NM; LIBRARIES, files by their sonames; FOLDER.
cmake_minimum_required(VERSION 3.25)
set(package libpexquo1)

set(symbols "")
set(shlibs "")
set(own "")
foreach(library IN LISTS LIBRARIES)
  get_filename_component(soname ${library} NAME)
  string(REGEX MATCH "^(.*)\\.so\\.(.*)$" parts ${soname})
  string(APPEND own "${CMAKE_MATCH_1} ${CMAKE_MATCH_2}\n")
  string(APPEND shlibs "${CMAKE_MATCH_1} ${CMAKE_MATCH_2} ${package} (>= ${CMAKE_MATCH_2}.0.0)\n")
  string(APPEND symbols "${soname} ${package} #MINVER#\n* Build-Depends-Package: libpexquo-dev\n")
  execute_process(COMMAND ${NM} -D --defined-only ${library}
    OUTPUT_VARIABLE lines COMMAND_ERROR_IS_FATAL ANY)
  string(REGEX MATCHALL "[^ \n]+\n" names "${lines}")
  list(TRANSFORM names STRIP)
  list(TRANSFORM names REPLACE "^([A-Z_]+_[0-9.]+)$" "\\1@\\1")  # a version stands for itself
  list(TRANSFORM names REPLACE "@@" "@")
  list(SORT names)
  foreach(name IN LISTS names)
    # A version bears the number of the release that brought it.
    if(NOT name MATCHES "@[A-Z_]+_([0-9]+\\.[0-9]+)$")
      message(FATAL_ERROR "${soname}: ${name} has no version")
    endif()
    string(APPEND symbols " ${name} ${CMAKE_MATCH_1}.0\n")
  endforeach()
endforeach()
file(WRITE ${FOLDER}/symbols "${symbols}")
file(WRITE ${FOLDER}/shlibs "${shlibs}")
file(WRITE ${FOLDER}/triggers "activate-noawait ldconfig\n")

# The package's own libraries need no other package.
file(WRITE ${FOLDER}/debian/control "Source: pexquo\n\nPackage: ${package}\nArchitecture: any\n")
file(WRITE ${FOLDER}/debian/shlibs.local "${own}")
list(GET LIBRARIES 0 library)
get_filename_component(folder ${library} DIRECTORY)
execute_process(COMMAND dpkg-shlibdeps -O -l${folder} ${LIBRARIES} WORKING_DIRECTORY ${FOLDER}
  OUTPUT_VARIABLE depends COMMAND_ERROR_IS_FATAL ANY)
string(REGEX REPLACE "^shlibs:Depends=(.*)\n$" "\\1" depends "${depends}")
file(WRITE ${FOLDER}/depends "${depends}")
