// The bitmap file a picture is saved as, made whole or a piece at a time through buffers of any
// length: the pieces joined are the same file, byte for byte.
#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "base/Failure.h"
#include "codecs/BitmapFile.h"

namespace quorvane::platform {
namespace {

Pixels Picture(std::int32_t width, std::int32_t height) {
  Pixels p;
  p.width = width;
  p.height = height;
  for (std::int32_t i = 0; i < width * height; ++i) {
    // Every pixel different, and a fourth byte that must not reach the file.
    p.bgra.push_back(0x5A000000u | (static_cast<std::uint32_t>(i) * 0x0B0703u + 0x010203u));
  }
  return p;
}

std::uint32_t Get32(const std::vector<std::uint8_t>& b, std::size_t at) {
  return b[at] | (b[at + 1] << 8) | (b[at + 2] << 16) |
         (static_cast<std::uint32_t>(b[at + 3]) << 24);
}

// The file as it must be, written out field by field and pixel by pixel.
std::vector<std::uint8_t> Expected(const Pixels& p) {
  const std::size_t rowBytes = (static_cast<std::size_t>(p.width) * 3 + 3) / 4 * 4;
  const std::size_t size = 54 + rowBytes * static_cast<std::size_t>(p.height);
  std::vector<std::uint8_t> out;
  const auto put = [&](std::uint32_t v, int bytes) {
    for (int i = 0; i < bytes; ++i) {
      out.push_back(static_cast<std::uint8_t>(i < 4 ? (v >> (8 * i)) & 0xFFu : 0u));
    }
  };
  put('B' | ('M' << 8), 2);
  put(static_cast<std::uint32_t>(size), 4);
  put(0, 4);
  put(54, 4);
  put(40, 4);
  put(static_cast<std::uint32_t>(p.width), 4);
  put(static_cast<std::uint32_t>(p.height), 4);
  put(1, 2);
  put(24, 2);
  put(0, 4);
  put(static_cast<std::uint32_t>(size - 54), 4);
  put(0, 16);
  for (std::int32_t y = p.height - 1; y >= 0; --y) {
    for (std::int32_t x = 0; x < p.width; ++x) put(p.bgra[y * p.width + x], 3);
    put(0, static_cast<int>(rowBytes - static_cast<std::size_t>(p.width) * 3));
  }
  return out;
}

std::vector<std::uint8_t> InPieces(const Pixels& p, std::size_t bufferBytes,
                                   std::vector<std::size_t>* lengths = nullptr) {
  codecs::BitmapFileEncoder encoder(p);
  std::vector<std::uint8_t> buffer(bufferBytes);
  std::vector<std::uint8_t> file;
  while (!encoder.Done()) {
    const std::size_t n = encoder.Next(buffer);
    if (n == 0) {
      ADD_FAILURE() << "no progress with a buffer of " << bufferBytes;
      break;
    }
    if (lengths != nullptr) lengths->push_back(n);
    file.insert(file.end(), buffer.begin(), buffer.begin() + static_cast<std::ptrdiff_t>(n));
  }
  EXPECT_EQ(encoder.Next(buffer), 0u);
  return file;
}

TEST(BitmapFileTest, TheWholeFileHoldsTheHeadersAndTheRowsBottomUpPadded) {
  for (std::int32_t width = 1; width <= 5; ++width) {
    const Pixels p = Picture(width, 3);
    const std::vector<std::uint8_t> file = codecs::BitmapFileBytes(p);
    EXPECT_EQ(file, Expected(p)) << width;
    EXPECT_EQ(Get32(file, 2), file.size());
    EXPECT_EQ(codecs::BitmapFileEncoder(p).Size(), file.size());
  }
}

TEST(BitmapFileTest, PiecesOfAnyLengthJoinToTheSameFile) {
  for (std::int32_t width : {1, 2, 3, 4, 7, 33}) {
    const Pixels p = Picture(width, 9);
    const std::vector<std::uint8_t> whole = Expected(p);
    const std::size_t rowBytes = static_cast<std::size_t>(codecs::BitmapRowBytes(width));
    for (std::size_t buffer : {std::size_t{1}, std::size_t{2}, std::size_t{5}, std::size_t{53},
                               std::size_t{54}, std::size_t{55}, rowBytes - 1, rowBytes,
                               rowBytes + 1, 2 * rowBytes + 3, 54 + rowBytes, whole.size() - 1,
                               whole.size(), whole.size() + 100}) {
      if (buffer == 0) continue;
      EXPECT_EQ(InPieces(p, buffer), whole) << width << " wide, buffer " << buffer;
    }
  }
}

TEST(BitmapFileTest, PiecesEndWithWholeRowsWhereverOneFits) {
  const Pixels p = Picture(5, 6);  // rows of 16 bytes
  std::vector<std::size_t> lengths;
  InPieces(p, 54 + 16 * 2 + 10, &lengths);
  EXPECT_EQ(lengths, (std::vector<std::size_t>{54 + 32, 64}));
  // Room for the headers and a part of a row: the part, then its rest and whole rows again.
  lengths.clear();
  InPieces(p, 60, &lengths);
  EXPECT_EQ(lengths, (std::vector<std::size_t>{54 + 6, 10 + 48, 32}));
}

TEST(BitmapFileTest, AnEmptyOrMismatchedPictureIsAnInvalidCall) {
  Pixels mismatched = Picture(3, 2);
  mismatched.bgra.pop_back();
  Pixels negative = Picture(2, 2);
  negative.height = -2;
  for (const Pixels& p : {Pixels{}, mismatched, negative}) {
    try {
      codecs::BitmapFileEncoder encoder(p);
      ADD_FAILURE() << "encoded a " << p.width << "x" << p.height << " picture";
    } catch (const Failure& failure) {
      EXPECT_EQ(failure.Number(), FailureNumber::InvalidProcedureCall);
    }
  }
}

}  // namespace
}  // namespace quorvane::platform
