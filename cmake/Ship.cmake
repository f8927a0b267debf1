# What is shipped beside the program: the help file orlavine.chm, compiled from help/ by chmcmd
# (Debian's fp-utils) into the build folder beside quorvane.exe, and the installer
# QuorvaneSetup.exe, made by makensis (Debian's nsis) from installer/QuorvaneSetup.nsi.
# `cmake --build --preset windows --target dist` (make dist) builds the installer.

# The version of resources and installer: the project's, read from the VERSION file.
set(QUORVANE_GENERATED_DIR ${CMAKE_BINARY_DIR}/generated)
string(REPLACE "." "," QUORVANE_VERSION_COMMAS "${PROJECT_VERSION}")
configure_file(${CMAKE_SOURCE_DIR}/res/Version.h.in ${QUORVANE_GENERATED_DIR}/Version.h @ONLY)
set_property(SOURCE ${CMAKE_SOURCE_DIR}/res/quorvane.rc APPEND PROPERTY COMPILE_OPTIONS
  "-I${QUORVANE_GENERATED_DIR}")
set_property(SOURCE ${CMAKE_SOURCE_DIR}/res/quorvane.rc APPEND PROPERTY OBJECT_DEPENDS
  ${QUORVANE_GENERATED_DIR}/Version.h)

# The help.
find_program(QUORVANE_CHMCMD chmcmd)
set(QUORVANE_HELP ${CMAKE_BINARY_DIR}/orlavine.chm)
file(GLOB QUORVANE_HELP_SOURCES CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/help/*.html
  ${CMAKE_SOURCE_DIR}/help/*.css ${CMAKE_SOURCE_DIR}/help/orlavine.hh?
  ${CMAKE_SOURCE_DIR}/help/pictures/*.png)
if(QUORVANE_CHMCMD)
  add_custom_command(OUTPUT ${QUORVANE_HELP}
    COMMAND bash ${CMAKE_SOURCE_DIR}/scripts/make-help.sh ${CMAKE_SOURCE_DIR}/help
      ${CMAKE_BINARY_DIR}/help ${QUORVANE_HELP}
    DEPENDS ${CMAKE_SOURCE_DIR}/scripts/make-help.sh ${QUORVANE_HELP_SOURCES}
    COMMENT "Compiling the help, orlavine.chm" VERBATIM)
  add_custom_target(quorvane_help ALL DEPENDS ${QUORVANE_HELP})
else()
  message(WARNING "chmcmd (Debian's fp-utils) is missing: no help file; make setup installs it")
endif()

# The installer.
find_program(QUORVANE_MAKENSIS makensis)
set(QUORVANE_SETUP ${CMAKE_BINARY_DIR}/QuorvaneSetup.exe)
if(QUORVANE_MAKENSIS AND QUORVANE_CHMCMD)
  add_custom_command(OUTPUT ${QUORVANE_SETUP}
    COMMAND ${QUORVANE_MAKENSIS} -V2 -WX -NOCD
      -DVERSION=${PROJECT_VERSION}
      -DPROGRAM=$<TARGET_FILE:quorvane>
      -DHELP=${QUORVANE_HELP}
      -DICON=${CMAKE_SOURCE_DIR}/res/quorvane.ico
      -DOUTFILE=${QUORVANE_SETUP}
      ${CMAKE_SOURCE_DIR}/installer/QuorvaneSetup.nsi
    DEPENDS quorvane ${QUORVANE_HELP} ${CMAKE_SOURCE_DIR}/installer/QuorvaneSetup.nsi
      ${CMAKE_SOURCE_DIR}/res/quorvane.ico ${CMAKE_SOURCE_DIR}/VERSION
    COMMENT "Making the installer, QuorvaneSetup.exe" VERBATIM)
  add_custom_target(dist ALL DEPENDS ${QUORVANE_SETUP})
else()
  message(WARNING "makensis (Debian's nsis) or chmcmd is missing: no installer; make setup installs them")
endif()
