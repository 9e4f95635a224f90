# Gives what is installed the shape that Debian asks of a package: CPack includes it before it packs, with the
# folder that it packs and the name and version of the package in its variables.
set(root "${CPACK_TEMPORARY_DIRECTORY}${CPACK_PACKAGING_INSTALL_PREFIX}")
set(documents "${root}/share/doc/${CPACK_PACKAGE_NAME}")

function(compress)
  execute_process(COMMAND gzip --best --no-name --force ${ARGN} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

file(GLOB pages "${root}/share/man/man1/*.1")
file(COPY "${CPACK_TESSARAY_CHANGELOG}" DESTINATION "${documents}")
file(RENAME "${documents}/CHANGELOG.md" "${documents}/changelog")
string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)
file(WRITE "${documents}/changelog.Debian" "\
${CPACK_PACKAGE_NAME} (${CPACK_PACKAGE_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE}) unstable; urgency=medium

  * What has changed stands in the changelog beside this one.

 -- ${CPACK_PACKAGE_CONTACT}  ${date}
")
compress(${pages} "${documents}/changelog" "${documents}/changelog.Debian")

# The package fonts-dejavu-core, which this one depends on, brings it; fonts.conf looks where that puts it.
file(REMOVE "${root}/lib/${CPACK_PACKAGE_NAME}/Resources/fonts/DejaVuSans.ttf")
