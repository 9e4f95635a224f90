# `cpack` in a release build tree makes a Debian package, and elsewhere an archive. Included last, when
# everything that is to be installed is known.
set(CPACK_PACKAGE_NAME tessaray)
set(CPACK_PACKAGE_VENDOR "The Tessaray developers")
set(CPACK_PACKAGE_CONTACT "The Tessaray developers <developers@tessaray.org>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "prepares video files for other devices")
set(CPACK_PACKAGE_DESCRIPTION
"Tessaray reads the tracks of a video file, turns the chosen settings into
commands of ffmpeg and mkvtoolnix, and runs them one after another in a queue.
It converts for devices, extracts and removes tracks, and joins, splits and
remuxes Matroska files, in a window or from the terminal (tessaray-cli).")
set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
set(CPACK_STRIP_FILES ON)
set(CPACK_GENERATOR TGZ)
find_program(dpkg_deb dpkg-deb)
find_program(dpkg_shlibdeps dpkg-shlibdeps)
mark_as_advanced(dpkg_deb dpkg_shlibdeps)
if(dpkg_deb)
  set(CPACK_GENERATOR DEB)
endif()

# The launchers run the tools of these packages; ps comes from procps, the font of burned-in subtitles from
# fonts-dejavu-core. The window needs a platform plugin, which no library depends on.
set(depends ffmpeg mkvtoolnix mplayer procps fonts-dejavu-core)
if(TARGET tessaray)
  list(APPEND depends qt6-qpa-plugins)
endif()
list(JOIN depends ", " CPACK_DEBIAN_PACKAGE_DEPENDS)
if(dpkg_shlibdeps)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
else()
  string(APPEND CPACK_DEBIAN_PACKAGE_DEPENDS ", libqt6core6 | libqt6core6t64, libqt6widgets6 | libqt6widgets6t64, libqt6svg6")
endif()
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SECTION video)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "atomicparsley, qt6-wayland, xdg-utils")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
if(CPACK_GENERATOR STREQUAL DEB)
  set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/packaging/debian/Prepare.cmake)
  set(CPACK_TESSARAY_CHANGELOG ${PROJECT_SOURCE_DIR}/CHANGELOG.md)
endif()
include(CPack)
