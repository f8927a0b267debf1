#pragma once
// Pop-up menus: a menu of the control model shown at the pointer, from a window of the
// program. The user's choice runs that item's Click once the menu is gone; a menu dismissed
// without a choice runs nothing.
namespace quorvane::ui {
class Form;
class Menu;
}  // namespace quorvane::ui

namespace quorvane::platform {

class Menus {
 public:
  virtual ~Menus() = default;

  // Shows `menu`'s items at the pointer, from `form`'s window (the form need not be shown), and
  // returns once the menu is gone. The chosen item's Click runs through ui::RunEvent with the
  // item's own form.
  virtual void PopupMenu(ui::Form& form, ui::Menu& menu) = 0;
};

}  // namespace quorvane::platform
