# Where an installed Ostrivane keeps its files, and its Debian package.
# Every desktop-facing file is named by OSTRIVANE_APP_ID.

set(data ${CMAKE_SOURCE_DIR}/data)
set(doc_dir ${CMAKE_INSTALL_DATADIR}/doc/ostrivane)

install(TARGETS ostrivane RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(TARGETS ostrivane_desktop LIBRARY DESTINATION ${OSTRIVANE_MODULE_INSTALL_DIR})

install(FILES ${data}/${OSTRIVANE_APP_ID}.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
configure_file(${data}/${OSTRIVANE_APP_ID}.metainfo.xml.in ${CMAKE_BINARY_DIR}/${OSTRIVANE_APP_ID}.metainfo.xml @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/${OSTRIVANE_APP_ID}.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)

# Manual pages and the changelog go compressed, reproducibly (no name, no time in the header).
find_program(GZIP_PROGRAM gzip REQUIRED)
function(ostrivane_gzip source target)
  add_custom_command(OUTPUT ${target}
    COMMAND ${GZIP_PROGRAM} -9nc ${source} > ${target}
    DEPENDS ${source} VERBATIM)
endfunction()
ostrivane_gzip(${data}/ostrivane.1 ${CMAKE_BINARY_DIR}/ostrivane.1.gz)
ostrivane_gzip(${data}/changelog ${CMAKE_BINARY_DIR}/changelog.gz)
add_custom_target(ostrivane_docs ALL DEPENDS ${CMAKE_BINARY_DIR}/ostrivane.1.gz ${CMAKE_BINARY_DIR}/changelog.gz)
install(FILES ${CMAKE_BINARY_DIR}/ostrivane.1.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES ${CMAKE_BINARY_DIR}/changelog.gz ${data}/copyright DESTINATION ${doc_dir})

# The icon: the drawing itself, and its renderings for the hicolor sizes.
if(EXISTS ${data}/icons/${OSTRIVANE_APP_ID}.svg)
  install(FILES ${data}/icons/${OSTRIVANE_APP_ID}.svg DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
endif()
install(DIRECTORY ${CMAKE_BINARY_DIR}/icons/hicolor DESTINATION ${CMAKE_INSTALL_DATADIR}/icons OPTIONAL)

# The Debian package: `cpack -G DEB` in the build directory.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME ostrivane)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_VENDOR Tarnwick)
set(CPACK_PACKAGE_CONTACT "Tarnwick <${OSTRIVANE_SUPPORT_EMAIL}>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "straight coloured lines over the screen to line things up against")
set(CPACK_PACKAGE_DESCRIPTION [=[Ostrivane paints straight coloured crosshair lines over everything on the
screen, so that windows, images and drawings can be lined up against them.
The lines stay on top, let every click through and can be translucent or
dotted. Markers live in named groups: they are placed and dragged with the
mouse, shown and made to blink with two system-wide hot keys, and groups move
between computers with rescaling.]=])
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE "https://${OSTRIVANE_HOME_PAGE}/")
# The dependencies come from the binaries' own needs, and for the one thing
# the toolkit loads by name at run time, its platform plugins, from here.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS qt6-qpa-plugins)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS OFF)
include(CPack)
