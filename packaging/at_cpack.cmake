# Read by cpack: the dependencies of libpexquo1. (CPack's own way of finding them adds scripts that
# call ldconfig, where Debian wants the trigger.)
file(READ ${CPACK_PEXQUO_CONTROL}/depends CPACK_DEBIAN_RUNTIME_PACKAGE_DEPENDS)
