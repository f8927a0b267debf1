#include "ui/Menu.h"

#include <algorithm>
#include <utility>

#include "ui/Form.h"

namespace quorvane::ui {

Menu::Menu(Form& owner, std::string name) : CaptionedControl(owner, std::move(name)) {}

Menu::Menu(Form& owner, std::string name, Menu& parent)
    : CaptionedControl(owner, std::move(name)), parent_(&parent) {
  parent.items_.push_back(this);
}

Menu::~Menu() {
  if (parent_ != nullptr) {
    auto& siblings = parent_->items_;
    siblings.erase(std::remove(siblings.begin(), siblings.end(), this), siblings.end());
  }
  for (Menu* item : items_) item->parent_ = nullptr;
}

void Menu::Checked(bool value) {
  checked_ = value;
  Notify(Property::Caption);
}

const OfficeMenu* OfficeMenuOf(const Menu& menu) {
  const Form* form = menu.Owner();
  if (form == nullptr) return nullptr;
  for (const Control* control : form->Controls()) {
    if (const auto* style = dynamic_cast<const OfficeMenu*>(control)) return style;
  }
  return nullptr;
}

}  // namespace quorvane::ui
