# The Debian packages kestrel and kestrel-desktop, and an archive, made by cpack.
set(CPACK_PACKAGE_NAME kestrel)
set(CPACK_PACKAGE_VENDOR "Kestrel contributors")
# A package has to name an address, and there is none: this domain can never exist (RFC 2606).
set(CPACK_PACKAGE_CONTACT "Kestrel contributors <contributors@kestrel.invalid>")
set(CPACK_PACKAGE_FILE_NAME "kestrel-${PROJECT_VERSION}-linux-${CMAKE_SYSTEM_PROCESSOR}")
set(CPACK_PACKAGE_DIRECTORY "${CMAKE_BINARY_DIR}/packages")
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_PROJECT_CONFIG_FILE "${CMAKE_CURRENT_LIST_DIR}/cpack-options.cmake")
set(CPACK_THREADS 0)

set(CPACK_ARCHIVE_COMPONENT_INSTALL OFF)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING ONE_PER_GROUP)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(version "${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE}")

set(CPACK_DEBIAN_BASE_PACKAGE_NAME kestrel)
set(CPACK_DEBIAN_BASE_PACKAGE_SUGGESTS "kestrel-desktop, power-profiles-daemon, upower")
# The first line of each is its synopsis.
set(CPACK_DEBIAN_BASE_DESCRIPTION
"keeps the computer awake while coding agents work
A coding agent may work for an hour without anybody touching the keyboard, and
the computer goes to sleep under it. Kestrel keeps the machine awake while an
agent works or waits for an answer, and lets it sleep again when the last one
has stopped.

This package runs without a display: the program, the relay that the agents'
hooks call, kestrelctl to ask and steer it, and the helper that keeps a laptop
awake with its lid closed.")
set(CPACK_DEBIAN_BASE_PACKAGE_CONTROL_EXTRA
  "${CMAKE_CURRENT_LIST_DIR}/postinst;${CMAKE_CURRENT_LIST_DIR}/prerm;${CMAKE_CURRENT_LIST_DIR}/postrm")

set(CPACK_DEBIAN_WINDOWS_PACKAGE_NAME kestrel-desktop)
set(CPACK_DEBIAN_WINDOWS_PACKAGE_DEPENDS "kestrel (= ${version})")
set(CPACK_DEBIAN_WINDOWS_PACKAGE_RECOMMENDS "qt6-wayland")
set(CPACK_DEBIAN_WINDOWS_DESCRIPTION
"keeps the computer awake while coding agents work - icon and windows
Kestrel keeps the machine awake while a coding agent works or waits for an
answer, and lets it sleep again when the last one has stopped.

This package has what people see: the icon in the panel, the summary behind it
and the windows.")

include(CPack)
cpack_add_component_group(base)
cpack_add_component_group(windows)
cpack_add_component(kestrel GROUP base)
cpack_add_component(kestrel-debian GROUP base)
cpack_add_component(desktop GROUP windows)
cpack_add_component(desktop-debian GROUP windows)
