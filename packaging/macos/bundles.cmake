# The two application bundles, one for each flavor, around the one executable; signed where the signing tool is there.
set(HL_SIGNING_IDENTITY "-" CACHE STRING
  "Who signs the bundles: the name of a \"Developer ID Application\" certificate, or - for nobody (ad hoc)")
find_program(HL_CODESIGN codesign)

set(macos ${CMAKE_CURRENT_SOURCE_DIR}/macos)

# hl_add_bundle(NAME FLAVOR IDENTIFIER)
function(hl_add_bundle HL_BUNDLE_NAME HL_FLAVOR HL_BUNDLE_IDENTIFIER)
  set(bundle "${PROJECT_BINARY_DIR}/${HL_BUNDLE_NAME}.app")
  set(parts ${CMAKE_CURRENT_BINARY_DIR}/${HL_FLAVOR})
  configure_file(${macos}/Info.plist.in ${parts}/Info.plist @ONLY)
  configure_file(${macos}/daemon.plist.in ${parts}/${HL_BUNDLE_IDENTIFIER}.daemon.plist @ONLY)

  set(sign)
  if(HL_CODESIGN)
    # A notary service wants a time stamp; without an identity there is nobody to stamp it for.
    set(stamp --timestamp)
    if(HL_SIGNING_IDENTITY STREQUAL "-")
      set(stamp --timestamp=none)
    endif()
    set(sign COMMAND ${HL_CODESIGN} --force --options runtime ${stamp} --sign ${HL_SIGNING_IDENTITY}
      --entitlements ${macos}/hushlet.entitlements ${bundle})
  endif()

  set(copy ${CMAKE_COMMAND} -E copy)
  add_custom_command(OUTPUT ${bundle}/Contents/Info.plist
    # Remade each time: the system caches the signature of an executable that is only overwritten.
    COMMAND ${CMAKE_COMMAND} -E rm -rf ${bundle}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${bundle}/Contents/MacOS ${bundle}/Contents/Resources
    COMMAND ${copy} $<TARGET_FILE:hushlet> ${bundle}/Contents/MacOS/hushlet
    COMMAND ${copy} ${macos}/Hushlet.icns ${parts}/${HL_BUNDLE_IDENTIFIER}.daemon.plist ${bundle}/Contents/Resources
    COMMAND ${copy} ${parts}/Info.plist ${bundle}/Contents/Info.plist
    ${sign}
    DEPENDS hushlet ${parts}/Info.plist ${parts}/${HL_BUNDLE_IDENTIFIER}.daemon.plist ${macos}/Hushlet.icns
      ${macos}/hushlet.entitlements
    COMMENT "Bundling ${HL_BUNDLE_NAME}.app"
    VERBATIM)
  add_custom_target(bundle_${HL_FLAVOR} ALL DEPENDS ${bundle}/Contents/Info.plist)
endfunction()

hl_add_bundle("Hushlet" product com.tessaly.hushlet)
hl_add_bundle("Hushlet Personal" personal com.tessaly.hushlet.personal)

# Copied whole, since every change to a signed bundle would break its seal.
install(DIRECTORY "${PROJECT_BINARY_DIR}/Hushlet.app" DESTINATION . USE_SOURCE_PERMISSIONS)

set(CPACK_GENERATOR DragNDrop)
set(CPACK_PACKAGE_NAME Hushlet)
set(CPACK_PACKAGE_VENDOR Hushlet)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_FILE_NAME Hushlet-${PROJECT_VERSION})
set(CPACK_DMG_VOLUME_NAME Hushlet)
set(CPACK_STRIP_FILES OFF)
include(CPack)
