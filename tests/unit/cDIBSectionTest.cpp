// The bitmap class over the portable device contexts, clipboard, message boxes and clock.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "base/Failure.h"
#include "base/Random.h"
#include "base/Text.h"
#include "drawing/cDIBSection.h"
#include "platform/Service.h"
#include "platform/portable/PortableClipboard.h"
#include "platform/portable/PortableClock.h"
#include "platform/portable/PortableDeviceContexts.h"
#include "platform/portable/PortableMessageBoxes.h"

namespace quorvane {
namespace {

using platform::BitmapObject;
using platform::GdiHandle;
namespace gdi = platform::gdi;

class cDIBSectionTest : public ::testing::Test {
 protected:
  // Count of journal entries whose name is `name`.
  std::size_t Calls(const std::string& name) const {
    const auto names = gdi_.JournalNames();
    return static_cast<std::size_t>(std::count(names.begin(), names.end(), name));
  }
  bool Journalled(const std::string& call) const {
    const auto& journal = gdi_.Journal();
    return std::find(journal.begin(), journal.end(), call) != journal.end();
  }
  // Position of the first journal entry that is `call`, or the journal's size.
  std::size_t IndexOf(const std::string& call) const {
    const auto& journal = gdi_.Journal();
    return static_cast<std::size_t>(std::find(journal.begin(), journal.end(), call) -
                                    journal.begin());
  }
  static std::string H(GdiHandle handle) { return std::to_string(handle); }

  // Pixel x of buffer row `row` as B, G, R.
  static std::vector<int> Pixel(const cDIBSection& dib, int x, int row) {
    const std::uint8_t* p = dib.DIBSectionBitsPtr() +
                            static_cast<std::ptrdiff_t>(row) * dib.BytesPerScanLine() + x * 3;
    return {p[0], p[1], p[2]};
  }
  static void SetPixel(cDIBSection& dib, int x, int row, int b, int g, int r) {
    std::uint8_t* p = dib.DIBSectionBitsPtr() +
                      static_cast<std::ptrdiff_t>(row) * dib.BytesPerScanLine() + x * 3;
    p[0] = static_cast<std::uint8_t>(b);
    p[1] = static_cast<std::uint8_t>(g);
    p[2] = static_cast<std::uint8_t>(r);
  }
  // Every pixel byte gets a value of its own position.
  static void FillPattern(cDIBSection& dib) {
    for (int row = 0; row < dib.Height(); ++row) {
      for (int x = 0; x < dib.Width(); ++x) {
        SetPixel(dib, x, row, x * 10 + row, 100 + x, 200 + row);
      }
    }
  }
  static std::vector<std::uint8_t> Bytes(const cDIBSection& dib) {
    const auto size = static_cast<std::size_t>(dib.BytesPerScanLine()) *
                      static_cast<std::size_t>(dib.Height());
    return {dib.DIBSectionBitsPtr(), dib.DIBSectionBitsPtr() + size};
  }

