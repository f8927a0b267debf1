// The icon routines of modextracticon over a port that writes down every call and answers as
// the portable icons do, or as a test scripts it: what each routine asks of the platform, in
// which order and with which arguments, and what the boxes, the image lists and the module
// state show afterwards. What the routines draw over real icons is checked by the conformance
// suite in both builds.
#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

#include "IcoFiles.h"
#include "base/Failure.h"
#include "core/FrmMain.h"
#include "icons/modextracticon.h"
#include "platform/Icons.h"
#include "platform/Service.h"
#include "platform/portable/PortableCodePages.h"
#include "platform/portable/PortableDeviceContexts.h"
#include "platform/portable/PortableIcons.h"
#include "platform/MemorySurface.h"

namespace quorvane {
namespace {

using platform::GdiHandle;
namespace icons = platform::icons;

// The portable icons with a record of every call, and a system image list that a test can
// make up: a path of `listPaths` resolves to `list`, its icon number `iconIndex`, its icons
// `listIconSize` pixels square, and an icon handle asked for is a fresh icon of `iconFile`.
class RecordingIcons final : public platform::Icons {
 public:
  explicit RecordingIcons(platform::DeviceContexts& gdi) : real_(gdi) {}

  std::int32_t ExtractIconExA(const char* file, std::int32_t index, GdiHandle* large,
                              GdiHandle* small, std::uint32_t count) override {
    const std::int32_t result = real_.ExtractIconExA(file, index, large, small, count);
    calls.push_back("ExtractIconExA(" + std::string(file) + "," + std::to_string(index) + "," +
                    std::to_string(count) + ")=" + std::to_string(result));
    return result;
  }
  std::int32_t DrawIconEx(GdiHandle dc, std::int32_t x, std::int32_t y, GdiHandle icon,
                          std::int32_t width, std::int32_t height, std::uint32_t step,
                          GdiHandle brush, std::uint32_t flags) override {
    const std::int32_t result = real_.DrawIconEx(dc, x, y, icon, width, height, step, brush, flags);
    drawnOn.push_back(dc);
    calls.push_back("DrawIconEx(" + Name(icon) + "," + std::to_string(x) + "," +
                    std::to_string(y) + "," + std::to_string(width) + "," +
                    std::to_string(height) + "," + std::to_string(step) + "," +
                    std::to_string(brush) + "," + std::to_string(flags) + ")");
    return result;
  }
  std::int32_t DestroyIcon(GdiHandle icon) override {
    calls.push_back("DestroyIcon(" + Name(icon) + ")");
    return real_.DestroyIcon(icon);
  }
  std::uint32_t SHGetFileInfoA(const char* path, std::uint32_t attributes,
                               platform::ShFileInfo& info, std::uint32_t size,
                               std::uint32_t flags) override {
    calls.push_back("SHGetFileInfoA(" + std::string(path) + "," + std::to_string(attributes) +
                    "," + std::to_string(size) + "," + Hex(flags) + ")");
    for (const std::string& known : listPaths) {
      if (known != path) continue;
      info.iIcon = iconIndex + ((flags & icons::kShgfiOpenIcon) != 0 ? 1 : 0);
      if ((flags & icons::kShgfiIcon) != 0) {
        GdiHandle large = 0;
        GdiHandle small = 0;
        real_.ExtractIconExA(iconFile.c_str(), 0, &large, &small, 1);
        const bool wantsSmall = (flags & icons::kShgfiSmallIcon) != 0;
        real_.DestroyIcon(wantsSmall ? large : small);
        info.hIcon = wantsSmall ? small : large;
        handed.push_back(info.hIcon);
      }
      return (flags & icons::kShgfiSysIconIndex) != 0 ? list : 1u;
    }
    return real_.SHGetFileInfoA(path, attributes, info, size, flags);
  }
  std::int32_t ImageList_Draw(GdiHandle listHandle, std::int32_t index, GdiHandle dc,
                              std::int32_t x, std::int32_t y, std::uint32_t flags) override {
    calls.push_back("ImageList_Draw(" + std::to_string(listHandle) + "," + std::to_string(index) +
                    "," + std::to_string(x) + "," + std::to_string(y) + "," +
                    std::to_string(flags) + ")");
    drawnOn.push_back(dc);
    return listHandle == list && list != 0 ? 1 : 0;
  }
  std::int32_t ImageList_GetIconSize(GdiHandle listHandle, std::int32_t& width,
                                     std::int32_t& height) override {
    calls.push_back("ImageList_GetIconSize(" + std::to_string(listHandle) + ")");
    if (listHandle != list || list == 0) return 0;
    width = listIconSize;
    height = listIconSize;
    return 1;
  }
  std::int32_t PickIconDlg(GdiHandle owner, char16_t* path, std::uint32_t size,
                           std::int32_t& index) override {
    calls.push_back("PickIconDlg");
    return real_.PickIconDlg(owner, path, size, index);
  }

