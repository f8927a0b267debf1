// Times the Windows picture service (the OLE loader) on one file: decoding it, then saving the
// pixels as a 24-bit bitmap. Prints the median and the fastest of each, in milliseconds.
//   win_pictures PICTURE OUTPUT.bmp [ROUNDS]
#include "PictureTiming.h"
#include "platform/win32/Win32Pictures.h"

int main(int argc, char** argv) {
  quorvane::platform::win32::Win32Pictures pictures;
  return quorvane::bench::TimePictures(pictures, argc, argv);
}
