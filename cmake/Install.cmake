# What `cmake --install` lays out, under any prefix:
#   bin/tallybid
#   lib/tallybid/tallybid-printing.so   the windows that print or draw charts, loaded when one opens
#   share/tallybid/         the read-only files a first start copies into the user's data folder
#   share/applications/, share/metainfo/, share/icons/hicolor/, share/man/man1/
# The portable folder build/app/ is laid out by the build itself (src/app) and is not installed.
set(TB_DIST_DIR ${CMAKE_SOURCE_DIR}/dist)
set(TB_DESKTOP_ID org.tallybid.Tallybid)
set(TB_SHARE_DIR ${CMAKE_INSTALL_DATADIR}/tallybid)

install(TARGETS tallybid RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(TARGETS tallybid-printing LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}/tallybid)

install(FILES
    ${TB_RESOURCES_DIR}/logovksm.gif
    ${TB_RESOURCES_DIR}/tb2ug.htm
    ${TB_RESOURCES_DIR}/URLSetup.htm
    ${TB_RESOURCES_DIR}/Invoice.htm
    ${TB_RESOURCES_DIR}/PackingSlip.htm
    ${TB_RESOURCES_DIR}/standard.tbt
    ${TB_RESOURCES_DIR}/schema.sql
    DESTINATION ${TB_SHARE_DIR})
install(DIRECTORY
    ${TB_RESOURCES_DIR}/Backgr
    ${TB_RESOURCES_DIR}/Images
    ${TB_RESOURCES_DIR}/Sounds
    DESTINATION ${TB_SHARE_DIR})

install(FILES ${TB_DIST_DIR}/${TB_DESKTOP_ID}.desktop
    DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES ${TB_DIST_DIR}/${TB_DESKTOP_ID}.metainfo.xml
    DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
foreach(size 16 22 24 32 48 64 128 256)
    install(FILES ${TB_DIST_DIR}/icons/${size}.png
        DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/${size}x${size}/apps
        RENAME ${TB_DESKTOP_ID}.png)
endforeach()
install(FILES ${TB_DIST_DIR}/icons/${TB_DESKTOP_ID}.svg
    DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
install(FILES ${TB_DIST_DIR}/tallybid.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
