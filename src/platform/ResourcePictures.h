#pragma once
// The program's own bitmaps, by resource number.
#include <cstdint>

#include "base/Pixels.h"

namespace quorvane::platform {

class ResourcePictures {
 public:
  virtual ~ResourcePictures() = default;
  // The bitmap of that number as pixels; empty when the program has none of that number.
  virtual Pixels LoadResPicture(std::int32_t number) = 0;
};

}  // namespace quorvane::platform
