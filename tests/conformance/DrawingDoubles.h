#pragma once
// Stand-ins that the drawing conformance tests install for one test: message boxes that are
// written down instead of shown (a real one would wait for a user), and a clock stopped at a
// time of day.
#include <cstdint>
#include <string>
#include <vector>

#include "platform/Clock.h"
#include "platform/MessageBoxes.h"

namespace quorvane::testing {

class RecordingMessageBoxes final : public platform::MessageBoxes {
 public:
  std::int32_t MsgBox(const std::string& prompt, std::int32_t style,
                      const std::string& title) override {
    prompts.push_back(prompt);
    styles.push_back(style);
    titles.push_back(title);
    return platform::msgbox::kOk;
  }

  std::vector<std::string> prompts;
  std::vector<std::int32_t> styles;
  std::vector<std::string> titles;
};

class StoppedClock final : public platform::Clock {
 public:
  explicit StoppedClock(double seconds) : seconds_(seconds) {}
  double SecondsSinceMidnight() override { return seconds_; }

 private:
  double seconds_;
};

}  // namespace quorvane::testing