  // Icon handles by what they are: "0", "icon" for one the platform made, else the number.
  std::string Name(GdiHandle icon) const {
    if (icon == 0) return "0";
    return real_.PictureOf(icon) != nullptr ? "icon" : std::to_string(icon);
  }
  static std::string Hex(std::uint32_t value) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%X", value);
    return text;
  }

  platform::portable::PortableIcons real_;
  std::vector<std::string> calls;
  std::vector<GdiHandle> drawnOn;
  std::vector<GdiHandle> handed;
  std::vector<std::string> listPaths;
  GdiHandle list = 0;
  std::int32_t iconIndex = 0;
  std::int32_t listIconSize = 16;
  std::string iconFile;
};

class IconSourcesTest : public ::testing::Test {
 protected:
  IconSourcesTest() {
    for (ui::PictureBox* box : {&form_.sIcon, &form_.mIcon, &form_.lIcon, &form_.Pi1,
                                &form_.PicSmall, &form_.PicLarge}) {
      box->UseSurface(std::make_shared<platform::MemorySurface>());
    }
    const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
    folder_ = std::filesystem::temp_directory_path() /
              ("quorvane-iconsources-" + std::to_string(::getpid()) + "-" + info->name());
    std::filesystem::remove_all(folder_);
    std::filesystem::create_directories(folder_);
    gLargeIconWidth = gLargeIconHeight = gSmallIconWidth = gSmallIconHeight = 0;
    gShellInfo = platform::ShFileInfo{};
    SetIconPickerOwner(0);
  }
  ~IconSourcesTest() override {
    std::error_code ec;
    std::filesystem::remove_all(folder_, ec);
  }

  std::string Write(const std::string& name, std::uint32_t colour) {
    const std::string path = (folder_ / name).string();
    EXPECT_TRUE(testing::WriteBytes(
        path, testing::IcoBytes({testing::SolidImage(32, 24, colour),
                                 testing::SolidImage(16, 24, colour)})));
    return path;
  }