  platform::portable::PortableDeviceContexts gdi_;
  platform::portable::PortableClipboard clipboard_{gdi_};
  platform::portable::PortableMessageBoxes boxes_;
  platform::portable::PortableClock clock_;
  platform::ScopedService<platform::DeviceContexts> gdiService_{gdi_};
  platform::ScopedService<platform::Clipboard> clipboardService_{clipboard_};
  platform::ScopedService<platform::MessageBoxes> boxesService_{boxes_};
  platform::ScopedService<platform::Clock> clockService_{clock_};
};

// --- sizes --------------------------------------------------------------------------------------

TEST_F(cDIBSectionTest, BytesPerScanLineRoundsThreeBytesAPixelUpToFour) {
  cDIBSection dib;
  const std::vector<std::pair<int, int>> cases = {{1, 4}, {2, 8}, {3, 12}, {4, 12},
                                                  {5, 16}, {7, 24}, {640, 1920}};
  for (const auto& [width, bytes] : cases) {
    ASSERT_EQ(dib.Create(width, 2), kTrue) << width;
    EXPECT_EQ(dib.BytesPerScanLine(), bytes) << width;
    BitmapObject object;
    ASSERT_NE(gdi_.GetObjectA(dib.hDib(), object), 0);
    EXPECT_EQ(object.bmWidthBytes, bytes) << "the platform agrees on the row length";
  }
}

TEST_F(cDIBSectionTest, AnEmptyObjectHasNothing) {
  cDIBSection dib;
  EXPECT_EQ(dib.hdc(), 0u);
  EXPECT_EQ(dib.hDib(), 0u);
  EXPECT_EQ(dib.DIBSectionBitsPtr(), nullptr);
  EXPECT_EQ(dib.Width(), 0);
  EXPECT_EQ(dib.Height(), 0);
  EXPECT_EQ(dib.BytesPerScanLine(), 0);
}

TEST_F(cDIBSectionTest, WidthsBeyondThirtyTwoBitArithmeticAreAnOverflow) {
  cDIBSection dib;
  // Width times 3 is beyond 32 bits.
  try {
    dib.Create(0x7FFFFFFF, 1);
    FAIL() << "no failure";
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.Number(), FailureNumber::Overflow);
  }
  // Width times 3 fits, plus 3 does not.
  EXPECT_THROW(dib.Create(715827882, 1), Failure);
  // The row length fits, times the height does not.
  EXPECT_THROW(dib.Create(100000, 100000), Failure);
  EXPECT_EQ(dib.hdc(), 0u);
  EXPECT_EQ(dib.hDib(), 0u);
  EXPECT_EQ(gdi_.LiveContexts(), 0u) << "the context made for it is gone";
  EXPECT_EQ(Calls("CreateDIBSection"), 0u) << "no bitmap was asked for";
}

TEST_F(cDIBSectionTest, NegativeWidthsClearTheTwoLowBitsOfTheirPattern) {
  cDIBSection dib;
  EXPECT_EQ(dib.Create(-1, 5), kFalse);
  EXPECT_EQ(dib.BytesPerScanLine(), 0);
  EXPECT_EQ(dib.Create(-2, 5), kFalse);
  EXPECT_EQ(dib.BytesPerScanLine(), -4);
}

// --- creating and clearing up ---------------------------------------------------------------------

TEST_F(cDIBSectionTest, CreateMakesABlackBitmapSelectedIntoAMemoryContext) {
  cDIBSection dib;
  ASSERT_EQ(dib.Create(5, 3), kTrue);
  const auto names = gdi_.JournalNames();
  EXPECT_NE(dib.hdc(), 0u);
  EXPECT_NE(dib.hDib(), 0u);
  ASSERT_NE(dib.DIBSectionBitsPtr(), nullptr);
  EXPECT_EQ(dib.Width(), 5);
  EXPECT_EQ(dib.Height(), 3);

  BitmapObject object;
  ASSERT_NE(gdi_.GetObjectA(dib.hDib(), object), 0);
  EXPECT_EQ(object.bmWidth, 5);
  EXPECT_EQ(object.bmHeight, 3);
  EXPECT_EQ(object.bmBitsPixel, 24);
  EXPECT_EQ(object.bmBits, dib.DIBSectionBitsPtr());
  for (std::uint8_t byte : Bytes(dib)) EXPECT_EQ(byte, 0);

  // In this order: a context like the screen's, the bitmap, and the bitmap selected.
  EXPECT_EQ(names, (std::vector<std::string>{"CreateCompatibleDC", "CreateDIBSection",
                                             "SelectObject"}));
  EXPECT_TRUE(Journalled("CreateCompatibleDC(0)=" + H(dib.hdc())));
  EXPECT_TRUE(Journalled("CreateDIBSection(" + H(dib.hdc()) + ",5,3,24,0,0,0)=" + H(dib.hDib())));
  EXPECT_TRUE(Journalled("SelectObject(" + H(dib.hdc()) + "," + H(dib.hDib()) + ")=" +
                         H(gdi_.StockBitmap())));
  // Selected already: a second context cannot take it.
  const GdiHandle other = gdi_.CreateCompatibleDC(0);
  EXPECT_EQ(gdi_.SelectObject(other, dib.hDib()), 0u);
  gdi_.DeleteDC(other);
}

TEST_F(cDIBSectionTest, CreateAgainFreesWhatTheObjectHeld) {
  cDIBSection dib;
  ASSERT_EQ(dib.Create(4, 4), kTrue);
  const GdiHandle firstDib = dib.hDib();
  ASSERT_EQ(dib.Create(8, 2), kTrue);
  EXPECT_NE(dib.hDib(), firstDib);
  EXPECT_EQ(gdi_.LiveContexts(), 1u);
  EXPECT_EQ(gdi_.LiveBitmaps(), 1u);
  EXPECT_EQ(dib.Width(), 8);
  EXPECT_EQ(dib.BytesPerScanLine(), 24);
}

TEST_F(cDIBSectionTest, AFailedBitmapDeletesTheContextAndGivesFalse) {
  cDIBSection dib;
  gdi_.FailNext("CreateDIBSection");
  EXPECT_EQ(dib.Create(6, 6), kFalse);
  EXPECT_EQ(dib.hdc(), 0u);
  EXPECT_EQ(dib.hDib(), 0u);
  EXPECT_EQ(dib.DIBSectionBitsPtr(), nullptr);
  EXPECT_EQ(gdi_.LiveContexts(), 0u);
  EXPECT_EQ(Calls("DeleteDC"), 1u);
  // The header keeps what was asked.
  EXPECT_EQ(dib.Width(), 6);
  EXPECT_EQ(dib.Height(), 6);
}

TEST_F(cDIBSectionTest, AFailedContextMakesNoBitmap) {
  cDIBSection dib;
  gdi_.FailNext("CreateCompatibleDC");
  EXPECT_EQ(dib.Create(6, 6), kFalse);
  EXPECT_EQ(dib.hdc(), 0u);
  EXPECT_EQ(dib.hDib(), 0u);
  EXPECT_EQ(Calls("CreateDIBSection"), 0u);
  EXPECT_EQ(gdi_.LiveBitmaps(), 0u);
}

TEST_F(cDIBSectionTest, SizesThePlatformRefusesGiveFalse) {
  cDIBSection dib;
  EXPECT_EQ(dib.Create(0, 5), kFalse);
  EXPECT_EQ(dib.Create(5, 0), kFalse);
  EXPECT_EQ(dib.Create(-3, 5), kFalse);
  gdi_.SetBitmapMemoryLimit(1000);
  EXPECT_EQ(dib.Create(100, 100), kFalse) << "no memory for it";
  EXPECT_EQ(gdi_.LiveContexts(), 0u);
  EXPECT_EQ(gdi_.LiveBitmaps(), 0u);
}

TEST_F(cDIBSectionTest, CreateDibFillsTheHeaderAndGivesTheBitmap) {
  cDIBSection dib;
  GdiHandle made = 0;
  EXPECT_EQ(dib.CreateDIB(0, 3, 2, made), kTrue);
  ASSERT_NE(made, 0u);
  EXPECT_EQ(dib.Width(), 3);
  EXPECT_EQ(dib.Height(), 2);
  EXPECT_EQ(dib.BytesPerScanLine(), 12);
  BitmapObject object;
  ASSERT_NE(gdi_.GetObjectA(made, object), 0);
  EXPECT_EQ(object.bmBits, dib.DIBSectionBitsPtr());
  EXPECT_EQ(dib.hDib(), 0u) << "the object's own bitmap is made only by Create";
  gdi_.DeleteObject(made);

  GdiHandle refused = 12345;
  EXPECT_EQ(dib.CreateDIB(0, 0, 2, refused), kFalse);
  EXPECT_EQ(refused, 0u);
}

TEST_F(cDIBSectionTest, ClearUpSelectsTheOldBitmapBackThenDeletesBoth) {
  cDIBSection dib;
  ASSERT_EQ(dib.Create(5, 5), kTrue);
  const GdiHandle dc = dib.hdc();
  const GdiHandle bitmap = dib.hDib();
  gdi_.ClearJournal();
  dib.ClearUp();
  EXPECT_EQ(gdi_.Journal(),
            (std::vector<std::string>{"SelectObject(" + H(dc) + "," + H(gdi_.StockBitmap()) +
                                          ")=" + H(bitmap),
                                      "DeleteObject(" + H(bitmap) + ")=1",
                                      "DeleteDC(" + H(dc) + ")=1"}));
  EXPECT_EQ(dib.hdc(), 0u);
  EXPECT_EQ(dib.hDib(), 0u);
  EXPECT_EQ(dib.DIBSectionBitsPtr(), nullptr);
  EXPECT_EQ(gdi_.LiveContexts(), 0u);
  EXPECT_EQ(gdi_.LiveBitmaps(), 0u);
  // The size stays as it was.
  EXPECT_EQ(dib.Width(), 5);
  // A second ClearUp has nothing to free.
  gdi_.ClearJournal();
  dib.ClearUp();
  EXPECT_TRUE(gdi_.Journal().empty());
}

TEST_F(cDIBSectionTest, TheObjectsEndFreesWhatItHolds) {
  {
    cDIBSection dib;
    ASSERT_EQ(dib.Create(16, 16), kTrue);
    EXPECT_EQ(gdi_.LiveContexts(), 1u);
  }
  EXPECT_EQ(gdi_.LiveContexts(), 0u);
  EXPECT_EQ(gdi_.LiveBitmaps(), 0u);
}

// --- copying in and out -------------------------------------------------------------------------

TEST_F(cDIBSectionTest, RowZeroOfTheBytesIsTheBottomRowOfThePicture) {
  cDIBSection dib;
  ASSERT_EQ(dib.Create(3, 4), kTrue);
  SetPixel(dib, 0, 0, 0x11, 0x22, 0x33);  // bottom left
  SetPixel(dib, 2, 3, 0x44, 0x55, 0x66);  // top right
  const GdiHandle screen = gdi_.GetDC(gdi_.GetDesktopWindow());
  dib.PaintPicture(screen, 10, 20);
  EXPECT_EQ(gdi_.ScreenPixel(10, 23), 0x332211u);
  EXPECT_EQ(gdi_.ScreenPixel(12, 20), 0x665544u);
  EXPECT_EQ(gdi_.ScreenPixel(13, 20), 0u) << "nothing beyond the width";
  EXPECT_TRUE(Journalled("BitBlt(" + H(screen) + ",10,20,3,4," + H(dib.hdc()) + ",0,0," +
                         std::to_string(gdi::kSrcCopy) + ")=1"));
  gdi_.ReleaseDC(gdi_.GetDesktopWindow(), screen);
}

TEST_F(cDIBSectionTest, LoadPictureBltCopiesToTheOriginWithTheObjectsOwnSizeForNegatives) {
  cDIBSection source;
  ASSERT_EQ(source.Create(4, 4), kTrue);
  FillPattern(source);
  cDIBSection target;
  ASSERT_EQ(target.Create(3, 3), kTrue);
  target.LoadPictureBlt(source.hdc(), 1, 0);
  // Source device rows 0 to 2 are its buffer rows 3 to 1; the target's are its rows 2 to 0.
  for (int row = 0; row < 3; ++row) {
    for (int x = 0; x < 3; ++x) {
      EXPECT_EQ(Pixel(target, x, row), Pixel(source, x + 1, row + 1)) << x << "," << row;
    }
  }
  EXPECT_TRUE(Journalled("BitBlt(" + H(target.hdc()) + ",0,0,3,3," + H(source.hdc()) + ",1,0," +
                         std::to_string(gdi::kSrcCopy) + ")=1"));

  // A size of its own is kept.
  cDIBSection part;
  ASSERT_EQ(part.Create(3, 3), kTrue);
  part.LoadPictureBlt(source.hdc(), 0, 0, 2, -1, gdi::kSrcCopy);
  EXPECT_EQ(Pixel(part, 1, 2), Pixel(source, 1, 3));
  EXPECT_EQ(Pixel(part, 2, 2), (std::vector<int>{0, 0, 0}));
}

TEST_F(cDIBSectionTest, TheRasterOperationIsPassedOn) {
  cDIBSection source;
  ASSERT_EQ(source.Create(2, 2), kTrue);
  FillPattern(source);
  cDIBSection target;
  ASSERT_EQ(target.Create(2, 2), kTrue);
  target.LoadPictureBlt(source.hdc(), 0, 0, -1, -1, gdi::kNotSrcCopy);
  for (int row = 0; row < 2; ++row) {
    for (int x = 0; x < 2; ++x) {
      const auto expected = Pixel(source, x, row);
      EXPECT_EQ(Pixel(target, x, row),
                (std::vector<int>{255 - expected[0], 255 - expected[1], 255 - expected[2]}));
    }
  }
}

TEST_F(cDIBSectionTest, PaintPictureTakesDestinationAndSourceOffsets) {
  cDIBSection source;
  ASSERT_EQ(source.Create(4, 2), kTrue);
  FillPattern(source);
  cDIBSection target;
  ASSERT_EQ(target.Create(5, 2), kTrue);
  source.PaintPicture(target.hdc(), 2, 0, -1, 1, 1, 1);
  // The top row of the target, from x = 2, gets the source's bottom row from x = 1.
  EXPECT_EQ(Pixel(target, 2, 1), Pixel(source, 1, 0));
  EXPECT_EQ(Pixel(target, 4, 1), Pixel(source, 3, 0));
  EXPECT_EQ(Pixel(target, 1, 1), (std::vector<int>{0, 0, 0}));
  EXPECT_EQ(Pixel(target, 2, 0), (std::vector<int>{0, 0, 0})) << "one row only";
  EXPECT_TRUE(Journalled("BitBlt(" + H(target.hdc()) + ",2,0,4,1," + H(source.hdc()) + ",1,1," +
                         std::to_string(gdi::kSrcCopy) + ")=1"));
}

TEST_F(cDIBSectionTest, BlitsOfAnEmptyObjectFailQuietly) {
  cDIBSection empty;
  cDIBSection target;
  ASSERT_EQ(target.Create(2, 2), kTrue);
  empty.PaintPicture(target.hdc());
  target.LoadPictureBlt(empty.hdc());
  for (std::uint8_t byte : Bytes(target)) EXPECT_EQ(byte, 0);
}

// --- pictures -----------------------------------------------------------------------------------

struct PictureObject {
  GdiHandle handle;
  GdiHandle Handle() const { return handle; }
};

TEST_F(cDIBSectionTest, CreateFromPictureTakesThePicturesSizeAndPixels) {
  cDIBSection drawn;
  ASSERT_EQ(drawn.Create(5, 3), kTrue);
  FillPattern(drawn);
  // A device bitmap of the screen's format holding the picture.
  const GdiHandle screen = gdi_.GetDC(0);
  const GdiHandle picture = gdi_.CreateCompatibleBitmap(screen, 5, 3);
  gdi_.ReleaseDC(0, screen);
  const GdiHandle painter = gdi_.CreateCompatibleDC(0);
  const GdiHandle previous = gdi_.SelectObject(painter, picture);
  drawn.PaintPicture(painter);
  gdi_.SelectObject(painter, previous);
  gdi_.DeleteDC(painter);
  const std::size_t contextsBefore = gdi_.LiveContexts();

  cDIBSection dib;
  dib.CreateFromPicture(PictureObject{picture});
  EXPECT_EQ(dib.Width(), 5);
  EXPECT_EQ(dib.Height(), 3);
  EXPECT_EQ(Bytes(dib), Bytes(drawn));
  EXPECT_EQ(gdi_.LiveContexts(), contextsBefore + 1) << "only the object's own context stays";
  // The picture was selected out again.
  const GdiHandle again = gdi_.CreateCompatibleDC(0);
  EXPECT_NE(gdi_.SelectObject(again, picture), 0u);
  gdi_.DeleteDC(again);
  gdi_.DeleteObject(picture);
}

TEST_F(cDIBSectionTest, CreateFromPictureOfSomethingElseLeavesTheObjectEmpty) {
  cDIBSection dib;
  ASSERT_EQ(dib.Create(2, 2), kTrue);
  const GdiHandle context = gdi_.CreateCompatibleDC(0);
  dib.CreateFromPicture(context);
  EXPECT_EQ(dib.hdc(), 0u);
  EXPECT_EQ(dib.hDib(), 0u);
  dib.CreateFromPicture(GdiHandle{0});
  EXPECT_EQ(dib.hdc(), 0u);
  gdi_.DeleteDC(context);
  EXPECT_EQ(gdi_.LiveContexts(), 0u);
}

// --- the clipboard ------------------------------------------------------------------------------

TEST_F(cDIBSectionTest, CopyToClipboardPutsADeviceBitmapOfThePictureOnIt) {
  cDIBSection dib;
  ASSERT_EQ(dib.Create(4, 3), kTrue);
  FillPattern(dib);
  gdi_.ClearJournal();
  EXPECT_EQ(dib.CopyToClipboard(kFalse), kTrue);
  EXPECT_FALSE(clipboard_.IsOpen());
  EXPECT_TRUE(boxes_.Boxes().empty());

  ASSERT_NE(clipboard_.OpenClipboard(0), 0);
  const GdiHandle copied = clipboard_.GetClipboardData(platform::clipboard::kBitmap);
  clipboard_.CloseClipboard();
  ASSERT_NE(copied, 0u);
  BitmapObject object;
  ASSERT_NE(gdi_.GetObjectA(copied, object), 0);
  EXPECT_EQ(object.bmWidth, 4);
  EXPECT_EQ(object.bmHeight, 3);
  EXPECT_EQ(object.bmBitsPixel, 32) << "in the screen's format";
  EXPECT_EQ(object.bmBits, nullptr);

  // Read back through a context: the same picture.
  cDIBSection back;
  ASSERT_EQ(back.Create(4, 3), kTrue);
  const GdiHandle reader = gdi_.CreateCompatibleDC(0);
  const GdiHandle previous = gdi_.SelectObject(reader, copied);
  back.LoadPictureBlt(reader);
  gdi_.SelectObject(reader, previous);
  gdi_.DeleteDC(reader);
  EXPECT_EQ(Bytes(back), Bytes(dib));
}

TEST_F(cDIBSectionTest, CopyToClipboardDeletesTheDesktopsContextInsteadOfReleasingIt) {
  cDIBSection dib;
  ASSERT_EQ(dib.Create(2, 2), kTrue);
  gdi_.ClearJournal();
  ASSERT_EQ(dib.CopyToClipboard(kFalse), kTrue);
  const auto names = gdi_.JournalNames();
  EXPECT_EQ(names, (std::vector<std::string>{"GetDesktopWindow", "GetDC", "CreateCompatibleDC",
                                             "CreateCompatibleBitmap", "SelectObject", "BitBlt",
                                             "SelectObject", "DeleteDC", "DeleteDC"}));
  // The desktop's context is the one GetDC gave, and DeleteDC takes it.
  const std::string& getDc = gdi_.Journal()[1];
  const std::string desktopDc = getDc.substr(getDc.find('=') + 1);
  EXPECT_EQ(gdi_.Journal().back(), "DeleteDC(" + desktopDc + ")=1");
  EXPECT_EQ(Calls("ReleaseDC"), 0u);
  EXPECT_EQ(gdi_.LiveContexts(), 1u) << "only the object's own";
  EXPECT_EQ(gdi_.LiveBitmaps(), 2u) << "the object's and the clipboard's";
  // Emptying the clipboard frees the copy.
  clipboard_.OpenClipboard(0);
  clipboard_.EmptyClipboard();
  clipboard_.CloseClipboard();
  EXPECT_EQ(gdi_.LiveBitmaps(), 1u);
}

TEST_F(cDIBSectionTest, AskingForTheIndependentFormShowsInternalErrorAndGivesFalse) {
  cDIBSection dib;
  ASSERT_EQ(dib.Create(2, 2), kTrue);
  gdi_.ClearJournal();
  EXPECT_EQ(dib.CopyToClipboard(kTrue), kFalse);
  ASSERT_EQ(boxes_.Boxes().size(), 1u);
  EXPECT_EQ(boxes_.Boxes()[0].prompt, "Internal Error!");
  EXPECT_EQ(boxes_.Boxes()[0].buttons, platform::msgbox::kOkOnly);
  EXPECT_EQ(boxes_.Boxes()[0].title, "") << "the application's title";
  EXPECT_EQ(clipboard_.IsClipboardFormatAvailable(platform::clipboard::kBitmap), 0);
  EXPECT_EQ(Calls("CreateCompatibleBitmap"), 0u);
  EXPECT_EQ(Calls("DeleteDC"), 2u) << "both temporary contexts are still freed";
  EXPECT_EQ(gdi_.LiveContexts(), 1u);
  // Any non-zero boolean asks for it.
  EXPECT_EQ(dib.CopyToClipboard(1), kFalse);
  EXPECT_EQ(boxes_.Boxes().size(), 2u);
}

TEST_F(cDIBSectionTest, CopyToClipboardGivesFalseWithoutTheDesktopsContext) {
  cDIBSection dib;
  ASSERT_EQ(dib.Create(2, 2), kTrue);
  gdi_.ClearJournal();
  gdi_.FailNext("GetDC");
  EXPECT_EQ(dib.CopyToClipboard(kFalse), kFalse);
  EXPECT_EQ(gdi_.JournalNames(), (std::vector<std::string>{"GetDesktopWindow", "GetDC"}));

  gdi_.ClearJournal();
  gdi_.FailNext("CreateCompatibleDC");
  EXPECT_EQ(dib.CopyToClipboard(kFalse), kFalse);
  EXPECT_EQ(gdi_.JournalNames(), (std::vector<std::string>{"GetDesktopWindow", "GetDC",
                                                           "CreateCompatibleDC", "DeleteDC"}));
  EXPECT_EQ(gdi_.LiveContexts(), 1u);
  EXPECT_EQ(clipboard_.IsClipboardFormatAvailable(platform::clipboard::kBitmap), 0);
}

TEST_F(cDIBSectionTest, CopyToClipboardGivesFalseWhenTheClipboardTakesNothing) {
  cDIBSection dib;
  ASSERT_EQ(dib.Create(2, 2), kTrue);
  // Open elsewhere: this process cannot open it, but its calls still go through as the
  // platform takes them; here, one that is refused.
  struct RefusingClipboard final : platform::Clipboard {
    std::int32_t OpenClipboard(GdiHandle) override { return 0; }
    std::int32_t EmptyClipboard() override { return 0; }
    GdiHandle SetClipboardData(std::uint32_t, GdiHandle) override { return 0; }
    GdiHandle GetClipboardData(std::uint32_t) override { return 0; }
    std::int32_t IsClipboardFormatAvailable(std::uint32_t) override { return 0; }
    std::int32_t CloseClipboard() override { return 0; }
  } refusing;
  platform::ScopedService<platform::Clipboard> scoped(refusing);
  EXPECT_EQ(dib.CopyToClipboard(kFalse), kFalse);
  EXPECT_EQ(gdi_.LiveContexts(), 1u);
}

// --- noise --------------------------------------------------------------------------------------

TEST_F(cDIBSectionTest, GreyNoiseIsOneDrawAPixelRowByRowSeededFromTheTimeOfDay) {
  cDIBSection dib;
  ASSERT_EQ(dib.Create(5, 3), kTrue);
  // Padding bytes are not pixels and stay as they are.
  for (int row = 0; row < 3; ++row) {
    dib.DIBSectionBitsPtr()[row * 16 + 15] = 0xAB;
  }
  clock_.Stop(45296.25);
  dib.RandomiseBits(kTrue);

  random::Randomize(45296.25);
  for (int row = 0; row < 3; ++row) {
    for (int x = 0; x < 5; ++x) {
      const auto grey = static_cast<int>(text::RoundHalfEven(random::Rnd() * 255.0f));
      EXPECT_EQ(Pixel(dib, x, row), (std::vector<int>{grey, grey, grey})) << x << "," << row;
    }
    EXPECT_EQ(dib.DIBSectionBitsPtr()[row * 16 + 15], 0xAB);
  }
}

TEST_F(cDIBSectionTest, ColourNoiseGoesColumnByColumnWithBlueAlwaysZero) {
  cDIBSection dib;
  ASSERT_EQ(dib.Create(3, 4), kTrue);
  std::fill(dib.DIBSectionBitsPtr(), dib.DIBSectionBitsPtr() + 48, std::uint8_t{0x5A});
  clock_.Stop(600.5);
  dib.RandomiseBits(kFalse);

  random::Randomize(600.5);
  for (int x = 0; x < 3; ++x) {
    for (int row = 0; row < 4; ++row) {
      const auto green = static_cast<int>(text::RoundHalfEven(random::Rnd() * 255.0f));
      const auto red = static_cast<int>(text::RoundHalfEven(random::Rnd() * 255.0f));
      EXPECT_EQ(Pixel(dib, x, row), (std::vector<int>{0, green, red})) << x << "," << row;
    }
  }
  for (int row = 0; row < 4; ++row) {
    EXPECT_EQ(dib.DIBSectionBitsPtr()[row * 12 + 9], 0x5A) << "padding untouched";
  }
}

TEST_F(cDIBSectionTest, NoiseSpreadsOverTheWholeRangeAndFollowsTheClock) {
  cDIBSection dib;
  ASSERT_EQ(dib.Create(64, 64), kTrue);
  clock_.Stop(1000.0);
  dib.RandomiseBits(kFalse);
  const auto first = Bytes(dib);
  int low = 255;
  int high = 0;
  long sum = 0;
  for (int row = 0; row < 64; ++row) {
    for (int x = 0; x < 64; ++x) {
      const auto pixel = Pixel(dib, x, row);
      EXPECT_EQ(pixel[0], 0);
      low = std::min({low, pixel[1], pixel[2]});
      high = std::max({high, pixel[1], pixel[2]});
      sum += pixel[1] + pixel[2];
    }
  }
  EXPECT_LE(low, 2);
  EXPECT_GE(high, 253);
  const double mean = static_cast<double>(sum) / (64.0 * 64.0 * 2.0);
  EXPECT_NEAR(mean, 127.5, 6.0);

  dib.RandomiseBits(kFalse);
  EXPECT_EQ(Bytes(dib), first) << "the same time of day, the same noise";
  clock_.Stop(1001.0);
  dib.RandomiseBits(kFalse);
  EXPECT_NE(Bytes(dib), first);
}

TEST_F(cDIBSectionTest, NoiseOnAnObjectWithoutABitmapFails) {
  cDIBSection never;
  try {
    never.RandomiseBits(kTrue);
    FAIL() << "no failure";
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.Number(), FailureNumber::SubscriptOutOfRange);
  }
  cDIBSection cleared;
  ASSERT_EQ(cleared.Create(4, 4), kTrue);
  cleared.ClearUp();
  EXPECT_THROW(cleared.RandomiseBits(kFalse), Failure);
}

