#pragma once
// A notification without a screen: it keeps its settings, picture and text, and writes down
// every time it is shown with what it showed.
#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "platform/Notification.h"

namespace quorvane::platform::portable {

class PortableNotification final : public Notification {
 public:
  struct Shown {
    std::string text;
    Pixels picture;
  };

  void SetOption(std::int32_t number, std::int32_t value) override;
  void SetPicture(const Pixels& picture) override;
  void SetText(const std::string& text) override;
  void Show() override;

  // The settings in the order they were made.
  const std::vector<std::pair<std::int32_t, std::int32_t>>& Options() const { return options_; }
  const Pixels& Picture() const { return picture_; }
  const std::string& Text() const { return text_; }
  const std::vector<Shown>& ShownSoFar() const { return shown_; }
  // Also writes each call ("notification option", "notification picture", "notification
  // text", "notification show") into a journal shared with other recorders.
  void Journal(std::vector<std::string>* journal) { journal_ = journal; }

 private:
  void Note(const char* what);

  std::vector<std::pair<std::int32_t, std::int32_t>> options_;
  Pixels picture_;
  std::string text_;
  std::vector<Shown> shown_;
  std::vector<std::string>* journal_ = nullptr;
};

}  // namespace quorvane::platform::portable
