#pragma once
// Pop-up menus without a screen: each pop-up is written down, and what a test queued as the
// user's next choice is played: an item chosen by its name, or the menu dismissed.
#include <deque>
#include <string>
#include <vector>

#include "platform/Menus.h"

namespace quorvane::platform::portable {

class PortableMenus final : public Menus {
 public:
  // The item named in the next queued choice runs its Click; an empty name dismisses the menu,
  // and so does a pop-up with nothing queued. A name that is no item of the menu dismisses it.
  void PopupMenu(ui::Form& form, ui::Menu& menu) override;

  // The user's choice in the next pop-up: the item's name, or "" to dismiss it.
  void Choose(const std::string& itemName) { choices_.push_back(itemName); }
  // "PopupMenu <menu> from <form>: <item>" for each pop-up, the item chosen or "none".
  const std::vector<std::string>& Requests() const { return requests_; }

 private:
  std::deque<std::string> choices_;
  std::vector<std::string> requests_;
};

}  // namespace quorvane::platform::portable
