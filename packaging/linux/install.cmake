# What a desktop expects beside the program, and the Debian package of it all.
# They name the program's place, which is known when it is installed: a package has another one than the build.
set(HL_CONFIGURED hushlet-daemon.service com.tessaly.hushlet.desktop com.tessaly.hushlet.metainfo.xml hushlet.1)
foreach(file ${HL_CONFIGURED})
  install(CODE "
    set(HL_PROGRAM \${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_BINDIR}/hushlet)
    set(PROJECT_VERSION ${PROJECT_VERSION})
    configure_file(${CMAKE_CURRENT_SOURCE_DIR}/linux/${file}.in ${PROJECT_BINARY_DIR}/${file} @ONLY)")
endforeach()

# Beside the executable, wherever that is: bin/hushlet looks for ../lib/hushlet, not for the machine's library folder.
install(TARGETS hl_desktop_module LIBRARY DESTINATION lib/hushlet)
install(FILES ${PROJECT_BINARY_DIR}/hushlet-daemon.service DESTINATION lib/systemd/user)
install(FILES ${PROJECT_BINARY_DIR}/com.tessaly.hushlet.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES ${PROJECT_BINARY_DIR}/com.tessaly.hushlet.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
install(FILES ${PROJECT_BINARY_DIR}/hushlet.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES icons/hushlet.svg
  DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps RENAME com.tessaly.hushlet.svg)
install(FILES icons/hushlet-symbolic.svg
  DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/symbolic/apps RENAME com.tessaly.hushlet-symbolic.svg)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME hushlet)
set(CPACK_PACKAGE_CONTACT "Hushlet's developers <hushlet@hushlet.example>")
set(CPACK_PACKAGE_DESCRIPTION "Hushlet finds the control that closes each notification banner on screen and presses it,
 until nothing is left: with a click on its tray icon, by a global shortcut or by a command.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# Loaded when it is first needed, so no library names it.
find_package(ICU 70 REQUIRED COMPONENTS uc)
string(REGEX MATCH "^[0-9]+" icu_major ${ICU_VERSION})
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libicu${icu_major}")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "at-spi2-core")
include(CPack)
