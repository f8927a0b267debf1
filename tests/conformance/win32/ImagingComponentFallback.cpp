// The Windows Imaging Component, which decodes PNG files where the OLE loader refuses them.
// Under Wine the OLE loader takes PNG itself, so the component is tried here on its own.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "PictureFiles.h"
#include "base/Failure.h"
#include "platform/win32/Win32Pictures.h"

namespace quorvane::testing {
namespace {

namespace pf = picture_files;

std::span<const std::uint8_t> View(const std::string& bytes) {
  return {reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()};
}

TEST(ImagingComponentFallback, DecodesAPngWithItsAlpha) {
  const std::vector<std::uint32_t> colours = {0x102030, 0x405060, 0x708090, 0xA0B0C0};
  const std::vector<std::uint8_t> alpha = {0xFF, 0x80, 0x00, 0xFF};
  const Pixels p =
      platform::win32::DecodeWithImagingComponent(View(pf::PngFile(2, 2, colours, alpha)));
  ASSERT_EQ(p.width, 2);
  ASSERT_EQ(p.height, 2);
  EXPECT_EQ(p.bgra[0], 0xFF102030u);
  EXPECT_EQ(p.bgra[1], 0x80405060u);
  EXPECT_EQ(p.bgra[2] >> 24, 0u);
  EXPECT_EQ(p.bgra[3], 0xFFA0B0C0u);
}

TEST(ImagingComponentFallback, RefusesWhatIsNoPicture) {
  const std::string png = pf::PngFile(8, 8, std::vector<std::uint32_t>(64, 0));
  for (const std::string& bytes : {std::string("no picture here"), png.substr(0, png.size() / 2)}) {
    try {
      platform::win32::DecodeWithImagingComponent(View(bytes));
      ADD_FAILURE() << "decoded " << bytes.size() << " bytes";
    } catch (const Failure& failure) {
      EXPECT_EQ(failure.Number(), FailureNumber::InvalidPicture);
    }
  }
}

}  // namespace
}  // namespace quorvane::testing
