# What `cmake --install` puts where, and the Debian package CPack builds from it.
# Debian keeps a package's documents under its package name.
set(CMAKE_INSTALL_DOCDIR share/doc/vantrel)
include(GNUInstallDirs)

install(TARGETS vantrel RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
if(TARGET vantrel-cli)
  install(TARGETS vantrel-cli RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()

set(VANTREL_DESKTOP_DIR ${CMAKE_SOURCE_DIR}/resources/desktop)
install(FILES ${VANTREL_DESKTOP_DIR}/vantrel.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES ${VANTREL_DESKTOP_DIR}/vantrel-mime.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/mime/packages
        RENAME vantrel.xml)
install(DIRECTORY ${VANTREL_DESKTOP_DIR}/icons/ DESTINATION ${CMAKE_INSTALL_DATADIR}/icons)

# Man pages, compressed as Debian expects.
find_program(GZIP_PROGRAM gzip)
foreach(page vantrel.1 vantrel-cli.1)
  if(GZIP_PROGRAM)
    add_custom_command(OUTPUT ${CMAKE_BINARY_DIR}/man/${page}.gz
      COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_BINARY_DIR}/man
      COMMAND ${GZIP_PROGRAM} -9 -n -c ${CMAKE_SOURCE_DIR}/docs/${page} > ${CMAKE_BINARY_DIR}/man/${page}.gz
      DEPENDS ${CMAKE_SOURCE_DIR}/docs/${page})
    list(APPEND VANTREL_MAN_PAGES ${CMAKE_BINARY_DIR}/man/${page}.gz)
  else()
    list(APPEND VANTREL_MAN_PAGES ${CMAKE_SOURCE_DIR}/docs/${page})
  endif()
endforeach()
add_custom_target(vantrel_man ALL DEPENDS ${VANTREL_MAN_PAGES})
install(FILES ${VANTREL_MAN_PAGES} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)

# The user guide (built into HTML) with its pictures, and the format notes, readable offline.
install(FILES ${VANTREL_GUIDE_HTML} DESTINATION ${CMAKE_INSTALL_DOCDIR}/guide)
install(DIRECTORY ${CMAKE_SOURCE_DIR}/docs/guide/img DESTINATION ${CMAKE_INSTALL_DOCDIR}/guide OPTIONAL)
install(FILES ${CMAKE_SOURCE_DIR}/docs/formats.html DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(FILES ${CMAKE_SOURCE_DIR}/README.md DESTINATION ${CMAKE_INSTALL_DOCDIR})

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME vantrel)
set(CPACK_PACKAGE_VENDOR "Vantrel Photo developers")
set(CPACK_PACKAGE_CONTACT "Vantrel Photo developers <maintainers@vantrel.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Photo editor built from a sequence of adjustment tiles")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_INSTALL_DIRECTORY /usr)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE "https://vantrel.invalid/")
# dpkg-shlibdeps lists the runtime libraries from what the binaries link; these are the rest.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS
    "shared-mime-info, desktop-file-utils")
include(CPack)
