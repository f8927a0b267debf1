#pragma once
// The program's bitmap resources, read into pixels.
#include "platform/ResourcePictures.h"

namespace quorvane::platform::win32 {

class Win32ResourcePictures final : public ResourcePictures {
 public:
  Pixels LoadResPicture(std::int32_t number) override;
};

}  // namespace quorvane::platform::win32
