# Builds the Debian package with cpack and checks what a user's apt would see: the files in
# the Debian layout, Debian package names as dependencies, and that apt can install it here.
file(REMOVE_RECURSE ${WORK_DIR})
file(MAKE_DIRECTORY ${WORK_DIR})

function(run)
  execute_process(COMMAND ${ARGN} WORKING_DIRECTORY ${WORK_DIR} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "${ARGN} failed (${rc}):\n${out}\n${err}")
  endif()
  set(out "${out}" PARENT_SCOPE)
endfunction()

run(cpack --config ${BUILD_DIR}/CPackConfig.cmake -B ${WORK_DIR})
file(GLOB deb ${WORK_DIR}/vidora_*.deb)
if(NOT deb)
  message(FATAL_ERROR "cpack made no vidora_*.deb")
endif()

run(dpkg-deb --field ${deb} Depends)
foreach(needed libmpv2 libavcodec59 libqt5quick5 libqt5dbus5 libsqlite3-0 qml-module-qtquick-controls2)
  if(NOT out MATCHES "(^|[ ,])${needed}([ ,(]|$)")
    message(FATAL_ERROR "Depends lacks ${needed}: ${out}")
  endif()
endforeach()

run(dpkg-deb --contents ${deb})
foreach(path ./usr/bin/vidora ./usr/bin/vidora-cli ./usr/share/vidora/config.json ./usr/share/vidora/mpvqt.conf
        ./usr/share/applications/org.vidora.vidora.desktop ./usr/share/metainfo/org.vidora.vidora.metainfo.xml
        ./usr/share/icons/hicolor/256x256/apps/org.vidora.vidora.png)
  string(FIND "${out}" " ${path}\n" at)
  if(at EQUAL -1)
    message(FATAL_ERROR "the package lacks ${path}")
  endif()
endforeach()

run(apt-get install --simulate --no-install-recommends ${deb})
if(NOT out MATCHES "Inst vidora ")
  message(FATAL_ERROR "apt would not install the package:\n${out}")
endif()
message(STATUS "${deb} installs")
