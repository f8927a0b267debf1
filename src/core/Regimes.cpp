#include "core/Regimes.h"

#include "core/MainModule.h"
#include "platform/MessageBoxes.h"
#include "platform/Service.h"
#include "ui/Form.h"

namespace quorvane::core {

namespace {

// The user is told; a box that cannot be shown is passed over.
void Tell(const char* what) noexcept {
  try {
    platform::Use<platform::MessageBoxes>().MsgBox(
        what, platform::msgbox::kOkOnly | platform::msgbox::kExclamation);
  } catch (...) {
  }
}

}  // namespace

void RunEvent(ui::Form& form, const std::function<void()>& handler) noexcept {
  try {
    if (handler) handler();
  } catch (const std::exception& failure) {
    ReportError(form.Name(), "event");
    Tell(failure.what());
  } catch (...) {
    ReportError(form.Name(), "event");
    Tell("Unknown failure");
  }
}

void InstallTopLevelReport() {
  ui::InstallEventRunner(
      [](ui::Form& form, const std::function<void()>& handler) { core::RunEvent(form, handler); });
}

}  // namespace quorvane::core
