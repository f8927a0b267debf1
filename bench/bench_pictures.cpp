// Times the portable picture service on one file: decoding it, then saving the pixels as a
// 24-bit bitmap. Prints the median and the fastest of each, in milliseconds.
//   bench_pictures PICTURE OUTPUT.bmp [ROUNDS]
#include "PictureTiming.h"
#include "platform/portable/DecodedPictures.h"

int main(int argc, char** argv) {
  quorvane::platform::portable::DecodedPictures pictures;
  return quorvane::bench::TimePictures(pictures, argc, argv);
}
