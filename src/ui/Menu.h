#pragma once
// Menus of a form: a menu and its items are controls of the form, each with its caption, and
// an item's Click runs when the user chooses it. An item whose caption is "-" is a separator.
// A form's OfficeMenu holds how its menus are drawn (owner-drawn, in an office style): the
// face and every colour, as stored properties that the program never changes at run time.
#include <cstdint>
#include <string>
#include <vector>

#include "ui/Controls.h"

namespace quorvane::ui {

class Menu : public CaptionedControl {
 public:
  // A menu of the form's own (a top-level one).
  Menu(Form& owner, std::string name);
  // An item of `parent`, after the items made before it.
  Menu(Form& owner, std::string name, Menu& parent);
  ~Menu() override;

  // The menu this item stands in; null for a top-level menu.
  Menu* Parent() const { return parent_; }
  // The items, in the order they were made.
  const std::vector<Menu*>& Items() const { return items_; }
  bool IsSeparator() const { return Caption() == "-"; }
  bool Checked() const { return checked_; }
  void Checked(bool value);

 private:
  Menu* parent_ = nullptr;
  std::vector<Menu*> items_;
  bool checked_ = false;
};

// A colour as the design tables write it, 0xRRGGBB, turned into the model's 0xBBGGRR.
constexpr std::uint32_t FromRgb(std::uint32_t rgb) {
  return ((rgb & 0xFF) << 16) | (rgb & 0xFF00) | ((rgb >> 16) & 0xFF);
}

// How the form's menus are drawn; no window of its own. Colours are 0xBBGGRR.
class OfficeMenu : public Control {
 public:
  using Control::Control;

  std::string Font = "Tahoma";
  std::int16_t drawingstyle = 0;
  std::uint32_t arrowcolor = 0;
  std::uint32_t backgroundcolor = 0xFFFFFF;
  std::uint32_t bordercolor = 0;
  std::uint32_t checkfillcolor = 0xFFFFFF;
  std::uint32_t checkmarkcolor = 0;
  std::uint32_t disabledicontintcolor = 0x808080;
  std::uint32_t iconshadowcolor = 0x808080;
  std::uint32_t menubarbackgroundcolor = 0xFFFFFF;
  std::uint32_t menubartextcolor = 0;
  std::uint32_t selectedarrowcolor = 0;
  std::uint32_t selectedcheckbordercolor = 0;
  std::uint32_t selectedcheckfillcolor = 0xFFFFFF;
  std::uint32_t selectedmenubordercolor = 0;
  std::uint32_t selectedmenufillcolor = 0xFFFFFF;
  std::uint32_t selectedmenutextcolor = 0;
  std::uint32_t separatorcolor = 0x808080;
  std::uint32_t sidebargradientcolor1 = 0xFFFFFF;
  std::uint32_t sidebargradientcolor2 = 0xFFFFFF;
  std::uint32_t toplevelgradientcolor1 = 0xFFFFFF;
  std::uint32_t toplevelgradientcolor2 = 0xFFFFFF;
  std::uint32_t sidebarcolor = 0;
};

// The OfficeMenu among the controls of the form a menu belongs to; null when it has none.
const OfficeMenu* OfficeMenuOf(const Menu& menu);

}  // namespace quorvane::ui
