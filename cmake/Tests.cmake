# Test tiers: unit (native), conformance (native over the portable adapters, Windows over the
# real API under Wine), fuzz corpus runs (native, sanitizers), end-to-end (Windows, under Wine).
include(GoogleTest)

if(WIN32)
  # GoogleTest for MinGW, built from the sources that Debian's googletest package installs.
  set(QUORVANE_GTEST_SOURCE /usr/src/googletest CACHE PATH "GoogleTest sources")
  set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
  set(gtest_disable_pthreads OFF CACHE BOOL "" FORCE)
  add_subdirectory(${QUORVANE_GTEST_SOURCE} ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)
  add_library(quorvane_gtest INTERFACE)
  target_link_libraries(quorvane_gtest INTERFACE gmock gtest_main)
else()
  find_package(GTest REQUIRED)
  add_library(quorvane_gtest INTERFACE)
  target_link_libraries(quorvane_gtest INTERFACE GTest::gmock GTest::gtest_main)
endif()

# One executable of GoogleTest cases. Natively every case is its own ctest test; under Wine
# each start of a process costs a good part of a second, so there an executable is one test.
function(quorvane_gtest_executable name)
  add_executable(${name} ${ARGN})
  target_link_libraries(${name} PRIVATE ${QUORVANE_PLATFORM} quorvane_gtest)
  target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR}/tests
    ${CMAKE_SOURCE_DIR}/tests/conformance ${CMAKE_SOURCE_DIR}/tests/unit)
  # Where the committed test pictures (tests/data) are, as a path of the build machine.
  target_compile_definitions(${name} PRIVATE QUORVANE_SOURCE_DIR="${CMAKE_SOURCE_DIR}")
  quorvane_target(${name})
  if(WIN32)
    add_test(NAME ${name} COMMAND ${name} --gtest_color=no ${${name}_TEST_ARGUMENTS})
  else()
    gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST TEST_PREFIX "${name}.")
  endif()
endfunction()

