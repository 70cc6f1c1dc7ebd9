# The installed layout (executables in bin, the shipped read-only files in share/vidora, the
# desktop integration files where desktops look) and the Debian package built from it.

# The video types of the formats config.json lists, for the desktop entry, the metainfo and
# the media controls.
set(VIDORA_MIME_TYPES
  video/mp4 video/x-matroska video/x-msvideo video/quicktime video/x-ms-wmv video/x-flv
  video/webm video/x-m4v video/mp2t video/mpeg video/3gpp video/ogg video/x-ms-asf
  application/vnd.rn-realmedia)

list(JOIN VIDORA_MIME_TYPES ";" VIDORA_DESKTOP_MIME_TYPES)
set(VIDORA_DESKTOP_MIME_TYPES "${VIDORA_DESKTOP_MIME_TYPES};")
set(VIDORA_METAINFO_MEDIATYPES "")
foreach(type IN LISTS VIDORA_MIME_TYPES)
  string(APPEND VIDORA_METAINFO_MEDIATYPES "    <mediatype>${type}</mediatype>\n")
endforeach()
set(VIDORA_DIST ${PROJECT_SOURCE_DIR}/dist/linux)
set(VIDORA_GENERATED ${CMAKE_BINARY_DIR}/generated)
configure_file(${VIDORA_DIST}/org.vidora.vidora.desktop.in ${VIDORA_GENERATED}/org.vidora.vidora.desktop @ONLY)
configure_file(${VIDORA_DIST}/org.vidora.vidora.metainfo.xml.in ${VIDORA_GENERATED}/org.vidora.vidora.metainfo.xml @ONLY)
file(WRITE ${VIDORA_GENERATED}/VidoraMimeTypes.h.in
  "#pragma once\n// Generated from the one list in cmake/VidoraInstall.cmake.\n"
  "inline const char* const kVidoraMimeTypes = \"@VIDORA_DESKTOP_MIME_TYPES@\";\n")
configure_file(${VIDORA_GENERATED}/VidoraMimeTypes.h.in ${VIDORA_GENERATED}/include/VidoraMimeTypes.h @ONLY)
target_include_directories(vidora_player PRIVATE ${VIDORA_GENERATED}/include)

set(VIDORA_INSTALL_DATA ${CMAKE_INSTALL_DATADIR}/vidora)
install(TARGETS vidora vidora-cli RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(FILES ${PROJECT_SOURCE_DIR}/config.json ${PROJECT_SOURCE_DIR}/mpvqt.conf ${VIDORA_QM}
  DESTINATION ${VIDORA_INSTALL_DATA})
if(EXISTS ${PROJECT_SOURCE_DIR}/fonts)
  install(DIRECTORY ${PROJECT_SOURCE_DIR}/fonts DESTINATION ${VIDORA_INSTALL_DATA})
endif()
install(FILES ${VIDORA_GENERATED}/org.vidora.vidora.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES ${VIDORA_GENERATED}/org.vidora.vidora.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
foreach(size 16 24 32 48 64 128 256)
  install(FILES ${VIDORA_DIST}/icons/vidora-${size}.png
    DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/${size}x${size}/apps RENAME org.vidora.vidora.png)
endforeach()

# Debian package: library dependencies come from dpkg-shlibdeps; what the program loads at
# run time without linking (QML modules, fonts) is named here.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME vidora)
set(CPACK_PACKAGE_VENDOR "Vidora developers")
set(CPACK_PACKAGE_CONTACT "Vidora developers <dev@vidora.org>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "video player that clips, compresses, converts and merges videos")
set(CPACK_PACKAGE_DESCRIPTION "Vidora plays local video files, remembers where each stopped, and cuts,\ncompresses, converts and merges videos with the FFmpeg libraries.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION video)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS
  "qml-module-qtquick2, qml-module-qtquick-controls2, qml-module-qtquick-templates2, qml-module-qtquick-dialogs, qml-module-qtquick-layouts, qml-module-qtquick-window2, qml-module-qtgraphicaleffects, qml-module-qt-labs-platform, qml-module-qt-labs-settings, fonts-noto-cjk, fonts-symbola")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "desktop-file-utils, hicolor-icon-theme")
include(CPack)
