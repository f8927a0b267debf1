#include "core/Regimes.h"

#include <exception>

#include "core/MainModule.h"
#include "platform/MessageBoxes.h"
#include "platform/Service.h"
#include "ui/Form.h"

namespace quorvane::core {

namespace {

// Called while the failure is being handled: the log line first (ReportError reads the failure
// being handled), then the message box. A failure of the report itself is passed over.
void Report(const ui::Form& form, const char* text) noexcept {
  ReportError(form.Name(), "event");
  ResumeEach(kAnything, [&] {
    platform::Use<platform::MessageBoxes>().MsgBox(
        text, platform::msgbox::kOkOnly | platform::msgbox::kExclamation);
  });
}

}  // namespace

void RunEvent(ui::Form& form, const std::function<void()>& handler) noexcept {
  if (!handler) return;
  try {
    // A handler may replace itself while it runs (a control's Click set anew): the copy runs on.
    const std::function<void()> call = handler;
    call();
  } catch (const std::exception& failure) {
    Report(form, failure.what());
  } catch (...) {
    Report(form, "Unknown failure");
  }
}

void InstallTopLevelReport() {
  ui::InstallEventRunner([](ui::Form& form, const std::function<void()>& handler) {
    core::RunEvent(form, handler);
  });
}

}  // namespace quorvane::core
