#pragma once
// File dialogs without a screen: each request is written down in order and answered at once
// with the answer a test queued beforehand, or as cancelled (an empty text) when none is left.
#include <deque>
#include <string>
#include <vector>

#include "platform/FileDialogs.h"

namespace quorvane::platform::portable {

class PortableFileDialogs final : public FileDialogs {
 public:
  std::string GetOpenFileNameA(const OpenFileRequest& request) override;

  // What the next dialog gives back: the buffer's pieces joined by a character 0.
  void Answer(const std::string& names) { answers_.push_back(names); }
  // The folder and names of a multiple choice, joined as the dialog gives them.
  void AnswerMany(const std::string& folder, const std::vector<std::string>& names);
  const std::vector<OpenFileRequest>& Requests() const { return requests_; }

 private:
  std::vector<OpenFileRequest> requests_;
  std::deque<std::string> answers_;
};

}  // namespace quorvane::platform::portable
