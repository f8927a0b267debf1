#pragma once
// Modal forms without a screen. Showing a form runs its load routine and its activation, then
// what a test queued beforehand as the user's actions on it, one after the other, and closes it
// by its title bar when those leave it open. Every request is written down in order.
#include <cstdint>
#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "platform/ModalForms.h"

namespace quorvane::platform::portable {

class PortableModalForms final : public ModalForms {
 public:
  using SettingsAction = std::function<void(FrmSettings&)>;

  void InitCommonControls() override;
  // An action that fails ends the show there: the failure goes to the caller, and the actions
  // still queued stay for the next show.
  void ShowSettings(FrmSettings& form, std::uint32_t owner) override;

  // What the user does in the next settings dialog shown, in order. The actions left once the
  // form unloaded itself are dropped.
  void QueueSettings(SettingsAction action) { settings_.push_back(std::move(action)); }

  // "InitCommonControls", "ShowSettings owner <n>", then "settings unloaded" when the form
  // unloaded itself or "settings closed by the title bar".
  const std::vector<std::string>& Requests() const { return requests_; }
  // Whether a settings dialog is up now.
  bool SettingsShown() const { return shown_; }

 private:
  std::deque<SettingsAction> settings_;
  std::vector<std::string> requests_;
  bool shown_ = false;
};

}  // namespace quorvane::platform::portable