  platform::portable::PortableDeviceContexts gdi_;
  RecordingIcons icons_{gdi_};
  platform::ScopedService<platform::DeviceContexts> gdiService_{gdi_};
  platform::ScopedService<platform::Icons> iconsService_{icons_};
  platform::portable::PortableCodePages pages_;
  platform::ScopedService<platform::CodePages> pagesService_{pages_};
  FrmMain form_;
  MainWindowScope scope_{form_};
  std::filesystem::path folder_;
};

// --- EnsureIconIndex ----------------------------------------------------------------------------

TEST(EnsureIconIndexTest, ALocationWithoutACommaGetsNumberZeroInPlace) {
  std::string location = "C:\\Icons\\happy.ico";
  EXPECT_EQ(EnsureIconIndex(location), "C:\\Icons\\happy.ico,0");
  EXPECT_EQ(location, "C:\\Icons\\happy.ico,0");
  std::string empty;
  EXPECT_EQ(EnsureIconIndex(empty), ",0");
}

TEST(EnsureIconIndexTest, ALocationWithACommaStaysAsItIs) {
  for (const char* text : {"shell32.dll,32", "shell32.dll,-3", "a,b,c", "x.ico,", ",",
                           "%SystemRoot%\\system32\\shell32.dll,4"}) {
    std::string location = text;
    EXPECT_EQ(EnsureIconIndex(location), text);
    EXPECT_EQ(location, text);
  }
}

// --- AddIconImage and StageIconImage ------------------------------------------------------------

TEST_F(IconSourcesTest, AddIconImageAsksForOneIconDrawsBothAtOneOneAndGivesTheHandlesBack) {
  const std::string file = Write("a.ico", 0x0000FF);
  std::int16_t flag = 0;
  AddIconImage(file, 0, flag);
  EXPECT_EQ(icons_.calls,
            (std::vector<std::string>{"ExtractIconExA(" + file + ",0,1)=2",
                                      "DrawIconEx(icon,1,1,0,0,0,0,3)",
                                      "DrawIconEx(icon,1,1,0,0,0,0,3)",
                                      "DrawIconEx(0,1,1,0,0,0,0,3)", "DestroyIcon(icon)",
                                      "DestroyIcon(icon)", "DestroyIcon(0)"}));
  // Small to sIcon, large to lIcon, nothing to mIcon.
  ASSERT_EQ(icons_.drawnOn.size(), 3u);
  EXPECT_EQ(icons_.drawnOn[0], form_.sIcon.hDC());
  EXPECT_EQ(icons_.drawnOn[1], form_.lIcon.hDC());
  EXPECT_EQ(icons_.drawnOn[2], form_.mIcon.hDC());
  EXPECT_EQ(icons_.real_.LiveIcons(), 0u);
  EXPECT_EQ(form_.ILicons.Count(), 0);
}

TEST_F(IconSourcesTest, AddIconImageFallsBackToIconZeroOfShell32WithoutLookingAtTheResult) {
  std::int16_t flag = 1;
  AddIconImage((folder_ / "none.ico").string(), 5, flag);
  ASSERT_GE(icons_.calls.size(), 2u);
  EXPECT_EQ(icons_.calls[0], "ExtractIconExA(" + (folder_ / "none.ico").string() + ",5,1)=-1");
  EXPECT_EQ(icons_.calls[1], "ExtractIconExA(Shell32.dll,0,1)=-1");
  EXPECT_EQ(icons_.calls[2], "DrawIconEx(0,1,1,0,0,0,0,3)");
  // Even without any icon the image is added, empty.
  ASSERT_EQ(form_.ILicons.Count(), 1);
  for (std::uint32_t pixel : form_.ILicons.Item(1).picture.bgra) ASSERT_EQ(pixel, 0xFFFFFFFFu);
}

TEST_F(IconSourcesTest, AnyNonZeroFlagAddsOneImageAndTheBoxesAreSwitchedBack) {
  const std::string file = Write("a.ico", 0x0000FF);
  for (std::int16_t flag : {std::int16_t{1}, std::int16_t{-1}, std::int16_t{2}, std::int16_t{0}}) {
    form_.sIcon.AutoRedraw(true);
    AddIconImage(file, 0, flag);
    EXPECT_FALSE(form_.sIcon.AutoRedraw());
    EXPECT_FALSE(form_.lIcon.AutoRedraw());
    EXPECT_FALSE(form_.mIcon.AutoRedraw());
  }
  EXPECT_EQ(form_.ILicons.Count(), 3);
  EXPECT_EQ(form_.ILicons.Item(3).key, "");
}

TEST_F(IconSourcesTest, StageIconImageHasNoFallbackAndDrawsLargeInMIcon) {
  EXPECT_EQ(StageIconImage("Shell32.dll", 3), 0);
  EXPECT_EQ(icons_.calls, (std::vector<std::string>{"ExtractIconExA(Shell32.dll,3,1)=-1"}));
  icons_.calls.clear();
  const std::string file = Write("a.ico", 0x00FF00);
  form_.ILicons.Add("", ui::Pixels{36, 36, std::vector<std::uint32_t>(36 * 36, 1u)});
  EXPECT_EQ(StageIconImage(file, -2), 2);
  EXPECT_EQ(icons_.calls,
            (std::vector<std::string>{"ExtractIconExA(" + file + ",-2,1)=2",
                                      "DrawIconEx(icon,1,1,0,0,0,0,3)",
                                      "DrawIconEx(icon,1,1,0,0,0,0,3)", "DestroyIcon(icon)",
                                      "DestroyIcon(icon)"}));
  ASSERT_EQ(icons_.drawnOn.size(), 2u);
  EXPECT_EQ(icons_.drawnOn[0], form_.sIcon.hDC());
  EXPECT_EQ(icons_.drawnOn[1], form_.mIcon.hDC());
  EXPECT_EQ(icons_.real_.LiveIcons(), 0u);
  EXPECT_EQ(form_.ILicons.Item(2).picture, form_.mIcon.Image());
}

// --- PickIcon -------------------------------------------------------------------------------------

TEST_F(IconSourcesTest, PickIconGivesTheChosenLocationAndBothBackByReference) {
  SetIconPickerOwner(0x00A1B2C3);
  icons_.real_.AnswerPicker(u"C:\\Icons\\moon.ico", 7);
  std::string path = "shell32.dll";
  std::int32_t number = 32;
  EXPECT_EQ(PickIcon(path, number), "C:\\Icons\\moon.ico,7");
  EXPECT_EQ(path, "C:\\Icons\\moon.ico");
  EXPECT_EQ(number, 7);
  const auto& call = icons_.real_.PickerCalls().at(0);
  EXPECT_EQ(call.owner, 0x00A1B2C3u);
  EXPECT_EQ(call.path, u"shell32.dll");
  EXPECT_EQ(call.size, 260u);
  EXPECT_EQ(call.index, 32);
}

TEST_F(IconSourcesTest, ACancelledPickerGivesNothingAndChangesNothing) {
  icons_.real_.CancelPicker();
  std::string path = "shell32.dll";
  std::int32_t number = 4;
  EXPECT_EQ(PickIcon(path, number), "");
  EXPECT_EQ(path, "shell32.dll");
  EXPECT_EQ(number, 4);
  EXPECT_EQ(icons_.real_.PickerCalls().size(), 1u);
}

TEST_F(IconSourcesTest, NegativeNumbersGoToThePickerAndComeBackAsTheyStand) {
  icons_.real_.AnswerPicker(u"moricons.dll", -104);
  std::string path = "moricons.dll";
  std::int32_t number = -3;
  EXPECT_EQ(PickIcon(path, number), "moricons.dll,-104");
  EXPECT_EQ(icons_.real_.PickerCalls().at(0).index, -3);
}

TEST_F(IconSourcesTest, APathOf260CharactersFillsTheBufferAndOneMoreFails) {
  std::string path(260, 'p');
  std::int32_t number = 0;
  EXPECT_EQ(PickIcon(path, number), "");
  EXPECT_EQ(icons_.real_.PickerCalls().at(0).path, std::u16string(260, u'p'));
  std::string longer(261, 'p');
  try {
    PickIcon(longer, number);
    FAIL() << "no failure";
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.Number(), FailureNumber::InvalidProcedureCall);
  }
  EXPECT_EQ(icons_.real_.PickerCalls().size(), 1u) << "the picker is not shown";
}

