# The Debian package, built by `cmake --build build --target deb` (cpack -G DEB):
#   /usr/lib/vorlane/         the program folder: Vorlane, vorlane-reader, VorlaneSetup, VorlaneHelp,
#                             Vorlane.html,
#                             Database -> /var/lib/vorlane, Images -> /etc/vorlane/Images
#   /usr/bin/vorlane          the command, leading to the program
#   /var/lib/vorlane/         the data, made by postinst: writable by the group vorlane, the
#                             database created only when none exists; a purge asks before
#                             deleting it
# and the desktop entry, the icons, the AppStream metadata and the manual page. The program
# finds its folder through its own resolved path, so the folder's links are all it needs.
# These install rules belong to the component "deb" alone: `cmake --install` without it lays
# out the plain program folder as before.
set(pkg_src ${CMAKE_SOURCE_DIR}/packaging)
set(pkg_bin ${CMAKE_BINARY_DIR}/packaging)
set(deb COMPONENT deb EXCLUDE_FROM_ALL)

install(TARGETS Vorlane vorlane-reader VorlaneSetup VorlaneHelp RUNTIME DESTINATION lib/vorlane ${deb})
install(FILES ${VORLANE_PROGRAM_DIR}/Vorlane.html DESTINATION lib/vorlane ${deb})

file(MAKE_DIRECTORY ${pkg_bin}/folder ${pkg_bin}/bin)
file(CREATE_LINK /var/lib/vorlane ${pkg_bin}/folder/Database SYMBOLIC)
file(CREATE_LINK /etc/vorlane/Images ${pkg_bin}/folder/Images SYMBOLIC)
file(CREATE_LINK ../lib/vorlane/Vorlane ${pkg_bin}/bin/vorlane SYMBOLIC)
install(FILES ${pkg_bin}/folder/Database ${pkg_bin}/folder/Images DESTINATION lib/vorlane ${deb})
install(FILES ${pkg_bin}/bin/vorlane DESTINATION bin ${deb})

install(FILES ${pkg_src}/org.vorlane.Vorlane.desktop DESTINATION share/applications ${deb})
install(FILES ${pkg_src}/org.vorlane.Vorlane.metainfo.xml DESTINATION share/metainfo ${deb})
install(FILES ${CMAKE_SOURCE_DIR}/resources/images/AppIcon.svg DESTINATION share/icons/hicolor/scalable/apps
        RENAME vorlane.svg ${deb})
install(FILES ${CMAKE_SOURCE_DIR}/resources/images/AppIcon.png DESTINATION share/icons/hicolor/256x256/apps
        RENAME vorlane.png ${deb})
foreach(size 16 22 24 32 48 64 128)
  install(FILES ${pkg_src}/icons/vorlane-${size}.png DESTINATION share/icons/hicolor/${size}x${size}/apps
          RENAME vorlane.png ${deb})
endforeach()

# The manual page and the changelog go compressed, without a time stamp, as Debian has them.
set(pkg_compressed)
foreach(file vorlane.1 debian/changelog)
  get_filename_component(name ${file} NAME)
  add_custom_command(OUTPUT ${pkg_bin}/${name}.gz
    COMMAND sh -c "gzip -9n -c '${pkg_src}/${file}' > '${pkg_bin}/${name}.gz'"
    DEPENDS ${pkg_src}/${file} VERBATIM)
  list(APPEND pkg_compressed ${pkg_bin}/${name}.gz)
endforeach()
add_custom_target(vorlane_package_files ALL DEPENDS ${pkg_compressed})
install(FILES ${pkg_bin}/vorlane.1.gz DESTINATION share/man/man1 ${deb})
install(FILES ${pkg_bin}/changelog.gz ${pkg_src}/debian/copyright DESTINATION share/doc/vorlane ${deb})

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME vorlane)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "The Vorlane developers <developers@vorlane.org>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "index of an office's documents")
# Lines of at most 80 characters, as dpkg shows them.
set(CPACK_PACKAGE_DESCRIPTION [[Vorlane keeps an index of an office's documents. Paper documents lie in
numbered hard-copy files and their soft copies lie on disk; Vorlane holds one
record per document (dates, a four-level classification, two titles, bookmark,
remarks, soft-copy path, hard-copy file number), finds them by any mix of
criteria, opens them in the viewer configured for their kind, and prints lists
and a letterhead.

Users log in with three rights levels; several workstations may share one
database, which lies in /var/lib/vorlane and is writable by the group vorlane.]])
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_INSTALL_CMAKE_PROJECTS "${CMAKE_BINARY_DIR};Vorlane;deb;/")
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION misc)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE https://www.vorlane.org/)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
# The libraries it links come from dpkg-shlibdeps; the plug-ins Qt loads at run time, the
# driver manager's tools, the OCR's English data and what the maintainer scripts call are named here.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS
    # libtesseract5 is named here: the reader loads it only when it reads a picture, so the
    # package tools do not find it among the libraries it is linked with.
    "adduser, debconf (>= 0.5) | debconf-2.0, libqt6sql6-sqlite, libqt6sql6-odbc, libqt6svg6, qt6-image-formats-plugins, qt6-qpa-plugins, libtesseract5, tesseract-ocr-eng, unixodbc")
# A workstation of an office whose data lies on a PostgreSQL server reaches it through this driver.
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "odbc-postgresql")
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA
    ${pkg_src}/debian/postinst ${pkg_src}/debian/postrm ${pkg_src}/debian/config ${pkg_src}/debian/templates)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
# cpack lays out only the component above; it need not build every test first.
set(CMAKE_SKIP_INSTALL_ALL_DEPENDENCY ON)
include(CPack)

add_custom_target(deb
  COMMAND ${CMAKE_CPACK_COMMAND} -G DEB --config ${CMAKE_BINARY_DIR}/CPackConfig.cmake
  WORKING_DIRECTORY ${CMAKE_BINARY_DIR}
  COMMENT "Building the Debian package"
  USES_TERMINAL)
add_dependencies(deb Vorlane vorlane-reader VorlaneSetup VorlaneHelp vorlane_help vorlane_package_files)
