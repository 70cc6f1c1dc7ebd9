# vidora_ui_qrc(OUT_VAR): writes one resource file holding the QML scene and its images and puts
# its path in OUT_VAR. Files join by being in their folder (new ones trigger a re-configure):
#   qml/*.qml, qml/*.js         -> qrc:/qml/...          (the screens, beside main.qml)
#   qml/CustomUtils/*           -> qrc:/CustomUtils/...  (the control library and its qmldir)
#   Resources/**/*.png          -> qrc:/Resources/...
# Both QML folders sit one level below the root, so the image stems "../Resources/x" that the
# screens and controls use resolve to qrc:/Resources/x.
function(vidora_ui_qrc out_var)
  set(root ${PROJECT_SOURCE_DIR})
  file(GLOB screens CONFIGURE_DEPENDS ${root}/qml/*.qml ${root}/qml/*.js)
  file(GLOB library CONFIGURE_DEPENDS ${root}/qml/CustomUtils/*.qml ${root}/qml/CustomUtils/*.js
       ${root}/qml/CustomUtils/qmldir)
  file(GLOB_RECURSE images CONFIGURE_DEPENDS ${root}/Resources/*.png)
  set(body "")
  foreach(f IN LISTS screens images)
    file(RELATIVE_PATH alias ${root} ${f})
    string(APPEND body "    <file alias=\"${alias}\">${f}</file>\n")
  endforeach()
  foreach(f IN LISTS library)
    file(RELATIVE_PATH alias ${root}/qml ${f})
    string(APPEND body "    <file alias=\"${alias}\">${f}</file>\n")
  endforeach()
  set(qrc ${CMAKE_CURRENT_BINARY_DIR}/vidora_ui.qrc)
  set(content "<RCC>\n  <qresource prefix=\"/\">\n${body}  </qresource>\n</RCC>\n")
  # Rewriting an unchanged file would make rcc run on every configure.
  if(EXISTS ${qrc})
    file(READ ${qrc} old)
  endif()
  if(NOT "${old}" STREQUAL "${content}")
    file(WRITE ${qrc} "${content}")
  endif()
  set(${out_var} ${qrc} PARENT_SCOPE)
endfunction()
