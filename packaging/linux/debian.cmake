# Run by CPack before it packs: gives a Debian package what only Debian asks for.
if(NOT CPACK_GENERATOR STREQUAL "DEB")
  return()
endif()
set(share ${CPACK_TEMPORARY_DIRECTORY}/usr/share)
set(documents ${share}/doc/hushlet)
file(MAKE_DIRECTORY ${documents} ${share}/zsh/vendor-completions)
execute_process(
  COMMAND ${CPACK_HL_CHANGELOG} debian ${CPACK_PACKAGE_CONTACT}
  COMMAND gzip -9n
  INPUT_FILE ${CPACK_HL_CHANGES} OUTPUT_FILE ${documents}/changelog.Debian.gz COMMAND_ERROR_IS_FATAL ANY)
# Debian's zsh reads its packages' completions from a folder of its own.
file(RENAME ${share}/zsh/site-functions/_hushlet ${share}/zsh/vendor-completions/_hushlet)
file(REMOVE_RECURSE ${share}/zsh/site-functions)
