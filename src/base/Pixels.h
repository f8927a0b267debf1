#pragma once
// Pixels of an image, 32 bits each as blue, green, red, alpha, rows top-down: what the control
// model shows, what the picture ports decode and save, and what the codecs read and write.
#include <cstdint>
#include <vector>

namespace quorvane {

struct Pixels {
  std::int32_t width = 0;
  std::int32_t height = 0;
  std::vector<std::uint32_t> bgra;

  bool Empty() const { return width <= 0 || height <= 0; }
  bool operator==(const Pixels&) const = default;
};

}  // namespace quorvane
