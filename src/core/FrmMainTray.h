#pragma once
// The tray icon's events as the main window decodes them: the notification area calls back with
// the mouse-move message on PicPopup, and the mouse message it stands for comes as X.
#include <cstdint>
#include <span>

namespace quorvane::core {

// What the main window does for a message of the icon.
enum class TrayAction { None, ShowMain, PopupMenu };

struct TrayEvent {
  float message;     // the platform's mouse message, as the division gives it
  const char* name;  // the program's own word for it
  TrayAction action;
};

// The messages in the order they are compared.
std::span<const TrayEvent> TrayEvents();

// The mouse message of a callback whose X is `x` twips: X divided by the screen's twips per
// pixel, as a single-precision number.
float TrayMessageOf(float x);

// The first entry whose message has the same bits as `message`; null for any other value.
const TrayEvent* DecodeTrayEvent(float message);

}  // namespace quorvane::core
