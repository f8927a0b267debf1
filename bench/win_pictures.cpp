// Times the Windows picture service on one file: decoding it, then saving the pixels as a 24-bit
// bitmap. Prints the median and the fastest of each, in milliseconds. With "ole" last, every
// kind goes to the OLE picture loader, as before the imaging component decoded JPEG, bitmaps
// and opaque GIF straight into the pixels.
//   win_pictures PICTURE OUTPUT.bmp [ROUNDS] [ole]
#include <cstring>

#include "PictureTiming.h"
#include "platform/win32/Win32Pictures.h"

int main(int argc, char** argv) {
  using quorvane::platform::win32::PictureDecoding;
  const bool ole = argc > 4 && std::strcmp(argv[4], "ole") == 0;
  quorvane::platform::win32::Win32Pictures pictures(ole ? PictureDecoding::OleOnly
                                                        : PictureDecoding::Fastest);
  return quorvane::bench::TimePictures(pictures, argc, argv);
}