TEST_F(IconSourcesTest, PathsAreWidenedAndNarrowedInTheActiveCodePage) {
  icons_.real_.AnswerPicker(u"C:\\\u20AC\u00E9\u4E2D.ico", 1);
  std::string path = "C:\\\x80\xE9.ico";
  std::int32_t number = 0;
  EXPECT_EQ(PickIcon(path, number), "C:\\\x80\xE9?.ico,1");
  EXPECT_EQ(icons_.real_.PickerCalls().at(0).path, u"C:\\\u20AC\u00E9.ico");
}

// --- DrawShellIcon --------------------------------------------------------------------------------

TEST_F(IconSourcesTest, DrawShellIconAsksForEverythingAtOnceAndDrawsFromTheList) {
  icons_.listPaths = {"C:\\Data"};
  icons_.list = 0x5150;
  icons_.iconIndex = 42;
  form_.PicSmall.Picture(ui::Pixels{1, 1, {7u}});
  std::int16_t size = 16;
  DrawShellIcon("C:\\Data", form_.PicSmall, size);
  EXPECT_EQ(icons_.calls, (std::vector<std::string>{"SHGetFileInfoA(C:\\Data,0,352,0x6605)",
                                                    "ImageList_Draw(20816,42,0,0,1)"}));
  EXPECT_EQ(icons_.drawnOn.at(0), form_.PicSmall.hDC());
  EXPECT_EQ(form_.PicSmall.Width(), 240);
  EXPECT_EQ(form_.PicSmall.Height(), 240);
  EXPECT_EQ(form_.PicSmall.ScaleWidth, 240);
  EXPECT_EQ(form_.PicSmall.ScaleHeight, 240);
  EXPECT_TRUE(form_.PicSmall.Picture().Empty());
  EXPECT_TRUE(form_.PicSmall.AutoRedraw());

  icons_.calls.clear();
  size = 32;
  DrawShellIcon("C:\\Data", form_.PicLarge, size);
  EXPECT_EQ(icons_.calls.at(0), "SHGetFileInfoA(C:\\Data,0,352,0x6604)");
  EXPECT_EQ(form_.PicLarge.Width(), 480);
  size = 48;  // any size but 16 asks for the large icon
  DrawShellIcon("C:\\Data", form_.PicLarge, size);
  EXPECT_EQ(icons_.calls.at(2), "SHGetFileInfoA(C:\\Data,0,352,0x6604)");
  EXPECT_EQ(form_.PicLarge.Width(), 720);
  EXPECT_EQ(form_.PicLarge.ScaleHeight, 720);
}

