// The portable code pages: the ANSI code page is the one the platform was made for, and each
// converts by its own table, not by Windows-1252's.
#include <gtest/gtest.h>

#include <string>

#include "platform/portable/PortableCodePages.h"

namespace quorvane::platform::portable {
namespace {

std::u16string Widened(PortableCodePages& pages, const std::string& text) {
  const auto length = static_cast<std::int32_t>(text.size());
  std::u16string wide(static_cast<std::size_t>(
                          pages.MultiByteToWideChar(codepage::kAnsi, 0, text.data(), length,
                                                    nullptr, 0)),
                      u'\0');
  pages.MultiByteToWideChar(codepage::kAnsi, 0, text.data(), length, wide.data(),
                            static_cast<std::int32_t>(wide.size()));
  return wide;
}

std::string Narrowed(PortableCodePages& pages, const std::u16string& wide) {
  const auto length = static_cast<std::int32_t>(wide.size());
  std::string text(static_cast<std::size_t>(pages.WideCharToMultiByte(
                       codepage::kAnsi, 0, wide.data(), length, nullptr, 0)),
                   '\0');
  pages.WideCharToMultiByte(codepage::kAnsi, 0, wide.data(), length, text.data(),
                            static_cast<std::int32_t>(text.size()));
  return text;
}

TEST(PortableCodePagesTest, Windows1252UnlessToldOther) {
  PortableCodePages pages;
  EXPECT_EQ(pages.GetACP(), 1252u);
  EXPECT_EQ(Widened(pages, "\xC0\x80\x8D"), u"\u00C0\u20AC\u008D");
  EXPECT_EQ(Narrowed(pages, u"\u00C0\u20AC\u008D\u0410"), "\xC0\x80\x8D?");
}

TEST(PortableCodePagesTest, TheSameBytesAreOtherCharactersInAnotherCodePage) {
  PortableCodePages cyrillic(1251);
  EXPECT_EQ(cyrillic.GetACP(), 1251u);
  EXPECT_EQ(Widened(cyrillic, "\xC0\xE0"), u"\u0410\u0430");
  EXPECT_EQ(Narrowed(cyrillic, u"\u0410\u0430\u00C0"), "\xC0\xE0?");
  PortableCodePages greek(1253);
  EXPECT_EQ(Widened(greek, "\xC1"), u"\u0391");
}

TEST(PortableCodePagesTest, TwoBytesMakeOneCharacterInADoubleByteCodePage) {
  PortableCodePages japanese(932);
  EXPECT_EQ(Widened(japanese, std::string("a\x82\xA0\x95\x5C\0", 6)),
            std::u16string(u"a\u3042\u8868\0", 4));
  EXPECT_EQ(Narrowed(japanese, u"\u3042\u8868"), "\x82\xA0\x95\x5C");
}

TEST(PortableCodePagesTest, TooLittleRoomOrAnUnknownCodePageGivesZero) {
  PortableCodePages pages;
  char16_t one[1] = {};
  EXPECT_EQ(pages.MultiByteToWideChar(codepage::kAnsi, 0, "ab", 2, one, 1), 0);
  EXPECT_EQ(pages.MultiByteToWideChar(99999, 0, "ab", 2, nullptr, 0), 0);
  EXPECT_EQ(pages.MultiByteToWideChar(codepage::kAnsi, 0, "ab", -1, nullptr, 0), 3);
}

}  // namespace
}  // namespace quorvane::platform::portable
