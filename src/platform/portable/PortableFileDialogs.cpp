#include "platform/portable/PortableFileDialogs.h"

namespace quorvane::platform::portable {

std::string PortableFileDialogs::GetOpenFileNameA(const OpenFileRequest& request) {
  requests_.push_back(request);
  if (answers_.empty()) return std::string();
  std::string answer = std::move(answers_.front());
  answers_.pop_front();
  // The buffer holds no more than its size, less the closing character 0.
  if (request.maxFileSize > 0 && answer.size() >= static_cast<std::size_t>(request.maxFileSize)) {
    return std::string();
  }
  return answer;
}

void PortableFileDialogs::AnswerMany(const std::string& folder,
                                     const std::vector<std::string>& names) {
  std::string joined = folder;
  for (const std::string& name : names) {
    joined.push_back('\0');
    joined += name;
  }
  answers_.push_back(std::move(joined));
}

}  // namespace quorvane::platform::portable
