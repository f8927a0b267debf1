#include "platform/portable/PortableForms.h"

#include <algorithm>

#include "ui/Form.h"

namespace quorvane::platform::portable {

namespace {

// Counts a form as shown for the life of a scope, also when the scope is left by a failure.
class ShownWhile {
 public:
  ShownWhile(std::multiset<std::string>& showing, std::string name)
      : showing_(showing), at_(showing.insert(std::move(name))) {}
  ~ShownWhile() { showing_.erase(at_); }
  ShownWhile(const ShownWhile&) = delete;
  ShownWhile& operator=(const ShownWhile&) = delete;

 private:
  std::multiset<std::string>& showing_;
  std::multiset<std::string>::iterator at_;
};

}  // namespace

void PortableForms::InitCommonControls() { requests_.push_back("InitCommonControls"); }

void PortableForms::Queue(const std::string& formName, Action action) {
  queued_.push_back(Queued{[formName](ui::Form& form) { return form.Name() == formName; },
                           std::move(action)});
}

bool PortableForms::Showing(const std::string& formName) const {
  return showing_.count(formName) != 0;
}

void PortableForms::PlayQueued(ui::Form& form) {
  while (form.Loaded()) {
    const auto it = std::find_if(queued_.begin(), queued_.end(),
                                 [&](const Queued& queued) { return queued.wanted(form); });
    if (it == queued_.end()) return;
    const Action act = std::move(it->act);
    queued_.erase(it);
    ui::RunEvent(form, [&] { act(form); });
  }
}

void PortableForms::DropQueued(ui::Form& form) {
  for (auto it = queued_.begin(); it != queued_.end();) {
    it = it->wanted(form) ? queued_.erase(it) : it + 1;
  }
}

void PortableForms::Show(ui::Form& form, bool modal, std::uint32_t owner) {
  const std::string& name = form.Name();
  requests_.push_back("Show " + name + (modal ? " modal" : " modeless") + ", owner " +
                      std::to_string(owner));
  if (!modal) {
    if (!form.Loaded()) ui::RunEvent(form, [&] { form.Load(); });
    if (!form.Loaded()) return;
    form.Visible(true);
    ui::RunEvent(form, [&] { form.Form_Activate(); });
    PlayQueued(form);
    if (form.Loaded() && !Showing(name)) showing_.insert(name);
    return;
  }
  ShownWhile shown(showing_, name);
  if (!form.Loaded()) ui::RunEvent(form, [&] { form.Load(); });
  if (form.Loaded()) {
    form.Visible(true);
    ui::RunEvent(form, [&] { form.Form_Activate(); });
  }
  PlayQueued(form);
  if (!form.Loaded()) {
    DropQueued(form);
    requests_.push_back(name + " unloaded");
    return;
  }
  bool unloaded = false;
  ui::RunEvent(form, [&] { unloaded = form.QueryAndUnload(ui::kUnloadFromMenu); });
  requests_.push_back(name + (unloaded ? " closed by the title bar" : " kept by its QueryUnload"));
}

void PortableForms::Unload(ui::Form& form) {
  requests_.push_back("Unload " + form.Name());
  form.Unload();
  if (!form.Loaded()) {
    const auto it = showing_.find(form.Name());
    if (it != showing_.end()) showing_.erase(it);
  }
}

}  // namespace quorvane::platform::portable
