#pragma once
// Looking into Quorvane's windows from another process and acting on them as a user: what a tree
// view or a list box holds, clicks and drags of the pointer, dialogs, the program's bitmaps, and
// what a part of the screen shows.
#include <windows.h>
#include <commctrl.h>

#include <cstdint>
#include <string>
#include <vector>

#include "driving/Verdict.h"

namespace quorvane::driving {

// One item of a tree view, as the tree view of the other process gives it.
struct RemoteItem {
  std::string text;
  int image = 0;
  int selectedImage = 0;
  bool bold = false;
  bool selected = false;
  int level = 0;  // 0 at top level
  HTREEITEM handle = nullptr;  // the item in the other process's tree view
};

// Every item of a tree view of another process, in display order (each item before its
// children), read through a buffer in that process. TVM_GETCOUNT's answer in `count`. False,
// with `error`, when the process can't be opened or the tree not read.
bool ReadTreeView(HWND tree, std::vector<RemoteItem>& items, int& count, std::string& error);

// The screen rectangle of the text of item `position` (from 1, in display order of the top level)
// of a tree view of another process. False, with `error`, when there is no such item shown.
bool TreeItemRect(HWND tree, int position, RECT& area, std::string& error);

// The screen rectangle of the text of an item that ReadTreeView read (its handle). False, with
// `error`, when the item is not shown.
bool TreeItemRectOf(HWND tree, HTREEITEM item, RECT& area, std::string& error);
// The screen rectangle of item `index` of a list box of another process (the system carries
// the rectangle between the processes). False, with `error`, when the list has no such item.
bool ListBoxItemRect(HWND list, int index, RECT& area, std::string& error);

// A click of the left button at a point of the screen, as the user makes it.
void ClickAt(POINT point);

// A click of the left button at a point of the screen, its press and release in one call to the
// system and no pause after it: for timing what a click does from the moment it is made.
void ClickAtOnce(POINT point);

// A double click of the left button at a point of the screen: two clicks at the same point,
// well within the system's double-click time.
void DoubleClickAt(POINT point);

// Moves the pointer to a point of the screen, as the user does, with no button pressed.
void MoveTo(POINT point);

// Presses the left button at `from`, moves with it held to `to` in a few steps, and lets go.
void DragFromTo(POINT from, POINT to);

// The screen rectangle of a window, and the middle of a rectangle.
RECT ScreenRect(HWND window);
POINT Centre(const RECT& area);

// The first shown top-level dialog window (class "#32770") of process `processId`: a message
// box, the icon picker or another dialog; null when it shows none.
HWND DialogOf(DWORD processId);

// The texts of a dialog's static controls, in order, joined by " | ": a message box's text.
std::string DialogText(HWND dialog);

// A click on the button `id` of a dialog of another process, named `name` in messages; then
// waits up to `milliseconds` for the dialog to go. False, with the reason in `verdict`, when the
// button is missing or disabled (the dialog is then cancelled, so that it does not stay) or the
// dialog is still shown afterwards.
bool ClickDialogButton(Verdict& verdict, HWND dialog, int id, const std::string& name,
                       DWORD milliseconds);

// A picture: its size and its pixels (0x00RRGGBB), row by row from the top.
struct Picture {
  int width = 0;
  int height = 0;
  std::vector<std::uint32_t> pixels;
};

// The bitmap resource `number` of the program file `path`, read as data, not run. False, with
// `error`, when the file can't be opened or holds no such bitmap.
bool LoadResourceBitmap(const std::string& path, int number, Picture& picture,
                        std::string& error);

// The pixels (0x00RRGGBB) of a rectangle of the screen, row by row from the top. False, with
// `error`, when the screen can't be read.
bool CaptureScreen(const RECT& area, std::vector<std::uint32_t>& pixels, std::string& error);

// Whether two colours (0x00RRGGBB) differ by at most `tolerance` in each channel.
bool CloseColours(std::uint32_t a, std::uint32_t b, int tolerance);

// A picture of `width` by `height` pixels of 32 bits, with a memory device context that draws
// on it, for drawing what a window is expected to show or copying what the screen shows.
class DrawingSurface {
 public:
  DrawingSurface(int width, int height);
  ~DrawingSurface();
  DrawingSurface(const DrawingSurface&) = delete;
  DrawingSurface& operator=(const DrawingSurface&) = delete;

  // Whether the picture and its device context were made; nothing can be drawn otherwise.
  bool Ready() const { return picture_ != nullptr && memory_ != nullptr; }
  HDC Context() const { return memory_; }
  // Paints the whole picture in one colour (0x00RRGGBB).
  void Fill(std::uint32_t colour) const;
  // What was drawn: the pixels (0x00RRGGBB), row by row from the top.
  std::vector<std::uint32_t> Pixels() const;

 private:
  int width_;
  int height_;
  HDC memory_ = nullptr;
  HBITMAP picture_ = nullptr;
  HGDIOBJ previous_ = nullptr;
  void* bits_ = nullptr;
};

}  // namespace quorvane::driving
