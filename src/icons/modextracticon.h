#pragma once
// The module modextracticon: reading and writing one entry of a folder's desktop.ini through
// the platform's profile functions, and everything that gets from an icon location or a path
// to pixels: the preview boxes of the icon page, the icon picker, and the image lists ILicons
// (catalogue trees, by number) and Im16 (Tree, by key). The routines reach the main window
// through MainWindow().
//
// Unlike the pair in iniReadWrite, a read tells a missing entry from an empty one: the platform
// is given the stand-in "?!?" for a missing entry.
//
// An icon location is one text: a file path, a comma and a decimal icon number, as in
// "shell32.dll,32". A negative number is a resource identifier, passed on as it stands. Nothing
// here expands environment-style text such as "%SystemRoot%". No routine here shows a message;
// failures go up to the caller.
#include <cstdint>
#include <string>

#include "base/Types.h"
#include "platform/Icons.h"
#include "ui/Controls.h"

namespace quorvane {

// True, with the value (at most 255 characters) in `value`, when `key` is in `section` of
// `file`. False, with `value` untouched, when the file, section or key is missing, and also
// when the stored value itself begins with "?!?".
Boolean ReadIniEntry(std::string section, const std::string& key, const std::string& file,
                     std::string& value);

// Writes `key`=`value` into `section` of `file`. Whether the platform managed is not looked at.
void WriteIniEntry(std::string section, const std::string& key, const std::string& value,
                   const std::string& file);

// --- module state, for the program's lifetime ------------------------------------------------

// Whether Tree shows large icons. Nothing ever sets it, so Tree has small icons; the large
// branches stay all the same.
extern Boolean gLargeIcons;
// The size of a large and of a small icon, filled by the platform at each size query.
extern std::int32_t gLargeIconWidth;
extern std::int32_t gLargeIconHeight;
extern std::int32_t gSmallIconWidth;
extern std::int32_t gSmallIconHeight;
// The platform's record of a file's icon, filled by each query.
extern platform::ShFileInfo gShellInfo;

// The window that owns the icon picker: the main window's handle, which the Windows binding
// gives when it makes the window. 0, no owner, until then.
void SetIconPickerOwner(std::uint32_t window);
std::uint32_t IconPickerOwner();

// --- icon locations and the icon page -----------------------------------------------------------

// A location without any comma gets ",0" appended, in place. The location, mended or not.
std::string EnsureIconIndex(std::string& Location);

// Shows icon `Number` of `Path` in sIcon (small) and lIcon (large), at (1, 1), and clears mIcon.
// A file without that icon shows icon 0 of "Shell32.dll" instead; if even that fails the boxes
// stay empty. With a non-zero `AddFlag` lIcon's image is added to ILicons, without a key.
void AddIconImage(const std::string& Path, std::int32_t Number, std::int16_t& AddFlag);

// Shows icon `Number` of `Path` in sIcon (small) and mIcon (large), and adds mIcon's image to
// ILicons. Its number there; 0, with nothing changed, when the file has no such icon.
std::int16_t StageIconImage(const std::string& Path, std::int32_t Number);

// The shell's icon picker, owned by the main window, showing `Path` and icon `Number` first.
// On confirmation the chosen file comes back in `Path`, its icon in `Number`, and the result is
// the location "<path>,<number>"; on cancel the result is "". A path of more than 260
// characters is a failure (invalid procedure call).
std::string PickIcon(std::string& Path, std::int32_t& Number);

// --- the shell's icon of a path -----------------------------------------------------------------

// Draws the shell's icon of `Path` in `Box`, from the system image list, with the box made
// `Size` pixels square: the small icon when `Size` is 16, the large one otherwise. When the
// platform gives no list the box is left as it was.
void DrawShellIcon(const std::string& Path, ui::PictureBox& Box, std::int16_t& Size);

// The number in Im16 of the picture of `Path`'s icon (its open form with `Open`), added under
// the key "Icon<system index>" when no image has that key yet.
std::int32_t GetNodeImage(const std::string& Path, Boolean Open);

// True, with its number in `Number`, when an image of Im16 has the key (compared in lower
// case); false, with 0 in `Number`, otherwise.
Boolean FindIconKey(const std::string& Key, std::int32_t& Number);

// The platform's query of `Path` in the system image list (`Flags` and the system-index flag):
// the list's icon size into `Width` and `Height`, the icon's index into `Index`.
void GetSystemIconIndex(const std::string& Path, std::int32_t& Width, std::int32_t& Height,
                        std::int32_t Flags, std::int32_t& Index);

// Clears `Box` and draws `Path`'s icon (its open form with `Open`) by handle at (0, 0), at the
// stored small size when `Flags` asks for small icons, else at the stored large size.
void DrawFileIcon(const std::string& Path, std::int32_t Flags, ui::PictureBox& Box,
                  Boolean Open);

}  // namespace quorvane
