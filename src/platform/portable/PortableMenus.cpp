#include "platform/portable/PortableMenus.h"

#include "ui/Form.h"
#include "ui/Menu.h"

namespace quorvane::platform::portable {

void PortableMenus::PopupMenu(ui::Form& form, ui::Menu& menu) {
  std::string wanted;
  if (!choices_.empty()) {
    wanted = choices_.front();
    choices_.pop_front();
  }
  ui::Menu* chosen = nullptr;
  for (ui::Menu* item : menu.Items()) {
    if (!wanted.empty() && item->Name() == wanted && !item->IsSeparator() && item->Enabled() &&
        item->Visible()) {
      chosen = item;
    }
  }
  requests_.push_back("PopupMenu " + menu.Name() + " from " + form.Name() + ": " +
                      (chosen != nullptr ? chosen->Name() : std::string("none")));
  if (chosen != nullptr && chosen->Click && chosen->Owner() != nullptr) {
    ui::RunEvent(*chosen->Owner(), chosen->Click);
  }
}

}  // namespace quorvane::platform::portable
