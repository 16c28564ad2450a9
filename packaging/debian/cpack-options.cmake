# Read by cpack for each kind of package: where its files will be, which they name (see ../install-for-prefix.cmake).
if(CPACK_GENERATOR STREQUAL "DEB")
  set(ENV{KESTREL_PREFIX} /usr)
else()
  set(ENV{KESTREL_PREFIX} /opt/kestrel)
endif()