// --- resampling ---------------------------------------------------------------------------------

TEST_F(cDIBSectionTest, ResampleToTheSameSizeIsAnExactCopy) {
  cDIBSection source;
  ASSERT_EQ(source.Create(7, 5), kTrue);
  FillPattern(source);
  const auto copy = source.Resample(5, 7);
  ASSERT_NE(copy, nullptr);
  EXPECT_NE(copy->hdc(), source.hdc());
  EXPECT_NE(copy->DIBSectionBitsPtr(), source.DIBSectionBitsPtr());
  EXPECT_EQ(Bytes(*copy), Bytes(source));
  EXPECT_EQ(Calls("BitBlt"), 1u) << "copied by a blit, not resampled";
}

TEST_F(cDIBSectionTest, ResampleTakesTheHeightFirst) {
  cDIBSection source;
  ASSERT_EQ(source.Create(4, 4), kTrue);
  const auto resampled = source.Resample(3, 9);
  ASSERT_NE(resampled, nullptr);
  EXPECT_EQ(resampled->Width(), 9);
  EXPECT_EQ(resampled->Height(), 3);
}

TEST_F(cDIBSectionTest, ResamplingBlendsAcrossThenDownRoundingHalvesToEven) {
  cDIBSection source;
  ASSERT_EQ(source.Create(2, 2), kTrue);
  // Blue: rows 0 and 1 are (0, 100) and (200, 40). Green: (0, 2) in both rows. Red: (0, 2) and
  // (0, 4), where rounding each row before blending down changes the result.
  SetPixel(source, 0, 0, 0, 0, 0);
  SetPixel(source, 1, 0, 100, 2, 2);
  SetPixel(source, 0, 1, 200, 0, 0);
  SetPixel(source, 1, 1, 40, 2, 4);

  const auto target = source.Resample(4, 4);
  ASSERT_NE(target, nullptr);
  // Both scales are 1/4: weights 0, 0.25, 0.5 and 0.75 from pixel 0 and row 0.
  const int blue[4][4] = {{0, 25, 50, 75}, {50, 59, 68, 76}, {100, 92, 85, 78},
                          {150, 126, 102, 79}};
  const int green[4] = {0, 0, 1, 2};
  const int red[4][4] = {{0, 0, 1, 2}, {0, 0, 1, 2}, {0, 0, 2, 2}, {0, 1, 2, 3}};
  for (int row = 0; row < 4; ++row) {
    for (int x = 0; x < 4; ++x) {
      EXPECT_EQ(Pixel(*target, x, row), (std::vector<int>{blue[row][x], green[x], red[row][x]}))
          << x << "," << row;
    }
  }
}

