// Text in the system's ANSI code page and the platform's wide characters: the conversions of the
// code pages port, and the icon picker's buffer, widened and narrowed by whatever code page the
// system has. The Windows build runs these under Wine in more than one code page (the locale
// decides it); QUORVANE_EXPECT_ACP then names the code page the run must have.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <string>

#include "icons/modextracticon.h"
#include "platform/CodePages.h"
#include "platform/Icons.h"
#include "platform/Service.h"

namespace quorvane {
namespace {

using platform::codepage::kAnsi;

// Text outside ASCII in one code page: its bytes, and the characters they stand for.
struct Sample {
  std::uint32_t codePage;
  std::string bytes;
  std::u16string units;
};

const Sample kSamples[] = {
    // "été €" and a byte the code page leaves free, which stands for the character of its
    // number.
    {1252, "\xE9t\xE9 \x80\x81", u"\u00E9t\u00E9 \u20AC\u0081"},
    // "Привет"
    {1251, "\xCF\xF0\xE8\xE2\xE5\xF2", u"\u041F\u0440\u0438\u0432\u0435\u0442"},
    // "Αθήνα"
    {1253, "\xC1\xE8\xDE\xED\xE1", u"\u0391\u03B8\u03AE\u03BD\u03B1"},
    // "あ表": two bytes a character, the second byte of the second one a backslash.
    {932, "\x82\xA0\x95\x5C", u"\u3042\u8868"},
};

const Sample* SampleOf(std::uint32_t codePage) {
  for (const Sample& sample : kSamples) {
    if (sample.codePage == codePage) return &sample;
  }
  return nullptr;
}

platform::CodePages& Pages() { return platform::Use<platform::CodePages>(); }

std::u16string Widened(const std::string& text) {
  const auto length = static_cast<std::int32_t>(text.size());
  const std::int32_t needed = Pages().MultiByteToWideChar(kAnsi, 0, text.data(), length, nullptr, 0);
  std::u16string wide(static_cast<std::size_t>(std::max(needed, 0)), u'\0');
  const std::int32_t written =
      Pages().MultiByteToWideChar(kAnsi, 0, text.data(), length, wide.data(), needed);
  EXPECT_EQ(written, needed);
  return wide;
}

std::string Narrowed(const std::u16string& wide) {
  const auto length = static_cast<std::int32_t>(wide.size());
  const std::int32_t needed =
      Pages().WideCharToMultiByte(kAnsi, 0, wide.data(), length, nullptr, 0);
  std::string text(static_cast<std::size_t>(std::max(needed, 0)), '\0');
  const std::int32_t written =
      Pages().WideCharToMultiByte(kAnsi, 0, wide.data(), length, text.data(), needed);
  EXPECT_EQ(written, needed);
  return text;
}

TEST(CodePagesConformance, TheAnsiCodePageIsOneWithTextToTry) {
  const std::uint32_t page = Pages().GetACP();
  if (const char* expected = std::getenv("QUORVANE_EXPECT_ACP")) {
    EXPECT_EQ(page, static_cast<std::uint32_t>(std::strtoul(expected, nullptr, 10)))
        << "the run was to have that code page (Wine takes it from LC_ALL)";
  }
  EXPECT_NE(SampleOf(page), nullptr) << "no text to try for code page " << page;
}

TEST(CodePagesConformance, TextOfTheAnsiCodePageWidensAndNarrowsBack) {
  const Sample* sample = SampleOf(Pages().GetACP());
  ASSERT_NE(sample, nullptr);
  // A NUL inside the length is a character like the others.
  const std::string bytes = "C:\\" + sample->bytes + std::string("\0x", 2);
  const std::u16string units = u"C:\\" + sample->units + std::u16string(u"\0x", 2);
  EXPECT_EQ(Widened(bytes), units);
  EXPECT_EQ(Narrowed(units), bytes);
}

TEST(CodePagesConformance, AWholeStringCountsItsNul) {
  const Sample* sample = SampleOf(Pages().GetACP());
  ASSERT_NE(sample, nullptr);
  EXPECT_EQ(Pages().MultiByteToWideChar(kAnsi, 0, sample->bytes.c_str(), -1, nullptr, 0),
            static_cast<std::int32_t>(sample->units.size()) + 1);
  EXPECT_EQ(Pages().WideCharToMultiByte(kAnsi, 0, sample->units.c_str(), -1, nullptr, 0),
            static_cast<std::int32_t>(sample->bytes.size()) + 1);
}

TEST(CodePagesConformance, ACharacterTheCodePageLacksNarrowsToAQuestionMark) {
  // A Thai letter, in none of the code pages tried.
  EXPECT_EQ(Narrowed(u"a\u0E01b"), "a?b");
}

TEST(CodePagesConformance, TooLittleRoomWritesNothing) {
  const Sample* sample = SampleOf(Pages().GetACP());
  ASSERT_NE(sample, nullptr);
  std::u16string wide(sample->units.size() - 1, u'-');
  EXPECT_EQ(Pages().MultiByteToWideChar(kAnsi, 0, sample->bytes.data(),
                                        static_cast<std::int32_t>(sample->bytes.size()),
                                        wide.data(), static_cast<std::int32_t>(wide.size())),
            0);
}

// The picker: it sees the path as the system's code page reads, and what it chooses comes back
// in that code page. Everything else goes to the build's own icons.
class PickerDouble final : public platform::Icons {
 public:
  explicit PickerDouble(platform::Icons& real) : real_(real) {}

