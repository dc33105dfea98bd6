# The two Debian packages, made by cpack in a build folder of the preset "package".
find_program(RSVG_CONVERT rsvg-convert REQUIRED)

set(packaging "${CMAKE_SOURCE_DIR}/packaging")

# Man page, changelog and copyright of a package, packed as Debian wants them.
function(quermo_package_texts name)
  set(folder "${CMAKE_BINARY_DIR}/packaging/${name}")
  file(MAKE_DIRECTORY "${folder}")
  configure_file("${packaging}/${name}.1" "${folder}/${name}.1" @ONLY)
  add_custom_command(OUTPUT "${folder}/${name}.1.gz" "${folder}/changelog.gz"
    COMMAND gzip -9 -n -k -f "${folder}/${name}.1"
    COMMAND sh -c "awk -f '${packaging}/debian-changelog' -v package=${name} '${CMAKE_SOURCE_DIR}/CHANGELOG.md' | gzip -9 -n > '${folder}/changelog.gz'"
    DEPENDS "${folder}/${name}.1" "${packaging}/debian-changelog" "${CMAKE_SOURCE_DIR}/CHANGELOG.md" VERBATIM)
  add_custom_target(${name}_texts ALL DEPENDS "${folder}/${name}.1.gz" "${folder}/changelog.gz")
  install(FILES "${folder}/${name}.1.gz" DESTINATION share/man/man1 COMPONENT ${name})
  install(FILES "${folder}/changelog.gz" "${packaging}/copyright" DESTINATION share/doc/${name} COMPONENT ${name})
endfunction()

function(quermo_package_icons)
  set(drawing "${CMAKE_SOURCE_DIR}/src/platform/controls/icons/Quermo.svg")
  set(drawn "")
  foreach(size 16 22 24 32 48 64 128 256 512)
    set(icon "${CMAKE_BINARY_DIR}/packaging/icons/${size}/quermo.png")
    add_custom_command(OUTPUT "${icon}"
      COMMAND "${RSVG_CONVERT}" --width ${size} --height ${size} --output "${icon}" "${drawing}"
      DEPENDS "${drawing}" VERBATIM)
    file(MAKE_DIRECTORY "${CMAKE_BINARY_DIR}/packaging/icons/${size}")
    install(FILES "${icon}" DESTINATION share/icons/hicolor/${size}x${size}/apps COMPONENT quermo)
    list(APPEND drawn "${icon}")
  endforeach()
  add_custom_target(quermo_icons ALL DEPENDS ${drawn})
  install(FILES "${drawing}" DESTINATION share/icons/hicolor/scalable/apps RENAME quermo.svg COMPONENT quermo)
endfunction()

quermo_package_texts(quermo)
quermo_package_texts(quermo-practice-server)
quermo_package_icons()
install(TARGETS quermo COMPONENT quermo)
install(TARGETS quermo-practice-server COMPONENT quermo-practice-server)
install(FILES "${packaging}/quermo.desktop" DESTINATION share/applications COMPONENT quermo)
install(FILES "${packaging}/example.quermo.Quermo.metainfo.xml" DESTINATION share/metainfo COMPONENT quermo)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_CONTACT "Quermo developers <developers@quermo.example>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_COMPONENTS_ALL quermo quermo-practice-server)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS OFF)
set(CPACK_DEBIAN_QUERMO_PACKAGE_NAME quermo)
set(CPACK_DEBIAN_QUERMO_PACKAGE_SECTION database)
# The driver and the picture plugin are loaded by name, and Qt's own sentences are data: no library asks for them.
set(CPACK_DEBIAN_QUERMO_PACKAGE_DEPENDS "tdsodbc, libqt6svg6, qt6-translations-l10n")
set(CPACK_DEBIAN_QUERMO_PACKAGE_SUGGESTS quermo-practice-server)
set(CPACK_DEBIAN_QUERMO-PRACTICE-SERVER_PACKAGE_NAME quermo-practice-server)
set(CPACK_DEBIAN_QUERMO-PRACTICE-SERVER_PACKAGE_SECTION database)
set(CPACK_COMPONENT_QUERMO_DESCRIPTION "administration console for Microsoft SQL Server
One window from which to connect to a server, walk its databases and their
objects, design tables and databases, run queries, back up and restore.
It speaks Spanish and English.")
set(CPACK_COMPONENT_QUERMO-PRACTICE-SERVER_DESCRIPTION "answers Transact-SQL on loopback, to practise on
A server that speaks TDS on 127.0.0.1 and answers what an administration
console sends as SQL Server does, refusals with their numbers and texts
included. It keeps its databases in a folder, or for as long as it runs.")
include(CPack)
