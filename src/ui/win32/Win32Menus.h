#pragma once
// The pop-up menus port over the platform's menus, every item drawn by the program in the style
// of the menu form's OfficeMenu (its face and colours): a side bar in a gradient, the items on
// the background colour, the item under the pointer or the keyboard filled and framed in the
// selection's colours, separators as a line beside the side bar, and the menu's own frame in the
// border colour. Sizes follow the screen's dots per inch. The items keep their captions as their
// text, so the menu reads the same from outside.
#include "platform/Menus.h"

namespace quorvane::ui::win32 {

class Win32Menus final : public platform::Menus {
 public:
  // Tracks the menu at the pointer from the form's window, brought to the front for the length
  // of the menu so that a click elsewhere closes it; the chosen item's Click runs after.
  void PopupMenu(ui::Form& form, ui::Menu& menu) override;
};

}  // namespace quorvane::ui::win32
