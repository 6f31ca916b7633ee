# make install: the two programs, their data, the desktop entry, the file
# types, the icon and the thumbnailer, in the GNU folders under the prefix.
# DESTDIR is honoured; the desktop's caches are refreshed only for a real
# install, never into a DESTDIR (a package's own triggers do that).
include(GNUInstallDirs)

install(TARGETS taleloom taleloom-tool RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
# The translations are compiled into the programs; the sample story is
# installed for people to start from.
install(DIRECTORY ${PROJECT_SOURCE_DIR}/data/samples DESTINATION ${CMAKE_INSTALL_DATADIR}/taleloom)
# The shipped colour palettes, where the program looks for them.
install(DIRECTORY "${PROJECT_SOURCE_DIR}/data/Color Palettes" DESTINATION ${CMAKE_INSTALL_DATADIR}/taleloom)
install(FILES ${PROJECT_SOURCE_DIR}/data/desktop/taleloom.desktop
        DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES ${PROJECT_SOURCE_DIR}/data/desktop/taleloom-mime.xml
        DESTINATION ${CMAKE_INSTALL_DATADIR}/mime/packages RENAME taleloom.xml)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/data/icons/hicolor DESTINATION ${CMAKE_INSTALL_DATADIR}/icons)

# File managers run the tool by its full path to draw a story's thumbnail.
set(TALELOOM_TOOL_PATH ${CMAKE_INSTALL_FULL_BINDIR}/taleloom-tool)
configure_file(${PROJECT_SOURCE_DIR}/data/desktop/taleloom.thumbnailer.in
               ${PROJECT_BINARY_DIR}/taleloom.thumbnailer @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/taleloom.thumbnailer DESTINATION ${CMAKE_INSTALL_DATADIR}/thumbnailers)

install(CODE "
  if(\"\$ENV{DESTDIR}\" STREQUAL \"\")
    find_program(update_mime update-mime-database)
    find_program(update_icons gtk-update-icon-cache)
    find_program(update_desktop update-desktop-database)
    if(update_mime)
      execute_process(COMMAND \${update_mime} \"${CMAKE_INSTALL_FULL_DATADIR}/mime\")
    endif()
    if(update_icons)
      execute_process(COMMAND \${update_icons} -q -t -f \"${CMAKE_INSTALL_FULL_DATADIR}/icons/hicolor\")
    endif()
    if(update_desktop)
      execute_process(COMMAND \${update_desktop} -q \"${CMAKE_INSTALL_FULL_DATADIR}/applications\")
    endif()
  endif()
")
