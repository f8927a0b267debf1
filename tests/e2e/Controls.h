#pragma once
// Looking into Quorvane's window from another process: its controls by their system names, what
// a tree view holds, and what a part of the screen shows.
#include <windows.h>

#include <cstdint>
#include <string>
#include <vector>

namespace quorvane::e2e {

// The registered messages the main window answers.
inline constexpr const char* kFindControlMessage = "Quorvane.FindControl";
inline constexpr const char* kExitMessage = "Quorvane.Exit";

// The window of the control named `systemName` ("TvDesktop", or "CmdMenu(2)" for an element of a
// control array) in the main window `main` of another process; 0 when it has none of that name
// or does not answer within `milliseconds`.
HWND FindControl(HWND main, const std::string& systemName, DWORD milliseconds = 5000);

// Posts the registered message `name` to `window`. False when it could not be posted.
bool PostRegistered(HWND window, const char* name);

// One item of a tree view, as the tree view of the other process gives it.
struct RemoteItem {
  std::string text;
  int image = 0;
  int selectedImage = 0;
  bool bold = false;
  bool selected = false;
  int level = 0;  // 0 at top level
};

// Every item of a tree view of another process, in display order (each item before its
// children), read through a buffer in that process. TVM_GETCOUNT's answer in `count`. False,
// with `error`, when the process can't be opened or the tree not read.
bool ReadTreeView(HWND tree, std::vector<RemoteItem>& items, int& count, std::string& error);

// The screen rectangle of the text of item `position` (from 1, in display order of the top level)
// of a tree view of another process. False, with `error`, when there is no such item shown.
bool TreeItemRect(HWND tree, int position, RECT& area, std::string& error);

// The screen rectangle of item `index` of a list box of another process (the system carries
// the rectangle between the processes). False, with `error`, when the list has no such item.
bool ListBoxItemRect(HWND list, int index, RECT& area, std::string& error);

// A click of the left button at a point of the screen, as the user makes it.
void ClickAt(POINT point);

// A double click of the left button at a point of the screen: two clicks at the same point,
// well within the system's double-click time.
void DoubleClickAt(POINT point);

// Moves the pointer to a point of the screen, as the user does, with no button pressed.
void MoveTo(POINT point);

// Presses the left button at `from`, moves with it held to `to` in a few steps, and lets go.
void DragFromTo(POINT from, POINT to);

// The screen rectangle of a window.
RECT ScreenRect(HWND window);

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

}  // namespace quorvane::e2e
