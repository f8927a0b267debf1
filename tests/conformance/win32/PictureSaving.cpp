// A save that cannot take the old file's place fails without touching it: while another program
// holds WP.bmp open without letting it be replaced, the old bytes stay as they were and nothing
// of the new file is left beside them.
#include <windows.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "Support.h"
#include "base/Failure.h"
#include "platform/win32/Win32Pictures.h"

namespace quorvane::testing {
namespace {

std::string ReadAll(const std::string& path) {
  HANDLE h = ::CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                           nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (h == INVALID_HANDLE_VALUE) return {};
  std::string out(1 << 16, '\0');
  DWORD read = 0;
  ::ReadFile(h, out.data(), static_cast<DWORD>(out.size()), &read, nullptr);
  ::CloseHandle(h);
  out.resize(read);
  return out;
}

int CountFiles(const std::string& folder) {
  WIN32_FIND_DATAA found{};
  HANDLE h = ::FindFirstFileA((folder + "*").c_str(), &found);
  if (h == INVALID_HANDLE_VALUE) return 0;
  int count = 0;
  do {
    if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0) ++count;
  } while (::FindNextFileA(h, &found));
  ::FindClose(h);
  return count;
}

TEST(PictureSaving, AFailedReplaceLeavesTheOldFileWholeAndNothingBesideIt) {
  const std::string folder = FreshTempFolder();
  const std::string saved = folder + "WP.bmp";
  const std::string old = "the old wallpaper";
  HANDLE writer = ::CreateFileA(saved.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                FILE_ATTRIBUTE_NORMAL, nullptr);
  ASSERT_NE(writer, INVALID_HANDLE_VALUE);
  DWORD written = 0;
  ::WriteFile(writer, old.data(), static_cast<DWORD>(old.size()), &written, nullptr);
  ::CloseHandle(writer);
  // Open for reading, as a viewer would, without sharing the right to delete or replace it.
  HANDLE reader = ::CreateFileA(saved.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  ASSERT_NE(reader, INVALID_HANDLE_VALUE);

  Pixels picture;
  picture.width = 640;
  picture.height = 480;
  picture.bgra.assign(640u * 480u, 0xFF336699u);
  platform::win32::Win32Pictures pictures;
  try {
    pictures.SavePicture(picture, saved);
    ADD_FAILURE() << "replaced a file held open without sharing its deletion";
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.Number(), FailureNumber::PathFileAccessError);
  }
  ::CloseHandle(reader);
  EXPECT_EQ(ReadAll(saved), old);
  EXPECT_EQ(CountFiles(folder), 1);
}

}  // namespace
}  // namespace quorvane::testing
