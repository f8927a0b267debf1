#pragma once
// The program's bitmaps without the platform's resources: a table by number, which tests (and
// whatever carries the program's art into a portable build) fill.
#include <map>

#include "platform/ResourcePictures.h"

namespace quorvane::platform::portable {

class PortableResourcePictures final : public ResourcePictures {
 public:
  Pixels LoadResPicture(std::int32_t number) override;

  void Put(std::int32_t number, const Pixels& picture) { pictures_[number] = picture; }
  // How many loads asked for this number.
  int Loads(std::int32_t number) const;

 private:
  std::map<std::int32_t, Pixels> pictures_;
  std::map<std::int32_t, int> loads_;
};

}  // namespace quorvane::platform::portable
