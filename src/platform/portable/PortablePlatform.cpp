#include "platform/portable/PortablePlatform.h"

namespace quorvane::platform::portable {

PortablePlatform::PortablePlatform(Screen screen)
    : deviceContexts_(screen.width, screen.height),
      clipboard_(deviceContexts_.Get()),
      icons_(deviceContexts_.Get()) {}

}  // namespace quorvane::platform::portable
