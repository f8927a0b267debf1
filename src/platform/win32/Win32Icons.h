#pragma once
// Icons through shell32, user32 and comctl32, and the shell's icon picker, which shell32 exports
// by number only, with the program's own picker where the shell's does not work.
#include <utility>
#include <vector>

#include "platform/Icons.h"

namespace quorvane::platform::win32 {

class Win32Icons final : public Icons {
 public:
  std::int32_t ExtractIconExA(const char* file, std::int32_t index, GdiHandle* large,
                              GdiHandle* small, std::uint32_t count) override;
  std::int32_t DrawIconEx(GdiHandle dc, std::int32_t x, std::int32_t y, GdiHandle icon,
                          std::int32_t width, std::int32_t height, std::uint32_t step,
                          GdiHandle brush, std::uint32_t flags) override;
  std::int32_t DestroyIcon(GdiHandle icon) override;
  // The platform's own record is filled, and copied field by field into `info`: the sizes of
  // the two records differ in a 64-bit process.
  std::uint32_t SHGetFileInfoA(const char* path, std::uint32_t attributes, ShFileInfo& info,
                               std::uint32_t size, std::uint32_t flags) override;
  // A list handle that SHGetFileInfoA did not give fails: 0.
  std::int32_t ImageList_Draw(GdiHandle list, std::int32_t index, GdiHandle dc, std::int32_t x,
                              std::int32_t y, std::uint32_t flags) override;
  std::int32_t ImageList_GetIconSize(GdiHandle list, std::int32_t& width,
                                     std::int32_t& height) override;
  // The shell's picker where it works: it answers 1 (OK) or 0 (Cancel). Where shell32 has no
  // export 62, or it answers anything else, the program's own picker (Win32IconPicker.h) is
  // shown instead, with the same arguments and results.
  std::int32_t PickIconDlg(GdiHandle owner, char16_t* path, std::uint32_t size,
                           std::int32_t& index) override;

 private:
  // Image lists are pointers. The handle of one is its sign-extended 32-bit value, or a
  // stand-in where that can't carry the pointer. Only lists the platform gave out are drawn
  // from: any other handle is refused, as a stale or made-up one would crash comctl32.
  GdiHandle ListHandle(void* list);
  void* ListOf(GdiHandle handle) const;

  std::vector<std::pair<GdiHandle, void*>> lists_;
};

}  // namespace quorvane::platform::win32
