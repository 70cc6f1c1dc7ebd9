# vidora_add_test(NAME name SOURCES a.cpp ... LIBS lib ... [GUI] [TIMEOUT s] [ENVIRONMENT VAR=value ...]
#                 [LAUNCHER program args ...])
# One executable per unit. Non-GUI tests run on Qt's offscreen platform; GUI tests need the X
# display that the test script provides (xvfb-run) and use Mesa's software OpenGL.
# Every test gets a private TMPDIR so media, sockets and list files never collide.
if(VIDORA_SANITIZE)
  find_file(VIDORA_MESA_DRIVER swrast_dri.so
            PATHS /usr/lib/${CMAKE_LIBRARY_ARCHITECTURE}/dri /usr/lib/dri NO_DEFAULT_PATH)
endif()

function(vidora_add_test)
  cmake_parse_arguments(T "GUI" "NAME;TIMEOUT" "SOURCES;LIBS;ENVIRONMENT;LAUNCHER" ${ARGN})
  add_executable(${T_NAME} ${T_SOURCES})
  if(VIDORA_TSAN)
    # Tell the sanitizer where Qt itself orders threads (posted calls, the scene graph's sync).
    target_sources(${T_NAME} PRIVATE ${PROJECT_SOURCE_DIR}/src/app/tsan/QtHandOver.cpp)
    if(T_GUI)
      target_sources(${T_NAME} PRIVATE ${PROJECT_SOURCE_DIR}/src/app/tsan/SceneGraphHandOver.cpp)
      target_link_libraries(${T_NAME} PRIVATE Qt5::Quick)
    endif()
  endif()
  target_link_libraries(${T_NAME} PRIVATE Qt5::Test ${T_LIBS})
  target_include_directories(${T_NAME} PRIVATE ${PROJECT_SOURCE_DIR}/tests/common)
  set_target_properties(${T_NAME} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
  add_test(NAME ${T_NAME} COMMAND ${T_LAUNCHER} $<TARGET_FILE:${T_NAME}>)
  set(tmp ${CMAKE_BINARY_DIR}/test-tmp/${T_NAME})
  file(MAKE_DIRECTORY ${tmp})
  set(env "TMPDIR=${tmp}" "VIDORA_BIN_DIR=${VIDORA_BIN_DIR}" "VIDORA_SOURCE_DIR=${PROJECT_SOURCE_DIR}" ${T_ENVIRONMENT})
  if(NOT T_GUI)
    list(APPEND env "QT_QPA_PLATFORM=offscreen")
  else()
    list(APPEND env "LIBGL_ALWAYS_SOFTWARE=1")
  endif()
  # Sanitizer builds: reports stop the test; the suppressions cover the dependencies' own
  # code only. Programs a test starts inherit the same settings.
  set(supp ${PROJECT_SOURCE_DIR}/tests/sanitizers)
  if(VIDORA_SANITIZE)
    # Mesa unloads its DRI driver when the last GL context goes; LeakSanitizer then can no
    # longer scan the driver's globals (its live blocks turn into "leaks") nor name its frames.
    # Loading the driver up front keeps it mapped until exit.
    if(T_GUI AND VIDORA_MESA_DRIVER)
      list(APPEND env "LD_PRELOAD=${VIDORA_MESA_DRIVER}")
    endif()
    list(APPEND env "ASAN_OPTIONS=detect_leaks=1:abort_on_error=0:strict_string_checks=0"
         "LSAN_OPTIONS=suppressions=${supp}/lsan.supp:print_suppressions=0"
         "UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1:suppressions=${supp}/ubsan.supp")
  endif()
  if(VIDORA_TSAN)
    # Qt, Mesa, libmpv and FFmpeg come uninstrumented: what their own code does to memory
    # (frees, copies, their pthread calls) is not ours to judge and stays out of the reports.
    list(APPEND env "TSAN_OPTIONS=suppressions=${supp}/tsan.supp:ignore_noninstrumented_modules=1:second_deadlock_stack=1:halt_on_error=0")
  endif()
  if(NOT T_TIMEOUT)
    set(T_TIMEOUT 300)
  endif()
  # Instrumented code runs several times slower.
  if(VIDORA_SANITIZE OR VIDORA_TSAN)
    math(EXPR T_TIMEOUT "${T_TIMEOUT} * 3")
  endif()
  set_tests_properties(${T_NAME} PROPERTIES ENVIRONMENT "${env}" TIMEOUT ${T_TIMEOUT})
endfunction()
