#include "icons/modextracticon.h"

#include <algorithm>
#include <cstdint>

#include "base/Failure.h"
#include "base/Int16.h"
#include "core/FrmMain.h"
#include "base/Text.h"
#include "platform/CodePages.h"
#include "platform/ProfileFiles.h"
#include "platform/Service.h"

namespace quorvane {

namespace {

constexpr char kMissing[] = "?!?";
constexpr std::uint32_t kEntrySize = 256;

// The file whose icon 0 stands in for an icon that can't be had.
constexpr char kFallbackFile[] = "Shell32.dll";
// DrawShellIcon's query: system image list, shell-sized icon, display name, type name and
// executable type, with the small icon or the large one.
constexpr std::uint32_t kShellIconSmall = 0x6605;
constexpr std::uint32_t kShellIconLarge = 0x6604;
// The picker's buffer, in characters.
constexpr std::int64_t kPathBuffer = 260;

std::uint32_t gIconPickerOwner = 0;

platform::Icons& Icons() { return platform::Use<platform::Icons>(); }

// The picker's buffer between the system's strings and the platform's wide characters, by the
// system's ANSI code page: widened unit for unit in the platform's way (a NUL stays a NUL), and
// narrowed again with "?" for a character the code page lacks.
std::u16string Widen(const std::string& text) {
  if (text.empty()) return std::u16string();
  auto& pages = platform::Use<platform::CodePages>();
  const auto length = static_cast<std::int32_t>(text.size());
  const std::int32_t needed =
      pages.MultiByteToWideChar(platform::codepage::kAnsi, 0, text.data(), length, nullptr, 0);
  std::u16string wide(static_cast<std::size_t>(std::max(needed, 0)), u'\0');
  if (needed > 0) {
    pages.MultiByteToWideChar(platform::codepage::kAnsi, 0, text.data(), length, wide.data(),
                              needed);
  }
  return wide;
}

std::string Narrow(const std::u16string& wide) {
  if (wide.empty()) return std::string();
  auto& pages = platform::Use<platform::CodePages>();
  const auto length = static_cast<std::int32_t>(wide.size());
  const std::int32_t needed =
      pages.WideCharToMultiByte(platform::codepage::kAnsi, 0, wide.data(), length, nullptr, 0);
  std::string text(static_cast<std::size_t>(std::max(needed, 0)), '\0');
  if (needed > 0) {
    pages.WideCharToMultiByte(platform::codepage::kAnsi, 0, wide.data(), length, text.data(),
                              needed);
  }
  return text;
}

// A 16-bit product, as the system computes it: beyond 16 bits is an overflow.
std::int16_t Times15(std::int16_t value) {
  return CheckedInt16(static_cast<std::int32_t>(value) * ui::kTwipsPerPixel);
}

}  // namespace

Boolean gLargeIcons = kFalse;
std::int32_t gLargeIconWidth = 0;
std::int32_t gLargeIconHeight = 0;
std::int32_t gSmallIconWidth = 0;
std::int32_t gSmallIconHeight = 0;
platform::ShFileInfo gShellInfo;

void SetIconPickerOwner(std::uint32_t window) { gIconPickerOwner = window; }

std::uint32_t IconPickerOwner() { return gIconPickerOwner; }

Boolean ReadIniEntry(std::string section, const std::string& key, const std::string& file,
                     std::string& value) {
  std::string buffer(kEntrySize, '\0');
  const std::uint32_t copied =
      platform::Use<platform::ProfileFiles>().GetPrivateProfileStringA(
          section.c_str(), key.c_str(), kMissing, buffer.data(), kEntrySize, file.c_str());
  // The stand-in is recognised by the first three characters of the buffer, whatever the count.
  if (text::Left(buffer, 3) == kMissing) return kFalse;
  value = text::Left(buffer, copied);
  return kTrue;
}

void WriteIniEntry(std::string section, const std::string& key, const std::string& value,
                   const std::string& file) {
  platform::Use<platform::ProfileFiles>().WritePrivateProfileStringA(
      section.c_str(), key.c_str(), value.c_str(), file.c_str());
}

std::string EnsureIconIndex(std::string& Location) {
  if (text::InStr(1, Location, ",") == 0) Location += ",0";
  return Location;
}

void AddIconImage(const std::string& Path, std::int32_t Number, std::int16_t& AddFlag) {
  platform::GdiHandle large = 0;
  platform::GdiHandle small = 0;
  if (Icons().ExtractIconExA(Path.c_str(), Number, &large, &small, 1) < 1) {
    Icons().ExtractIconExA(kFallbackFile, 0, &large, &small, 1);
  }
  FrmMain& form = MainWindow();
  form.sIcon.AutoRedraw(true);
  form.lIcon.AutoRedraw(true);
  form.mIcon.AutoRedraw(true);
  form.sIcon.Cls();
  form.lIcon.Cls();
  form.mIcon.Cls();
  // mIcon gets no icon: only StageIconImage draws in it.
  Icons().DrawIconEx(form.sIcon.hDC(), 1, 1, small, 0, 0, 0, 0, platform::icons::kDiNormal);
  Icons().DrawIconEx(form.lIcon.hDC(), 1, 1, large, 0, 0, 0, 0, platform::icons::kDiNormal);
  Icons().DrawIconEx(form.mIcon.hDC(), 1, 1, 0, 0, 0, 0, 0, platform::icons::kDiNormal);
  Icons().DestroyIcon(small);
  Icons().DestroyIcon(large);
  Icons().DestroyIcon(0);
  if (AddFlag != 0) {
    // Numbered the count plus one, by its place at the end; no key.
    form.ILicons.Add(std::string(), form.lIcon.Image());
  }
  form.sIcon.AutoRedraw(false);
  form.lIcon.AutoRedraw(false);
  form.mIcon.AutoRedraw(false);
}

std::int16_t StageIconImage(const std::string& Path, std::int32_t Number) {
  platform::GdiHandle large = 0;
  platform::GdiHandle small = 0;
  // No stand-in file here: no icon is no image.
  if (Icons().ExtractIconExA(Path.c_str(), Number, &large, &small, 1) < 1) return 0;
  FrmMain& form = MainWindow();
  form.sIcon.AutoRedraw(true);
  form.mIcon.AutoRedraw(true);
  form.sIcon.Cls();
  form.mIcon.Cls();
  Icons().DrawIconEx(form.sIcon.hDC(), 1, 1, small, 0, 0, 0, 0, platform::icons::kDiNormal);
  Icons().DrawIconEx(form.mIcon.hDC(), 1, 1, large, 0, 0, 0, 0, platform::icons::kDiNormal);
  Icons().DestroyIcon(small);
  Icons().DestroyIcon(large);
  const std::int16_t number = CheckedInt16(form.ILicons.Count() + 1);
  form.ILicons.Add(std::string(), form.mIcon.Image());
  form.sIcon.AutoRedraw(false);
  form.mIcon.AutoRedraw(false);
  return number;
}

std::string PickIcon(std::string& Path, std::int32_t& Number) {
  const std::int64_t padding = kPathBuffer - static_cast<std::int64_t>(Path.size());
  if (padding < 0) RaiseInvalidProcedureCall();
  std::u16string buffer = Widen(Path + std::string(static_cast<std::size_t>(padding), '\0'));
  // A character of two bytes is one unit: the dialog has its 260 units all the same.
  if (buffer.size() < static_cast<std::size_t>(kPathBuffer)) {
    buffer.resize(static_cast<std::size_t>(kPathBuffer), u'\0');
  }
  if (Icons().PickIconDlg(IconPickerOwner(), buffer.data(),
                          static_cast<std::uint32_t>(kPathBuffer), Number) != 1) {
    return std::string();
  }
  const std::string chosen = Narrow(buffer);
  // Cut before the first NUL; a buffer without one is a failure, as Left of -1 is.
  Path = text::Left(chosen, text::InStr(1, chosen, std::string_view("\0", 1)) - 1);
  return Path + "," + std::to_string(Number);
}

void DrawShellIcon(const std::string& Path, ui::PictureBox& Box, std::int16_t& Size) {
  const std::uint32_t flags = Size == 16 ? kShellIconSmall : kShellIconLarge;
  const std::uint32_t list = Icons().SHGetFileInfoA(Path.c_str(), 0, gShellInfo,
                                                    platform::icons::kShFileInfoSize, flags);
  if (list == 0) return;
  Box.Width(Times15(Size));
  Box.Height(Times15(Size));
  Box.ScaleWidth = Times15(Size);
  Box.ScaleHeight = Times15(Size);
  Box.Picture(ui::Pixels{});
  Box.AutoRedraw(true);
  Icons().ImageList_Draw(list, gShellInfo.iIcon, Box.hDC(), 0, 0,
                         platform::icons::kIldTransparent);
  Box.Refresh();
}

std::int32_t GetNodeImage(const std::string& Path, Boolean Open) {
  std::int32_t flags = 0;
  std::int32_t index = 0;
  if (gLargeIcons != kFalse) {
    flags = Open != kFalse ? 2 : 0;
    GetSystemIconIndex(Path, gLargeIconWidth, gLargeIconHeight, flags, index);
  } else {
    flags = Open != kFalse ? 3 : 1;
    GetSystemIconIndex(Path, gSmallIconWidth, gSmallIconHeight, flags, index);
  }
  // One image per system icon, however many paths show it.
  const std::string key = "Icon" + std::to_string(index);
  std::int32_t number = 0;
  if (FindIconKey(key, number) != kFalse) return number;
  FrmMain& form = MainWindow();
  form.Pi1.Picture(ui::Pixels{});
  DrawFileIcon(Path, flags, form.Pi1, Open);
  form.Pi1.Picture(form.Pi1.Image());
  form.Im16.Add(key, form.Pi1.Picture());
  return form.Im16.Count();
}

Boolean FindIconKey(const std::string& Key, std::int32_t& Number) {
  const ui::ImageList& list = MainWindow().Im16;
  const std::string sought = text::LowerCase(Key);
  // A walk through the whole list for each lookup.
  for (std::int32_t i = 1; i <= list.Count(); ++i) {
    if (text::LowerCase(list.Item(i).key) == sought) {
      Number = i;
      return kTrue;
    }
  }
  Number = 0;
  return kFalse;
}

void GetSystemIconIndex(const std::string& Path, std::int32_t& Width, std::int32_t& Height,
                        std::int32_t Flags, std::int32_t& Index) {
  const std::uint32_t list = Icons().SHGetFileInfoA(
      Path.c_str(), 0, gShellInfo, platform::icons::kShFileInfoSize,
      static_cast<std::uint32_t>(Flags) | platform::icons::kShgfiSysIconIndex);
  Icons().ImageList_GetIconSize(list, Width, Height);
  Index = gShellInfo.iIcon;
}

void DrawFileIcon(const std::string& Path, std::int32_t Flags, ui::PictureBox& Box,
                  Boolean Open) {
  const std::uint32_t handle = Open != kFalse
                                   ? platform::icons::kShgfiIcon | platform::icons::kShgfiOpenIcon
                                   : platform::icons::kShgfiIcon;
  Icons().SHGetFileInfoA(Path.c_str(), 0, gShellInfo, platform::icons::kShFileInfoSize,
                         static_cast<std::uint32_t>(Flags) | handle);
  Box.Cls();
  if ((Flags & 1) != 0) {
    Icons().DrawIconEx(Box.hDC(), 0, 0, gShellInfo.hIcon, gSmallIconWidth, gSmallIconHeight, 0,
                       0, platform::icons::kDiNormal);
  } else {
    Icons().DrawIconEx(Box.hDC(), 0, 0, gShellInfo.hIcon, gLargeIconWidth, gLargeIconHeight, 0,
                       0, platform::icons::kDiNormal);
  }
  Box.Refresh();
  Icons().DestroyIcon(gShellInfo.hIcon);
}

}  // namespace quorvane
