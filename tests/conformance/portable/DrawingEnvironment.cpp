// Natively the drawing conformance tests run over the portable device contexts, clipboard and
// clock.
#include <gtest/gtest.h>

#include "platform/Clipboard.h"
#include "platform/Clock.h"
#include "platform/DeviceContexts.h"
#include "platform/Service.h"
#include "platform/portable/PortableClipboard.h"
#include "platform/portable/PortableClock.h"
#include "platform/portable/PortableDeviceContexts.h"

namespace quorvane::testing {
namespace {

class DrawingEnvironment : public ::testing::Environment {
 public:
  void SetUp() override {
    platform::Install<platform::DeviceContexts>(&gdi_);
    platform::Install<platform::Clipboard>(&clipboard_);
    platform::Install<platform::Clock>(&clock_);
  }
  void TearDown() override {
    platform::Install<platform::DeviceContexts>(nullptr);
    platform::Install<platform::Clipboard>(nullptr);
    platform::Install<platform::Clock>(nullptr);
  }

 private:
  platform::portable::PortableDeviceContexts gdi_;
  platform::portable::PortableClipboard clipboard_{gdi_};
  platform::portable::PortableClock clock_;
};

[[maybe_unused]] ::testing::Environment* const kDrawingEnvironment =
    ::testing::AddGlobalTestEnvironment(new DrawingEnvironment);

}  // namespace
}  // namespace quorvane::testing