TEST_F(IconSourcesTest, DrawShellIconWithoutAListTouchesNothing) {
  form_.PicLarge.Picture(ui::Pixels{1, 1, {7u}});
  std::int16_t size = 32;
  DrawShellIcon("C:\\Missing", form_.PicLarge, size);
  EXPECT_EQ(icons_.calls, (std::vector<std::string>{"SHGetFileInfoA(C:\\Missing,0,352,0x6604)"}));
  EXPECT_EQ(form_.PicLarge.Picture(), (ui::Pixels{1, 1, {7u}}));
  EXPECT_EQ(form_.PicLarge.Width(), 480);
  EXPECT_FALSE(form_.PicLarge.AutoRedraw());
}

TEST_F(IconSourcesTest, ASizeWhoseTwipsPassSixteenBitsIsAnOverflow) {
  icons_.listPaths = {"C:\\Data"};
  icons_.list = 0x5150;
  std::int16_t size = 2185;  // 32775 twips
  try {
    DrawShellIcon("C:\\Data", form_.PicLarge, size);
    FAIL() << "no failure";
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.Number(), FailureNumber::Overflow);
  }
  size = 2184;
  DrawShellIcon("C:\\Data", form_.PicLarge, size);
  EXPECT_EQ(form_.PicLarge.Width(), 32760);
}

// --- GetNodeImage, FindIconKey, GetSystemIconIndex, DrawFileIcon -----------------------------------

TEST_F(IconSourcesTest, GetNodeImageQueriesTheSmallIconAndDrawsItOnPi1Once) {
  icons_.listPaths = {"C:\\Data", "C:\\Other"};
  icons_.list = 0x5150;
  icons_.iconIndex = 3;
  icons_.iconFile = Write("folder.ico", 0x00C0FF);
  EXPECT_EQ(GetNodeImage("C:\\Data", kFalse), 1);
  EXPECT_EQ(icons_.calls,
            (std::vector<std::string>{"SHGetFileInfoA(C:\\Data,0,352,0x4001)",
                                      "ImageList_GetIconSize(20816)",
                                      "SHGetFileInfoA(C:\\Data,0,352,0x101)",
                                      "DrawIconEx(icon,0,0,16,16,0,0,3)", "DestroyIcon(icon)"}));
  EXPECT_EQ(icons_.drawnOn.at(0), form_.Pi1.hDC());
  EXPECT_EQ(gSmallIconWidth, 16);
  EXPECT_EQ(gSmallIconHeight, 16);
  EXPECT_EQ(gLargeIconWidth, 0);
  ASSERT_EQ(form_.Im16.Count(), 1);
  EXPECT_EQ(form_.Im16.Item(1).key, "Icon3");
  EXPECT_EQ(form_.Im16.Item(1).picture, form_.Pi1.Picture());
  EXPECT_EQ(form_.Pi1.Picture().bgra.at(0), 0xFF00C0FFu);
  EXPECT_EQ(icons_.real_.LiveIcons(), 0u);

  // Another path with the same system icon: found, nothing drawn.
  icons_.calls.clear();
  EXPECT_EQ(GetNodeImage("C:\\Other", kFalse), 1);
  EXPECT_EQ(icons_.calls, (std::vector<std::string>{"SHGetFileInfoA(C:\\Other,0,352,0x4001)",
                                                    "ImageList_GetIconSize(20816)"}));
  EXPECT_EQ(form_.Im16.Count(), 1);
}

