# Start-up checks of the Windows build that need a whole program under Wine: the version name a
# program sees when Wine is told to report Windows XP for it, the blank icon inside quorvane.exe,
# and the notification area on a virtual screen. Included from cmake/Tests.cmake.
if(NOT WIN32)
  return()
endif()

# The conformance program carries the blank icon, as quorvane.exe does.
set(QUORVANE_STARTUP_RC ${CMAKE_SOURCE_DIR}/tests/startup/conformance.rc)
target_sources(conformance_win32 PRIVATE ${QUORVANE_STARTUP_RC})
set_source_files_properties(${QUORVANE_STARTUP_RC} PROPERTIES
  OBJECT_DEPENDS ${CMAKE_SOURCE_DIR}/res/Empty.ico)

# A console program that prints the version name and copies out a module's raw resource.
add_executable(osname_probe ${CMAKE_SOURCE_DIR}/tests/startup/osname_probe.cpp)
target_link_libraries(osname_probe PRIVATE quorvane_platform)
quorvane_target(osname_probe)

add_test(NAME startup.xp_branch
  COMMAND bash ${CMAKE_SOURCE_DIR}/scripts/check-xp-branch.sh $<TARGET_FILE:osname_probe>)
if(TARGET quorvane)
  add_test(NAME startup.empty_icon_resource
    COMMAND bash ${CMAKE_SOURCE_DIR}/scripts/check-empty-icon.sh $<TARGET_FILE:osname_probe>
      $<TARGET_FILE:quorvane> ${CMAKE_SOURCE_DIR}/res/Empty.ico)
endif()
# Without a display Wine has no notification area and every call gives 0, so the tray case runs
# again on a virtual screen, told that the area must be there.
add_test(NAME startup.tray_on_screen
  COMMAND ${CMAKE_COMMAND} -E env QUORVANE_NOTIFICATION_AREA=1
    bash ${CMAKE_SOURCE_DIR}/scripts/gtest-on-screen.sh $<TARGET_FILE:conformance_win32>
      --gtest_filter=TrayConformance.*)
