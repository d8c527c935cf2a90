# How kerno-desktop is found by a desktop: menu entry, icons, the type of parts files, and its description
# for software centres, whose releases are those of the list of changes.
set(share ${CMAKE_INSTALL_DATADIR})
set(icons ${share}/icons/hicolor)

install(FILES kerno.desktop DESTINATION ${share}/applications COMPONENT desktop)
install(FILES kerno-mime.xml DESTINATION ${share}/mime/packages COMPONENT desktop RENAME kerno.xml)
install(FILES kerno.svg DESTINATION ${icons}/scalable/apps COMPONENT desktop)
install(FILES icons/kerno-ipx.svg DESTINATION ${icons}/scalable/mimetypes COMPONENT desktop
        RENAME application-x-kerno-ipx.svg)
foreach(size IN ITEMS 16x16 22x22 24x24 32x32 48x48 64x64 128x128 256x256)
  install(FILES icons/${size}/kerno.png DESTINATION ${icons}/${size}/apps COMPONENT desktop)
  install(FILES icons/${size}/application-x-kerno-ipx.png
          DESTINATION ${icons}/${size}/mimetypes COMPONENT desktop)
endforeach()

set(changes ${PROJECT_SOURCE_DIR}/CHANGELOG.md)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${changes})
file(STRINGS ${changes} headings REGEX "^## [0-9.]+ - [0-9-]+$")
list(TRANSFORM headings REPLACE "^## ([0-9.]+) - ([0-9-]+)$"
     "    <release version=\"\\1\" date=\"\\2\"/>")
list(JOIN headings "\n" KERNO_RELEASES)
configure_file(org.kerno.Kerno.metainfo.xml.in org.kerno.Kerno.metainfo.xml @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/org.kerno.Kerno.metainfo.xml
        DESTINATION ${share}/metainfo COMPONENT desktop)
