// FrmMain and its tray icon: the icon's mouse events, decoded on PicPopup, and the menu they pop
// up from FrmMenu, made at the first right click and kept loaded and hidden afterwards.
#include "core/FrmMainTray.h"

#include <bit>
#include <memory>

#include "core/FrmMain.h"
#include "core/FrmMenu.h"
#include "core/Regimes.h"
#include "platform/Application.h"
#include "platform/Menus.h"
#include "platform/Service.h"
#include "ui/Controls.h"

namespace quorvane {

namespace core {

namespace {

// clang-format off
constexpr TrayEvent kTrayEvents[] = {
    {512.0F, "MouseMove",     TrayAction::None},
    {514.0F, "Left Up",       TrayAction::None},
    {513.0F, "LeftDown",      TrayAction::None},
    {515.0F, "LeftDbClick",   TrayAction::ShowMain},
    {520.0F, "MiddleUp",      TrayAction::None},
    {519.0F, "MiddleDown",    TrayAction::None},
    {521.0F, "MiddleDbClick", TrayAction::None},
    {517.0F, "RightUp",       TrayAction::PopupMenu},
    {516.0F, "RightDown",     TrayAction::None},
    {518.0F, "RightDbClick",  TrayAction::None},
};
// clang-format on

}  // namespace

std::span<const TrayEvent> TrayEvents() { return kTrayEvents; }

float TrayMessageOf(float x) {
  // The binding gives positions at a fixed 15 twips to the pixel, which is the screen's here.
  return x / static_cast<float>(ui::kTwipsPerPixel);
}

const TrayEvent* DecodeTrayEvent(float message) {
  // Compared as bit patterns: a message that is not a whole pixel matches nothing.
  const auto bits = std::bit_cast<std::uint32_t>(message);
  for (const TrayEvent& event : kTrayEvents) {
    if (std::bit_cast<std::uint32_t>(event.message) == bits) return &event;
  }
  return nullptr;
}

}  // namespace core

void FrmMain::PicPopup_MouseMove(std::int16_t /*Button*/, std::int16_t /*Shift*/, float X,
                                 float /*Y*/) {
  // Every failure here is passed over, statement by statement.
  float message = 0.0F;
  const core::TrayEvent* event = nullptr;
  core::ResumeEach([&] { message = core::TrayMessageOf(X); },
                   [&] { event = core::DecodeTrayEvent(message); });
  if (event == nullptr) return;
  switch (event->action) {
    case core::TrayAction::ShowMain:
      core::ResumeEach([&] { ShowFromTray(); });
      break;
    case core::TrayAction::PopupMenu:
      core::ResumeEach([&] { PopupTrayMenu(); });
      break;
    case core::TrayAction::None:
      break;
  }
}

void FrmMain::ShowFromTray() {
  // Shown and brought to the front; mnuShowHide's next effect still goes by visibility alone.
  Visible(true);
  platform::Application& application = platform::Use<platform::Application>();
  application.SetMainWindowVisible(true);
  application.FocusMainWindow();
}

FrmMenu& FrmMain::TrayMenuForm() {
  if (!mTrayMenu) {
    mTrayMenu = std::make_shared<FrmMenu>();
    mTrayMenu->Load();
  }
  return *mTrayMenu;
}

bool FrmMain::TrayMenuFormLoaded() const { return mTrayMenu && mTrayMenu->Loaded(); }

void FrmMain::PopupTrayMenu() {
  FrmMenu& menu = TrayMenuForm();
  platform::Use<platform::Menus>().PopupMenu(*this, menu.mnuFile);
}

}  // namespace quorvane
