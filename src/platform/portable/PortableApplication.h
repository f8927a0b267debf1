#pragma once
// The application without a screen: it keeps whether the main window is shown, loaded, and
// whether the process was ended, and writes down every request in order. Ending the process
// returns here, so a test reads what came before it.
#include <string>
#include <vector>

#include "platform/Application.h"

namespace quorvane::platform::portable {

class PortableApplication final : public Application {
 public:
  void SetMainWindowVisible(bool visible) override;
  void FocusMainWindow() override;
  void UnloadMainWindow() override;
  void EndProcess() override;
  void SetMousePointer(std::int16_t pointer) override;

  bool MainWindowVisible() const { return visible_; }
  std::int16_t MousePointer() const { return pointer_; }
  bool MainWindowLoaded() const { return loaded_; }
  bool Ended() const { return ended_; }
  // The requests in order: "show", "hide", "focus", "unload", "end", "pointer <n>".
  const std::vector<std::string>& Requests() const { return requests_; }
  // Also writes each request, as "application <request>", into a journal shared with other
  // recorders.
  void Journal(std::vector<std::string>* journal) { journal_ = journal; }

 private:
  void Note(const std::string& request);

  bool visible_ = false;
  bool loaded_ = true;
  bool ended_ = false;
  std::int16_t pointer_ = 0;
  std::vector<std::string> requests_;
  std::vector<std::string>* journal_ = nullptr;
};

}  // namespace quorvane::platform::portable
