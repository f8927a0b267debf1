// FrmMenu's design: a form that is never shown, its menu with three items and a separator ahead
// of the last, and how OfficeMenu1 draws them.
#include "core/FrmMenu.h"
#include "ui/Layout.h"

namespace quorvane {

namespace {

// clang-format off
constexpr ui::ControlLayout kControls[] = {
    // name                  container  left top width height caption
    {"mnuFile",              nullptr,   0,   0,  0,    0,     "File"},
    {"mnuShowHide",          nullptr,   0,   0,  0,    0,     "Show/Hide"},
    {"mnuChangeWallpaper",   nullptr,   0,   0,  0,    0,     "Change Wallpaper"},
    {"mnuSeparator",         nullptr,   0,   0,  0,    0,     "-"},
    {"mnuExit",              nullptr,   0,   0,  0,    0,     "Exit"},
};
// clang-format on

const ui::FormLayout kFrmMenuLayout{
    .caption = "FrmMenu",
    .width = 3000,
    .height = 1500,
    .border = ui::BorderStyle::FixedSingle,
    .controls = kControls,
};

}  // namespace

void ApplyFrmMenuLayout(FrmMenu& form) {
  ui::ApplyLayout(form, kFrmMenuLayout);
  ui::OfficeMenu& style = form.OfficeMenu1;
  style.Font = "Tahoma";
  style.drawingstyle = 4;
  style.arrowcolor = ui::FromRgb(0x000000);
  style.backgroundcolor = ui::FromRgb(0xFDFCFA);
  style.bordercolor = ui::FromRgb(0x8A877B);
  style.checkfillcolor = ui::FromRgb(0xE3E7E9);
  style.checkmarkcolor = ui::FromRgb(0x000000);
  style.disabledicontintcolor = ui::FromRgb(0xB5B1A4);
  style.iconshadowcolor = ui::FromRgb(0x929EB2);
  style.menubarbackgroundcolor = ui::FromRgb(0xECE9D8);
  style.menubartextcolor = ui::FromRgb(0x000000);
  style.selectedarrowcolor = ui::FromRgb(0x000000);
  style.selectedcheckbordercolor = ui::FromRgb(0x316AC5);
  style.selectedcheckfillcolor = ui::FromRgb(0x99B5E3);
  style.selectedmenubordercolor = ui::FromRgb(0x316AC5);
  style.selectedmenufillcolor = ui::FromRgb(0xC2D3EE);
  style.selectedmenutextcolor = ui::FromRgb(0x000000);
  style.separatorcolor = ui::FromRgb(0xC5C3B8);
  style.sidebargradientcolor1 = ui::FromRgb(0xDDECFE);
  style.sidebargradientcolor2 = ui::FromRgb(0x81A9E2);
  style.toplevelgradientcolor1 = ui::FromRgb(0xFDFCFA);
  style.toplevelgradientcolor2 = ui::FromRgb(0xF7F6EE);
  style.sidebarcolor = ui::FromRgb(0x000000);
}

}  // namespace quorvane
