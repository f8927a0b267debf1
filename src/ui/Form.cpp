#include "ui/Form.h"

#include <algorithm>
#include <utility>

#include "ui/Controls.h"

namespace quorvane::ui {

Form::Form(std::string name) : name_(std::move(name)) {}

// The controls are members of the form's own class and are gone by now. A binding goes before
// its form.
Form::~Form() = default;

void Form::Visible(bool value) {
  if (visible_ == value) return;
  visible_ = value;
  if (observer_ != nullptr) observer_->VisibleChanged(*this);
}

void Form::Load() {
  if (loaded_) return;
  loaded_ = true;
  Form_Load();
}

void Form::Unload() {
  if (loaded_) QueryAndUnload(kUnloadFromCode);
}

bool Form::QueryAndUnload(std::int16_t unloadMode) {
  const bool refusable = unloadMode != kUnloadAtSessionEnd;
  std::int16_t cancel = 0;
  Form_QueryUnload(cancel, unloadMode);
  if (cancel != 0 && refusable) return false;
  cancel = 0;
  Form_Unload(cancel);
  if (cancel != 0 && refusable) return false;
  loaded_ = false;
  visible_ = false;
  if (observer_ != nullptr) observer_->Unloaded(*this);
  return true;
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

void Form::ControlLoaded(Control& control) {
  loadedAtRunTime_.push_back(&control);
  if (observer_ != nullptr) observer_->ControlLoaded(*this, control);
}

void Form::Forget(Control& control) {
  if (activeControl_ == &control) activeControl_ = nullptr;
  // Only a control loaded at run time is announced as going: the others go with the form.
  const auto loaded = std::find(loadedAtRunTime_.begin(), loadedAtRunTime_.end(), &control);
  if (loaded != loadedAtRunTime_.end()) {
    loadedAtRunTime_.erase(loaded);
    if (observer_ != nullptr) observer_->ControlGoing(*this, control);
  }
  controls_.erase(std::remove(controls_.begin(), controls_.end(), &control), controls_.end());
}

// --- events through the top-level report ------------------------------------------------------

namespace {

EventRunner& InstalledRunner() {
  static EventRunner runner;
  return runner;
}

}  // namespace

void InstallEventRunner(EventRunner runner) { InstalledRunner() = std::move(runner); }

void RunEvent(Form& form, const std::function<void()>& handler) {
  if (!handler) return;
  // A handler may replace itself while it runs: the copy runs to its end.
  const std::function<void()> call = handler;
  const EventRunner& runner = InstalledRunner();
  if (runner) {
    runner(form, call);
  } else {
    call();
  }
}

}  // namespace quorvane::ui
