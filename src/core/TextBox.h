#pragma once
// Anything with a settable text that a routine can report its progress in.
#include <string>

namespace quorvane {

class TextBox {
 public:
  virtual ~TextBox() = default;
  virtual void SetText(const std::string& text) = 0;
};

}  // namespace quorvane
