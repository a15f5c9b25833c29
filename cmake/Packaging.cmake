# SPDX-License-Identifier: GPL-3.0-or-later
# The Debian package, tessorin_VERSION_ARCH.deb: `make package` runs CPack's DEB generator over
# the install rules, with /usr as the prefix. The install rules here, which `make install` follows
# too, add the manual pages, the icon in the hicolor sizes, the copyright file and the changelog. Debian's triggers update
# the menus, the icon cache and the manual page index, so the package has no maintainer scripts.
include(GNUInstallDirs)
set(_packaging ${CMAKE_BINARY_DIR}/packaging)

# The icon as PNG in the sizes launchers and software centres look for, drawn from the SVG.
find_program(RSVG_CONVERT rsvg-convert)
if(RSVG_CONVERT)
  set(_icons)
  foreach(size 16 22 24 32 48 64 128 256 512)
    set(_png ${_packaging}/icons/${size}x${size}/org.tessorin.Tessorin.png)
    add_custom_command(OUTPUT ${_png}
      COMMAND ${CMAKE_COMMAND} -E make_directory ${_packaging}/icons/${size}x${size}
      COMMAND ${RSVG_CONVERT} -w ${size} -h ${size} -o ${_png} ${CMAKE_SOURCE_DIR}/app/tessorin.svg
      DEPENDS ${CMAKE_SOURCE_DIR}/app/tessorin.svg)
    list(APPEND _icons ${_png})
    install(FILES ${_png} DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/${size}x${size}/apps)
  endforeach()
  add_custom_target(icons ALL DEPENDS ${_icons})
else()
  message(WARNING "No rsvg-convert: the icon installs as SVG only (run scripts/install-deps.sh)")
endif()

# The copyright file in Debian's machine-readable form, the licence texts that Debian doesn't
# keep in /usr/share/common-licenses taken from LICENSES/.
function(_tessorin_licence_text var file)
  file(READ ${CMAKE_SOURCE_DIR}/LICENSES/${file} text)
  string(STRIP "${text}" text)
  # Every line indented by one blank, an empty one written " .".
  string(REPLACE "\n" "\n " text " ${text}")
  string(REGEX REPLACE "\n [ \t]*\n" "\n .\n" text "${text}")
  string(REGEX REPLACE "\n [ \t]*\n" "\n .\n" text "${text}")
  set(${var} "${text}" PARENT_SCOPE)
endfunction()
_tessorin_licence_text(LICENSE_PUBLIC_DOMAIN LicenseRef-PublicDomain.txt)
_tessorin_licence_text(LICENSE_ISC ISC.txt)
_tessorin_licence_text(LICENSE_UNICODE Unicode-DFS-2016.txt)
_tessorin_licence_text(LICENSE_CC_BY CC-BY-4.0.txt)
configure_file(${CMAKE_SOURCE_DIR}/packaging/copyright.in ${_packaging}/copyright @ONLY)
set(_doc ${CMAKE_INSTALL_DATADIR}/doc/tessorin)
install(FILES ${_packaging}/copyright DESTINATION ${_doc})

# The manual pages of both programs, compressed as Debian wants them: gzip -9, no name or time.
set(_manuals)
foreach(page app/tessorin.1 cli/tessorin-cli.1)
  get_filename_component(_name ${page} NAME)
  add_custom_command(OUTPUT ${_packaging}/${_name}.gz
    COMMAND gzip -9 -n -c ${CMAKE_SOURCE_DIR}/${page} > ${_packaging}/${_name}.gz
    DEPENDS ${CMAKE_SOURCE_DIR}/${page})
  list(APPEND _manuals ${_packaging}/${_name}.gz)
endforeach()
add_custom_target(manuals ALL DEPENDS ${_manuals})
install(FILES ${_manuals} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)

# A native package's changelog, compressed as Debian wants it: gzip -9, no name or time stamp.
add_custom_command(OUTPUT ${_packaging}/changelog.gz
  COMMAND gzip -9 -n -c ${CMAKE_SOURCE_DIR}/packaging/changelog > ${_packaging}/changelog.gz
  DEPENDS ${CMAKE_SOURCE_DIR}/packaging/changelog)
add_custom_target(changelog ALL DEPENDS ${_packaging}/changelog.gz)
install(FILES ${_packaging}/changelog.gz DESTINATION ${_doc})

# The licence notes of the shipped data, beside it.
install(FILES ${CMAKE_SOURCE_DIR}/src/geo/data/places.bin.license ${CMAKE_SOURCE_DIR}/src/geo/data/world.bin.license
        DESTINATION ${CMAKE_INSTALL_DATADIR}/tessorin)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME tessorin)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_PACKAGE_CONTACT "The Tessorin developers <developers@tessorin.org>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "see and fix the metadata of photos and videos")
set(CPACK_PACKAGE_DESCRIPTION "Tessorin shows the dates, places, camera, lens and exposure of photos
and videos, with every EXIF, TIFF, GPS, IPTC and QuickTime tag, and fixes them
without touching the picture. It browses the photo folders as a library of
albums, and comes with tessorin-cli, a command-line tool for scripts.
.
Place names come from GeoNames and the offline world map from Natural Earth,
both in the package: nothing is downloaded but the map's tiles.")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE "https://tessorin.org/")
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_STRIP_FILES ON)
# The libraries the programs link, as dpkg-shlibdeps finds them...
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# ...and what they load at run time, which it can't see: the QML modules of the screens (and the
# folder model the file dialog uses), the SVG and TIFF/WebP image plugins, the GStreamer
# elements that play QuickTime and MP4 movies, and the time zone rules of `edit --zone`.
set(CPACK_DEBIAN_PACKAGE_DEPENDS
  "qml6-module-qtquick, qml6-module-qtquick-controls, qml6-module-qtquick-layouts, \
qml6-module-qtquick-window, qml6-module-qtquick-templates, qml6-module-qtquick-dialogs, \
qml6-module-qtqml-workerscript, qml6-module-qtmultimedia, qml6-module-qt-labs-folderlistmodel, \
libqt6svg6, qt6-image-formats-plugins, gstreamer1.0-plugins-base, gstreamer1.0-plugins-good, tzdata")
# Movies in more codecs, the present position, Wayland sessions.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "gstreamer1.0-libav, libqt6positioning6-plugins, qt6-wayland")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "geoclue-2.0")
include(CPack)
