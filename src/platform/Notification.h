#pragma once
// A brief notification near the notification area: a picture and a text, shown for a short
// while without taking the focus. The main window sets it up at load and shows it when it hides
// itself to the tray.
#include <cstdint>
#include <string>

#include "base/Pixels.h"

namespace quorvane::platform {

class Notification {
 public:
  virtual ~Notification() = default;

  // A numbered setting, as the window makes them at load, in its order. What a number does is
  // the notification's own affair; one it does not use is kept all the same.
  virtual void SetOption(std::int32_t number, std::int32_t value) = 0;
  // The picture shown beside the text; an empty picture shows none.
  virtual void SetPicture(const Pixels& picture) = 0;
  virtual void SetText(const std::string& text) = 0;
  // Shows the notification with the picture and text set last.
  virtual void Show() = 0;
};

}  // namespace quorvane::platform
