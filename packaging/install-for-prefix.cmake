# Run at installation, with `template`, `destination` and `work` set: fills in where the programs are. KESTREL_PREFIX in
# the environment tells where they will be, when that is not where they are written to: in a package.
set(prefix "$ENV{KESTREL_PREFIX}")
if(NOT prefix)
  get_filename_component(prefix "${CMAKE_INSTALL_PREFIX}" ABSOLUTE)
endif()
set(KESTREL_BINDIR "${prefix}/bin")
set(KESTREL_LIBEXECDIR "${prefix}/libexec/kestrel")
get_filename_component(name "${template}" NAME_WLE)
configure_file("${template}" "${work}/${name}" @ONLY)
file(INSTALL DESTINATION "${CMAKE_INSTALL_PREFIX}/${destination}" TYPE FILE FILES "${work}/${name}")