// A scale of 1/6 is no power of two: the scale stored in single precision and the blend done in
// single precision give 13 at the last column, where double precision would give 12.
TEST_F(cDIBSectionTest, ResamplingWorksInSinglePrecision) {
  cDIBSection source;
  ASSERT_EQ(source.Create(2, 2), kTrue);
  for (int row = 0; row < 2; ++row) {
    SetPixel(source, 0, row, 0, 0, 0);
    SetPixel(source, 1, row, 15, 0, 3);
  }
  const auto target = source.Resample(2, 6);
  ASSERT_NE(target, nullptr);
  ASSERT_EQ(target->Width(), 6);
  ASSERT_EQ(target->Height(), 2);
  const int blue[6] = {0, 2, 5, 8, 10, 13};
  const int red[6] = {0, 0, 1, 2, 2, 2};
  for (int row = 0; row < 2; ++row) {
    for (int x = 0; x < 6; ++x) {
      EXPECT_EQ(Pixel(*target, x, row), (std::vector<int>{blue[x], 0, red[x]})) << x << "," << row;
    }
  }
}

TEST_F(cDIBSectionTest, ShrinkingByWholeStepsPicksSourcePixels) {
  cDIBSection source;
  ASSERT_EQ(source.Create(5, 5), kTrue);
  FillPattern(source);
  // Scales of (5 - 1) / 2 = 2: pixels 0 and 2 of rows 0 and 2, with no weight on neighbours.
  const auto target = source.Resample(2, 2);
  ASSERT_NE(target, nullptr);
  for (int row = 0; row < 2; ++row) {
    for (int x = 0; x < 2; ++x) {
      EXPECT_EQ(Pixel(*target, x, row), Pixel(source, x * 2, row * 2));
    }
  }
}

