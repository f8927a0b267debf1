#pragma once
// What the binding's windows are made of: the units and names they are made in, the classes of
// the program's own, the captions' face, the accessible names, and the shapes a form's
// top-level window and a control's window are asked for.
#include <windows.h>
#include <commctrl.h>

#include <cstdint>
#include <stdexcept>
#include <string>

#include "ui/Controls.h"

struct IAccPropServices;

namespace quorvane::ui::win32 {

// Registered message a form's top-level window answers: wParam is a global atom of a system
// name, the answer the window of that control, 0 if there is none.
inline constexpr const char* kFindControlMessage = "Quorvane.FindControl";

int ToPixels(std::int32_t twips);
// A handle as the model keeps it (hWnd, Icon): its low 32 bits, as the system's handles fit.
std::uint32_t ToHandleValue(const void* handle);
// A failure of the system, with the system's last error number.
std::runtime_error SystemFailure(const std::string& what);

// Every caption of the forms is set in "Verdana". The windows are laid out in pixels (15 twips
// to the pixel), so their type is too: points are taken at 96 pixels to the inch whatever the
// screen's setting, and a caption always fits the box the design gives it. At a larger display
// scaling the system enlarges the whole window, which declares no awareness of scaling.
HFONT MakeVerdana(int points, bool bold, bool underline);

// A window class of the program's own; the defaults are what the controls' classes want.
struct WindowClass {
  const char* name = nullptr;
  WNDPROC procedure = nullptr;
  UINT style = 0;
  HBRUSH background = nullptr;
  HICON icon = nullptr;
  HICON smallIcon = nullptr;
};
// Registers the class unless it is registered already. Throws SystemFailure(`refusal`) when the
// system refuses it.
void RegisterWindowClass(HINSTANCE instance, const WindowClass& wanted, const char* refusal);

// A label's caption in `font`, wrapped, in its fore colour (grey while it is disabled), over
// what the context holds already.
void DrawLabelCaption(HDC dc, const Label& label, HFONT font, RECT area);

// What a control's window is made as, besides a child of its container's window at the
// control's place, shown as the control is.
struct ChildWindow {
  const char* className = nullptr;
  DWORD style = 0;
  DWORD extendedStyle = 0;
  bool showsCaption = false;  // its text is the control's caption rather than its system name
  bool ownClass = false;      // a class of the binding's own, whose procedure is PartProcedure
};

// A form's top-level window.
struct TopWindow {
  const char* className = nullptr;
  const char* caption = nullptr;
  DWORD style = 0;
  DWORD extendedStyle = 0;
  RECT frame{};  // on the screen
  HWND owner = nullptr;
};

// The accessible names of windows, given through the platform's annotation service where it
// has one; without it, nothing.
class AccessibleNames {
 public:
  AccessibleNames() = default;
  ~AccessibleNames();
  AccessibleNames(const AccessibleNames&) = delete;
  AccessibleNames& operator=(const AccessibleNames&) = delete;

  // Looks for the service once.
  void Connect();
  void Give(HWND window, const std::string& name) const;
  void Take(HWND window) const;

 private:
  IAccPropServices* service_ = nullptr;
};

// The point of the message being handled (GetMessagePos) in the window's client pixels.
POINT MessagePointIn(HWND window);
// What of a tree view lies at a point of its client area.
TVHITTESTINFO HitTestTree(HWND tree, POINT at);

}  // namespace quorvane::ui::win32
