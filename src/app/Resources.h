#ifndef QUORVANE_APP_RESOURCES_H
#define QUORVANE_APP_RESOURCES_H
/* Numbers of the program's own resources, shared by the resource script and the code, so plain
   preprocessor definitions only. */

/* The program icon: the window's own icon, the one the shell shows for quorvane.exe. */
#define QUORVANE_PROGRAM_ICON 1

#endif
