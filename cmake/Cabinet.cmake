# Collection files beside other cabinet tools: a command-line front to the packer of each build,
# and a script that packs and unpacks with it against cabextract and gcab, across the two builds,
# and stops it half-way. Included from cmake/Tests.cmake.
add_executable(cab_probe ${CMAKE_SOURCE_DIR}/tests/cabinet/cab_probe.cpp)
target_link_libraries(cab_probe PRIVATE ${QUORVANE_PLATFORM})
quorvane_target(cab_probe)

if(WIN32)
  # The native build's probe, when it is there, reads what the Windows build writes and the other
  # way round.
  set(QUORVANE_NATIVE_BUILD_DIR ${CMAKE_SOURCE_DIR}/build/native CACHE PATH
      "Native build tree whose cab_probe the cross-build cabinet check uses")
  add_test(NAME cabinet.interop
    COMMAND bash ${CMAKE_SOURCE_DIR}/scripts/check-cabinet.sh windows $<TARGET_FILE:cab_probe>
            ${QUORVANE_NATIVE_BUILD_DIR}/cab_probe)
else()
  add_test(NAME cabinet.interop
    COMMAND bash ${CMAKE_SOURCE_DIR}/scripts/check-cabinet.sh native $<TARGET_FILE:cab_probe>)
endif()
