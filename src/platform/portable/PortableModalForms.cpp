#include "platform/portable/PortableModalForms.h"

#include "wallpaper/FrmSettings.h"

namespace quorvane::platform::portable {

namespace {

// Sets a flag for the life of a scope, also when the scope is left by a failure.
class Raised {
 public:
  explicit Raised(bool& flag) : flag_(flag) { flag_ = true; }
  ~Raised() { flag_ = false; }
  Raised(const Raised&) = delete;
  Raised& operator=(const Raised&) = delete;

 private:
  bool& flag_;
};

}  // namespace

void PortableModalForms::InitCommonControls() { requests_.push_back("InitCommonControls"); }

void PortableModalForms::ShowSettings(FrmSettings& form, std::uint32_t owner) {
  requests_.push_back("ShowSettings owner " + std::to_string(owner));
  Raised shown(shown_);
  form.Form_Load();
  form.Form_Activate();
  while (!settings_.empty() && !form.Unloaded()) {
    SettingsAction action = std::move(settings_.front());
    settings_.pop_front();
    action(form);
  }
  if (form.Unloaded()) {
    settings_.clear();
    requests_.push_back("settings unloaded");
  } else {
    form.Unload();
    requests_.push_back("settings closed by the title bar");
  }
}

}  // namespace quorvane::platform::portable
