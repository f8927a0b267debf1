#pragma once
// The slide show driven as a person drives it: on the "Wallpaper" page a click on a collection's
// node and on CmdSlideShow opens the show, a window over the whole screen owned by the main
// window, over the collection's folder, which exists while the show is open. "Manually" is
// chosen in its list, then CmdNext, CmdNext and CmdPrevious step through the pictures in the
// folder's order, the first one seen being the second of the folder; the buttons show their
// hover pictures under the pointer; CmdNext on through the folder meets a PCX, which the program
// can't decode: its top-level report shows a message box and logs a line, and after OK the show
// goes on and wraps round to the first picture; "2 Seconds" lets the show step by itself; Escape
// leaves it, and the folder is gone. Which picture is shown is told by Image1's size (each picture of the
// collection has its own) and by the name the panel shows, read from the screen; a bitmap small
// enough to stand whole on the screen is compared pixel for pixel.
#include <string>

#include "Driving.h"

namespace quorvane::e2e {

// Starts `program` (quorvane.exe), runs the slide show cases over the collection of `manifest`
// (a line "<collection>\t<file>\t<width>\t<height>" for each picture packed into the data folder
// before the run; all of one collection, each of its own size), keeps screenshots
// e2e-slideshow-*.bmp in `screenshotFolder`, and ends it through "Quorvane.Exit".
void RunSlideShow(const std::string& program, const std::string& screenshotFolder,
                  const std::string& manifest, const Report& report);

}  // namespace quorvane::e2e
