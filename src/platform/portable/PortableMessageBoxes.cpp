#include "platform/portable/PortableMessageBoxes.h"

namespace quorvane::platform::portable {

std::int32_t PortableMessageBoxes::MsgBox(const std::string& prompt, std::int32_t buttons,
                                          const std::string& title) {
  shown_.push_back(Shown{prompt, buttons, title});
  if (answers_.empty()) return msgbox::kOk;
  const std::int32_t answer = answers_.front();
  answers_.pop_front();
  return answer;
}

}  // namespace quorvane::platform::portable
