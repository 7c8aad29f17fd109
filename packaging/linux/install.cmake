# What a desktop expects beside the program, and the packages of it all.
include(${CMAKE_CURRENT_LIST_DIR}/switches.cmake)

# They name the program's place, which is known when it is installed: a package has another one than the build.
set(HL_CONFIGURED hushlet-daemon.service com.tessaly.hushlet.desktop com.tessaly.hushlet.metainfo.xml)
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
install(CODE "execute_process(COMMAND gzip -9nc ${PROJECT_BINARY_DIR}/hushlet.1
  OUTPUT_FILE ${PROJECT_BINARY_DIR}/hushlet.1.gz COMMAND_ERROR_IS_FATAL ANY)")
install(FILES ${PROJECT_BINARY_DIR}/hushlet.1.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES ${PROJECT_BINARY_DIR}/completions/hushlet.bash
  DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME hushlet)
install(FILES ${PROJECT_BINARY_DIR}/completions/_hushlet DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/site-functions)
install(FILES ${PROJECT_BINARY_DIR}/completions/hushlet.fish DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)
install(FILES icons/hushlet.svg
  DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps RENAME com.tessaly.hushlet.svg)
install(FILES icons/hushlet-symbolic.svg
  DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/symbolic/apps RENAME com.tessaly.hushlet-symbolic.svg)

set(CPACK_GENERATOR DEB)
find_program(HL_RPMBUILD rpmbuild)
if(HL_RPMBUILD)
  list(APPEND CPACK_GENERATOR RPM)
endif()
set(CPACK_PACKAGE_NAME hushlet)
set(CPACK_PACKAGE_CONTACT "Hushlet's developers <hushlet@hushlet.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "clears the notification banners on screen")
set(CPACK_PACKAGE_DESCRIPTION "Hushlet finds the control that closes each notification banner on screen
and presses it, until nothing is left: with a click on its tray icon, by a
global shortcut or by a command.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
find_package(ICU 70 REQUIRED COMPONENTS uc)
string(REGEX MATCH "^[0-9]+" icu_major ${ICU_VERSION})

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)  # libqt6gui6 among them, which has the plugin for X11
# Loaded when it is first needed, so no library names it.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libicu${icu_major}")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "at-spi2-core, qt6-wayland")
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/debian.cmake)
set(CPACK_HL_CHANGELOG ${CMAKE_CURRENT_LIST_DIR}/changelog)
set(CPACK_HL_CHANGES ${PROJECT_SOURCE_DIR}/CHANGELOG.md)

execute_process(COMMAND ${CPACK_HL_CHANGELOG} rpm ${CPACK_PACKAGE_CONTACT} INPUT_FILE ${CPACK_HL_CHANGES}
  OUTPUT_FILE ${PROJECT_BINARY_DIR}/changelog.rpm COMMAND_ERROR_IS_FATAL ANY)
set_property(DIRECTORY ${PROJECT_SOURCE_DIR} APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${CPACK_HL_CHANGES})
set(CPACK_RPM_FILE_NAME RPM-DEFAULT)
set(CPACK_RPM_PACKAGE_LICENSE "LicenseRef-proprietary")
set(CPACK_RPM_PACKAGE_REQUIRES "libicuuc.so.${icu_major}()(64bit)")
set(CPACK_RPM_SPEC_MORE_DEFINE "%define _build_id_links none\nRecommends: at-spi2-core\nRecommends: qt6-qtwayland")
set(CPACK_RPM_CHANGELOG_FILE ${PROJECT_BINARY_DIR}/changelog.rpm)
set(CPACK_RPM_EXCLUDE_FROM_AUTO_FILELIST_ADDITION
  /usr/lib/systemd /usr/lib/systemd/user /usr/share/applications /usr/share/metainfo /usr/share/man /usr/share/man/man1
  /usr/share/icons /usr/share/icons/hicolor /usr/share/icons/hicolor/scalable /usr/share/icons/hicolor/scalable/apps
  /usr/share/icons/hicolor/symbolic /usr/share/icons/hicolor/symbolic/apps /usr/share/bash-completion
  /usr/share/bash-completion/completions /usr/share/zsh /usr/share/zsh/site-functions /usr/share/fish
  /usr/share/fish/vendor_completions.d)
include(CPack)