file(GLOB QUORVANE_CONFORMANCE_SOURCES CONFIGURE_DEPENDS tests/conformance/*.cpp)
if(WIN32)
  file(GLOB QUORVANE_CONFORMANCE_ADAPTER CONFIGURE_DEPENDS tests/conformance/win32/*.cpp)
  # The cases that show forms (the settings dialog among them) need a screen, which the run under
  # ctest has not: they run in settings_on_screen below, and not here.
  set(conformance_win32_TEST_ARGUMENTS --gtest_filter=-SettingsConformance.*:FormsConformance.*:SliderOnScreen.*)
  quorvane_gtest_executable(conformance_win32
    ${QUORVANE_CONFORMANCE_SOURCES} ${QUORVANE_CONFORMANCE_ADAPTER})
  # The catalogue once more, on the "Windows XP" branch.
  add_test(NAME conformance_win32_xp
    COMMAND bash ${CMAKE_SOURCE_DIR}/scripts/run-as-xp.sh $<TARGET_FILE:conformance_win32>
            --gtest_color=no --gtest_filter=CatalogueConformance.*)
  # The ANSI code page's conversions once more under two other code pages: Wine takes the
  # locale, and with it the code page, from LC_ALL.
  foreach(variant "ru_RU.UTF-8=1251" "ja_JP.UTF-8=932")
    string(REPLACE "=" ";" parts ${variant})
    list(GET parts 0 locale)
    list(GET parts 1 page)
    add_test(NAME conformance_win32_cp${page}
      COMMAND conformance_win32 --gtest_color=no --gtest_filter=CodePagesConformance.*)
    set_tests_properties(conformance_win32_cp${page} PROPERTIES
      ENVIRONMENT "LC_ALL=${locale};QUORVANE_EXPECT_ACP=${page}")
  endforeach()
  # The program's own icon picker, driven on a virtual screen: a dialog needs a display, which
  # the run under ctest has not, so the program runs in a virtual desktop of its own.
  add_executable(icon_picker_win32 tests/iconpicker/IconPickerFallback.cpp)
  target_link_libraries(icon_picker_win32 PRIVATE quorvane_platform quorvane_gtest)
  target_include_directories(icon_picker_win32 PRIVATE ${CMAKE_SOURCE_DIR}/tests/conformance)
  quorvane_target(icon_picker_win32)
  add_test(NAME icon_picker_on_screen
    COMMAND bash ${CMAKE_SOURCE_DIR}/scripts/gtest-on-screen.sh $<TARGET_FILE:icon_picker_win32>)
  # The conformance cases of the forms (the settings dialog among them) show windows: they run
  # on a virtual screen.
  add_test(NAME settings_on_screen
    COMMAND bash ${CMAKE_SOURCE_DIR}/scripts/gtest-on-screen.sh $<TARGET_FILE:conformance_win32>
            --gtest_filter=SettingsConformance.*:FormsConformance.*:SliderOnScreen.*)
else()
  file(GLOB QUORVANE_CONFORMANCE_ADAPTER CONFIGURE_DEPENDS tests/conformance/portable/*.cpp)
  quorvane_gtest_executable(conformance_portable
    ${QUORVANE_CONFORMANCE_SOURCES} ${QUORVANE_CONFORMANCE_ADAPTER})

  # Every source file includes only from its own ring and the rings below it.
  add_test(NAME rings COMMAND bash ${CMAKE_SOURCE_DIR}/scripts/check-rings.sh)

  file(GLOB QUORVANE_UNIT_SOURCES CONFIGURE_DEPENDS tests/unit/*.cpp)
  quorvane_gtest_executable(unit_tests ${QUORVANE_UNIT_SOURCES})

  # Fuzz harnesses: each fuzz/fuzz_*.cpp defines LLVMFuzzerTestOneInput. In the test tree they
  # run over a bounded, seeded random corpus under the sanitizers: QUORVANE_FUZZ_RUNS inputs each
  # in `make test`, and the long runs of `make fuzz` (scripts/fuzz.sh) run the same programs with
  # more. With QUORVANE_LIBFUZZER (clang) they build as libFuzzer programs instead.
  set(QUORVANE_FUZZ_RUNS 2000 CACHE STRING "Random inputs of each fuzz harness in the test tree")
  file(GLOB QUORVANE_FUZZ_HARNESSES CONFIGURE_DEPENDS fuzz/fuzz_*.cpp)
  foreach(harness ${QUORVANE_FUZZ_HARNESSES})
    get_filename_component(name ${harness} NAME_WE)
    if(QUORVANE_LIBFUZZER)
      add_executable(${name} ${harness})
      target_compile_options(${name} PRIVATE -fsanitize=fuzzer)
      target_link_options(${name} PRIVATE -fsanitize=fuzzer)
    else()
      add_executable(${name} ${harness} fuzz/CorpusDriver.cpp)
      add_test(NAME fuzz.${name} COMMAND ${name} --runs ${QUORVANE_FUZZ_RUNS} --seed 1)
      set_tests_properties(fuzz.${name} PROPERTIES LABELS fuzz)
    endif()
    target_link_libraries(${name} PRIVATE quorvane_platform)
    target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR}/tests ${CMAKE_SOURCE_DIR}/fuzz)
    quorvane_target(${name})
  endforeach()
endif()

# End-to-end tests: quorvane.exe under Wine in a virtual desktop, driven from a second program.
if(WIN32)
  include(${CMAKE_SOURCE_DIR}/cmake/EndToEnd.cmake OPTIONAL)
endif()

# Start-up checks that run whole programs under Wine (the XP branch, the blank icon, the tray).
include(${CMAKE_SOURCE_DIR}/cmake/StartupProbe.cmake)

# Collection files against other cabinet tools and across the two builds.
include(${CMAKE_SOURCE_DIR}/cmake/Cabinet.cmake)