  std::int32_t ExtractIconExA(const char* file, std::int32_t index, platform::GdiHandle* large,
                              platform::GdiHandle* small, std::uint32_t count) override {
    return real_.ExtractIconExA(file, index, large, small, count);
  }
  std::int32_t DrawIconEx(platform::GdiHandle dc, std::int32_t x, std::int32_t y,
                          platform::GdiHandle icon, std::int32_t width, std::int32_t height,
                          std::uint32_t step, platform::GdiHandle brush,
                          std::uint32_t flags) override {
    return real_.DrawIconEx(dc, x, y, icon, width, height, step, brush, flags);
  }
  std::int32_t DestroyIcon(platform::GdiHandle icon) override { return real_.DestroyIcon(icon); }
  std::uint32_t SHGetFileInfoA(const char* path, std::uint32_t attributes,
                               platform::ShFileInfo& info, std::uint32_t size,
                               std::uint32_t flags) override {
    return real_.SHGetFileInfoA(path, attributes, info, size, flags);
  }
  std::int32_t ImageList_Draw(platform::GdiHandle list, std::int32_t index,
                              platform::GdiHandle dc, std::int32_t x, std::int32_t y,
                              std::uint32_t flags) override {
    return real_.ImageList_Draw(list, index, dc, x, y, flags);
  }
  std::int32_t ImageList_GetIconSize(platform::GdiHandle list, std::int32_t& width,
                                     std::int32_t& height) override {
    return real_.ImageList_GetIconSize(list, width, height);
  }
  std::int32_t PickIconDlg(platform::GdiHandle /*owner*/, char16_t* path, std::uint32_t size,
                           std::int32_t& index) override {
    seen.assign(path, path + size);
    seenSize = size;
    std::fill(path, path + size, u'\0');
    std::copy(answer.begin(), answer.end(), path);
    index = 3;
    return 1;
  }

  std::u16string seen;
  std::uint32_t seenSize = 0;
  std::u16string answer;

 private:
  platform::Icons& real_;
};

TEST(CodePagesConformance, ThePickersPathGoesAndComesBackInTheAnsiCodePage) {
  const Sample* sample = SampleOf(Pages().GetACP());
  ASSERT_NE(sample, nullptr);
  PickerDouble picker(platform::Use<platform::Icons>());
  platform::ScopedService<platform::Icons> installed(picker);
  picker.answer = u"D:\\" + sample->units + u"\\other.dll";

  std::string path = "C:\\" + sample->bytes + "\\icons.dll";
  std::int32_t number = -7;
  const std::string location = PickIcon(path, number);

  ASSERT_EQ(picker.seenSize, 260u);
  ASSERT_EQ(picker.seen.size(), 260u);
  const std::u16string given = u"C:\\" + sample->units + u"\\icons.dll";
  EXPECT_EQ(picker.seen.substr(0, given.size()), given);
  EXPECT_EQ(picker.seen.find_first_not_of(u'\0', given.size()), std::u16string::npos)
      << "the rest of the buffer is NULs";
  EXPECT_EQ(path, "D:\\" + sample->bytes + "\\other.dll");
  EXPECT_EQ(number, 3);
  EXPECT_EQ(location, "D:\\" + sample->bytes + "\\other.dll,3");
}

}  // namespace
}  // namespace quorvane
