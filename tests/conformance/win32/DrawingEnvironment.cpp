// Under Windows the drawing conformance tests run over gdi32 and user32 and the local clock.
#include <gtest/gtest.h>

#include "platform/Clipboard.h"
#include "platform/Clock.h"
#include "platform/DeviceContexts.h"
#include "platform/Service.h"
#include "platform/win32/Win32Clipboard.h"
#include "platform/win32/Win32Clock.h"
#include "platform/win32/Win32DeviceContexts.h"

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
  platform::win32::Win32DeviceContexts gdi_;
  platform::win32::Win32Clipboard clipboard_;
  platform::win32::Win32Clock clock_;
};

[[maybe_unused]] ::testing::Environment* const kDrawingEnvironment =
    ::testing::AddGlobalTestEnvironment(new DrawingEnvironment);

}  // namespace
}  // namespace quorvane::testing