TEST_F(cDIBSectionTest, APureColourStaysThatColour) {
  cDIBSection source;
  ASSERT_EQ(source.Create(7, 5), kTrue);
  for (int row = 0; row < 5; ++row) {
    for (int x = 0; x < 7; ++x) SetPixel(source, x, row, 10, 200, 77);
  }
  for (const auto& [height, width] : std::vector<std::pair<int, int>>{{11, 13}, {2, 3}, {5, 1},
                                                                      {100, 3}}) {
    const auto target = source.Resample(height, width);
    ASSERT_NE(target, nullptr);
    for (int row = 0; row < height; ++row) {
      for (int x = 0; x < width; ++x) {
        EXPECT_EQ(Pixel(*target, x, row), (std::vector<int>{10, 200, 77}));
      }
    }
  }
}

TEST_F(cDIBSectionTest, ResampleGivesNoneWhenTheNewBitmapCannotBeMade) {
  cDIBSection source;
  ASSERT_EQ(source.Create(4, 4), kTrue);
  EXPECT_EQ(source.Resample(0, 4), nullptr);
  EXPECT_EQ(source.Resample(4, -1), nullptr);
  gdi_.FailNext("CreateDIBSection");
  EXPECT_EQ(source.Resample(8, 8), nullptr);
  EXPECT_EQ(gdi_.LiveContexts(), 1u);
}

TEST_F(cDIBSectionTest, SourcesSmallerThanTwoByTwoFailInsteadOfReadingBeyondThePicture) {
  for (const auto& [width, height] : std::vector<std::pair<int, int>>{{1, 1}, {1, 5}, {5, 1}}) {
    cDIBSection source;
    ASSERT_EQ(source.Create(width, height), kTrue);
    try {
      source.Resample(3, 3);
      FAIL() << width << "x" << height;
    } catch (const Failure& failure) {
      EXPECT_EQ(failure.Number(), FailureNumber::SubscriptOutOfRange);
    }
  }
  EXPECT_EQ(gdi_.LiveContexts(), 0u) << "the new object went with the failure";
}

TEST_F(cDIBSectionTest, ResampleOfAnObjectWithoutABitmapFails) {
  cDIBSection never;
  EXPECT_THROW(never.Resample(4, 4), Failure);
  EXPECT_EQ(gdi_.LiveContexts(), 0u);
}

}  // namespace
}  // namespace quorvane
