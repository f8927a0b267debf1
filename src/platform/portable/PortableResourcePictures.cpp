#include "platform/portable/PortableResourcePictures.h"

namespace quorvane::platform::portable {

Pixels PortableResourcePictures::LoadResPicture(std::int32_t number) {
  ++loads_[number];
  const auto it = pictures_.find(number);
  return it == pictures_.end() ? Pixels{} : it->second;
}

int PortableResourcePictures::Loads(std::int32_t number) const {
  const auto it = loads_.find(number);
  return it == loads_.end() ? 0 : it->second;
}

}  // namespace quorvane::platform::portable
