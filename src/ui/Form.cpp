// A minimal form of the control model: what the failure regimes and their tests need.
#include "ui/Form.h"

#include <algorithm>
#include <utility>

#include "ui/Controls.h"

namespace quorvane::ui {

namespace {

EventRunner& Runner() {
  static EventRunner runner;
  return runner;
}

}  // namespace

Form::Form(std::string name) : name_(std::move(name)) {}

Form::~Form() = default;

void Form::Visible(bool value) {
  visible_ = value;
  if (observer_ != nullptr) observer_->VisibleChanged(*this);
}

void Form::Load() {
  if (loaded_) return;
  loaded_ = true;
  Form_Load();
}

void Form::Unload() {
  loaded_ = false;
  if (observer_ != nullptr) observer_->Unloaded(*this);
}

Control* Form::FindControl(const std::string& name, std::int32_t index) const {
  return ui::FindControl(controls_, name, index);
}

std::vector<Timer*> Form::Timers() const {
  std::vector<Timer*> timers;
  for (Control* control : controls_) {
    if (auto* timer = dynamic_cast<Timer*>(control)) timers.push_back(timer);
  }
  return timers;
}

void Form::Register(Control& control) { controls_.push_back(&control); }

void Form::Forget(Control& control) {
  controls_.erase(std::remove(controls_.begin(), controls_.end(), &control), controls_.end());
}

void InstallEventRunner(EventRunner runner) { Runner() = std::move(runner); }

void RunEvent(Form& form, const std::function<void()>& handler) {
  if (Runner()) {
    Runner()(form, handler);
  } else if (handler) {
    handler();
  }
}

}  // namespace quorvane::ui