TEST_F(IconSourcesTest, TheOpenFormIsAnotherSystemIconAndAnotherImage) {
  icons_.listPaths = {"C:\\Data"};
  icons_.list = 0x5150;
  icons_.iconIndex = 3;
  icons_.iconFile = Write("folder.ico", 0x00C0FF);
  ASSERT_EQ(GetNodeImage("C:\\Data", kFalse), 1);
  icons_.calls.clear();
  EXPECT_EQ(GetNodeImage("C:\\Data", kTrue), 2);
  EXPECT_EQ(icons_.calls.at(0), "SHGetFileInfoA(C:\\Data,0,352,0x4003)");
  EXPECT_EQ(icons_.calls.at(2), "SHGetFileInfoA(C:\\Data,0,352,0x103)");
  EXPECT_EQ(form_.Im16.Item(2).key, "Icon4");
  EXPECT_EQ(GetNodeImage("C:\\Data", kTrue), 2);
  EXPECT_EQ(form_.Im16.Count(), 2);
}

TEST_F(IconSourcesTest, WithoutASystemImageListEveryPathIsIconZero) {
  EXPECT_EQ(GetNodeImage("C:\\Nowhere", kFalse), 1);
  EXPECT_EQ(GetNodeImage("C:\\Elsewhere", kTrue), 1);
  ASSERT_EQ(form_.Im16.Count(), 1);
  EXPECT_EQ(form_.Im16.Item(1).key, "Icon0");
  // The sizes were never given, and nothing was drawn: an empty 16 by 16 picture.
  EXPECT_EQ(gSmallIconWidth, 0);
  EXPECT_EQ(form_.Im16.Item(1).picture.width, 16);
  for (std::uint32_t pixel : form_.Im16.Item(1).picture.bgra) ASSERT_EQ(pixel, 0xFFFFFFFFu);
}

TEST_F(IconSourcesTest, TheLargeIconFlagIsNeverSet) {
  EXPECT_EQ(gLargeIcons, kFalse);
  GetNodeImage("C:\\Nowhere", kFalse);
  EXPECT_EQ(gLargeIcons, kFalse);
}

TEST_F(IconSourcesTest, FindIconKeyInAnEmptyListFindsNothing) {
  std::int32_t number = 9;
  EXPECT_EQ(FindIconKey("Icon0", number), kFalse);
  EXPECT_EQ(number, 0);
}

TEST_F(IconSourcesTest, GetSystemIconIndexFillsWhatThePlatformGives) {
  icons_.listPaths = {"C:\\Data"};
  icons_.list = 0x5150;
  icons_.iconIndex = 11;
  icons_.listIconSize = 32;
  std::int32_t width = 0;
  std::int32_t height = 0;
  std::int32_t index = -1;
  GetSystemIconIndex("C:\\Data", width, height, 0, index);
  EXPECT_EQ(icons_.calls.at(0), "SHGetFileInfoA(C:\\Data,0,352,0x4000)");
  EXPECT_EQ(width, 32);
  EXPECT_EQ(height, 32);
  EXPECT_EQ(index, 11);
  EXPECT_EQ(gShellInfo.iIcon, 11);
  // Without a list the sizes stay, and the index is what the record holds.
  GetSystemIconIndex("C:\\Missing", width, height, 1, index);
  EXPECT_EQ(width, 32);
  EXPECT_EQ(index, 0);
}

TEST_F(IconSourcesTest, DrawFileIconDrawsAtTheStoredLargeSizeWithoutTheSmallBit) {
  icons_.listPaths = {"C:\\Data"};
  icons_.list = 0x5150;
  icons_.iconFile = Write("folder.ico", 0x00C0FF);
  gLargeIconWidth = 32;
  gLargeIconHeight = 30;
  gSmallIconWidth = 16;
  gSmallIconHeight = 16;
  form_.PicLarge.BackColor = 0x000000;
  DrawFileIcon("C:\\Data", 0, form_.PicLarge, kFalse);
  EXPECT_EQ(icons_.calls,
            (std::vector<std::string>{"SHGetFileInfoA(C:\\Data,0,352,0x100)",
                                      "DrawIconEx(icon,0,0,32,30,0,0,3)", "DestroyIcon(icon)"}));
  const ui::Pixels image = form_.PicLarge.Image();
  EXPECT_EQ(image.bgra.at(0), 0xFF00C0FFu);
  EXPECT_EQ(image.bgra.at(static_cast<std::size_t>(29 * image.width + 31)), 0xFF00C0FFu);
  EXPECT_EQ(image.bgra.at(static_cast<std::size_t>(30 * image.width)), 0xFF000000u);
  EXPECT_EQ(icons_.real_.LiveIcons(), 0u);
}

}  // namespace
}  // namespace quorvane
