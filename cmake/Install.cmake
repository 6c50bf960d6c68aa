# What an installation consists of. The programs find their parts relative to themselves, so the prefix may be moved.
include(GNUInstallDirs)

install(TARGETS ostrel ostrel-gui RUNTIME DESTINATION bin)
install(TARGETS ostrel-window RUNTIME DESTINATION libexec/ostrel)
install(TARGETS OstrelRemoteModule OstrelScriptModule OstrelSoundModule OstrelWebModule LIBRARY DESTINATION lib/ostrel)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/Skins/ DESTINATION ${CMAKE_INSTALL_DATADIR}/ostrel/Skins)

set(packaging ${PROJECT_SOURCE_DIR}/Packaging)
install(FILES ${packaging}/dev.ostrel.gui.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES ${packaging}/dev.ostrel.gui.svg DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
install(FILES ${packaging}/dev.ostrel.gui.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
install(FILES ${packaging}/dev.ostrel.gui.mime.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/mime/packages
    RENAME dev.ostrel.gui.xml)
