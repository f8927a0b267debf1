#pragma once
// Forms without a screen. Showing a form runs its load routine and its activation, then what a
// test queued beforehand as the user's actions on that form (by the form's name or by its type),
// one after the other, each through ui::RunEvent. A modal show then ends: a form that its
// actions left loaded is closed by its title bar (its QueryUnload asked with the menu's unload
// mode). A modeless form stays loaded until it is unloaded. Every request is written down in
// order.
#include <cstdint>
#include <deque>
#include <functional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "platform/Forms.h"

namespace quorvane::platform::portable {

class PortableForms final : public Forms {
 public:
  using Action = std::function<void(ui::Form&)>;

  void InitCommonControls() override;
  // An action that fails with no event runner installed ends the show there: the failure goes to
  // the caller, and the actions still queued stay for the next show.
  void Show(ui::Form& form, bool modal, std::uint32_t owner) override;
  void Unload(ui::Form& form) override;

  // What the user does in the next form of that name shown, in order. The actions left for a
  // form once it unloaded itself are dropped.
  void Queue(const std::string& formName, Action action);
  // The same for the next form of the type `F` shown.
  template <class F>
  void Queue(std::function<void(F&)> action) {
    queued_.push_back(Queued{[](ui::Form& form) { return dynamic_cast<F*>(&form) != nullptr; },
                             [act = std::move(action)](ui::Form& form) {
                               act(static_cast<F&>(form));
                             }});
  }

  // In order: "InitCommonControls"; "Show <form> modal, owner <n>" or "Show <form> modeless,
  // owner <n>"; for a modal show "<form> unloaded" when the form unloaded itself, or "<form>
  // closed by the title bar" (or "<form> kept by its QueryUnload" when that refused); and
  // "Unload <form>" for an unload from code.
  const std::vector<std::string>& Requests() const { return requests_; }
  // Whether a form of that name is shown now: between a show and its end or its unloading.
  bool Showing(const std::string& formName) const;

 private:
  struct Queued {
    std::function<bool(ui::Form&)> wanted;
    Action act;
  };
  void PlayQueued(ui::Form& form);
  void DropQueued(ui::Form& form);

  std::deque<Queued> queued_;
  std::vector<std::string> requests_;
  std::multiset<std::string> showing_;
};

}  // namespace quorvane::platform::portable
