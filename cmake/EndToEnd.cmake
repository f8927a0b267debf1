# The driving library: what drives quorvane.exe from outside (starting it and waiting for its
# window, finding its controls through "Quorvane.FindControl", the pointer's clicks, its end
# through "Quorvane.Exit", the files it leaves, the screen). The end-to-end driver and the
# Windows benchmarks that drive the program link it.
file(GLOB QUORVANE_DRIVING_SOURCES CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/tests/driving/*.cpp)
add_library(quorvane_driving STATIC ${QUORVANE_DRIVING_SOURCES})
target_include_directories(quorvane_driving PUBLIC ${CMAKE_SOURCE_DIR}/tests)
target_link_libraries(quorvane_driving PUBLIC user32 gdi32 comctl32 shell32 advapi32)
target_compile_definitions(quorvane_driving PRIVATE WIN32_LEAN_AND_MEAN NOMINMAX _WIN32_WINNT=0x0600)
quorvane_target(quorvane_driving)

# The end-to-end driver: a Windows program that starts quorvane.exe inside the same virtual
# desktop and checks it from outside. scripts/e2e.sh runs it under Wine on a virtual screen; it
# is no ctest test, since it needs a display.
file(GLOB QUORVANE_E2E_SOURCES CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/tests/e2e/*.cpp)
if(QUORVANE_E2E_SOURCES AND TARGET quorvane)
  # A GUI program, so that Wine opens no console window for it in the desktop it photographs.
  add_executable(e2e_driver WIN32 ${QUORVANE_E2E_SOURCES})
  target_link_libraries(e2e_driver PRIVATE quorvane_driving ole32 uuid)
  target_compile_definitions(e2e_driver PRIVATE WIN32_LEAN_AND_MEAN NOMINMAX _WIN32_WINNT=0x0600)
  quorvane_target(e2e_driver)
  # The driver starts quorvane.exe from its own folder: build both together.
  add_dependencies(e2e_driver quorvane)
endif()

# The start-up benchmark's build of quorvane.exe (bench/win_startup.cpp runs it): the same program
# with the flag "--startup-benchmark" that signals when the window is shown and ends it there.
# Only `bash scripts/bench.sh startup` builds it.
if(TARGET quorvane)
  add_executable(quorvane_startup WIN32 EXCLUDE_FROM_ALL
    ${QUORVANE_APP_SOURCES} ${QUORVANE_APP_RESOURCES})
  target_compile_definitions(quorvane_startup PRIVATE QUORVANE_STARTUP_BENCHMARK)
  target_link_libraries(quorvane_startup PRIVATE quorvane_platform)
  quorvane_target(quorvane_startup)
endif()

# The benchmarks' targets are made after this file is read. The minimal window program the
# start-up is measured against is a GUI program like quorvane.exe, so that both start the same
# way; the benchmarks that start and drive programs link the driving library.
function(quorvane_bench_targets)
  if(TARGET win_minimal_window)
    set_target_properties(win_minimal_window PROPERTIES WIN32_EXECUTABLE ON)
  endif()
  foreach(bench win_startup win_switch win_thumbnails win_folders)
    if(TARGET ${bench})
      target_link_libraries(${bench} PRIVATE quorvane_driving)
    endif()
  endforeach()
  if(TARGET win_thumbnails)
    target_link_libraries(win_thumbnails PRIVATE psapi)
  endif()
endfunction()
cmake_language(DEFER DIRECTORY ${CMAKE_SOURCE_DIR} CALL quorvane_bench_targets)
