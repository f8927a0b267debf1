// FrmMain: the icon page's changes. A double click on a row (or CmdChange) stages a new icon in
// the row and its node; CmdApply writes the staged rows of the visible tree, CmdDefault takes
// the selected row back to stock, and both rebuild the whole catalogue from the registry;
// CmdReset drops the staging of the selected node. None of these routines has a failure handler
// of its own: a failure goes up to whoever called it.
#include <string>
#include <vector>

#include "base/Int16.h"
#include "core/FrmMain.h"
#include "core/FrmWorking.h"
#include "base/Numbers.h"
#include "base/Text.h"
#include "icons/IconRecordWrites.h"
#include "icons/modextracticon.h"
#include "platform/Application.h"
#include "platform/EventLoop.h"
#include "platform/Forms.h"
#include "platform/MessageBoxes.h"
#include "platform/Service.h"

namespace quorvane {

namespace {

void DoEvents() { platform::Use<platform::EventLoop>().DoEvents(); }

void Message(const std::string& text) {
  platform::Use<platform::MessageBoxes>().MsgBox(
      text, platform::msgbox::kOkOnly | platform::msgbox::kInformation);
}

// A node's Tag as the image number it holds: a number as it stands, nothing as 0, a text read
// as a number; beyond 16 bits an overflow.
std::int16_t ImageNumberOf(const ui::TagValue& tag) {
  std::int32_t number = 0;
  if (const auto* value = std::get_if<std::int32_t>(&tag)) number = *value;
  if (const auto* text = std::get_if<std::string>(&tag)) number = StrictLong(*text);
  return CheckedInt16(number);
}

// The busy display of a write: the hourglass and FrmWorking over the main window, with a yield
// so that they show.
void ShowBusy(const FrmMain& form) {
  auto& application = platform::Use<platform::Application>();
  application.SetMousePointer(platform::kHourglassPointer);
  platform::Use<platform::Forms>().Show(WorkingWindow(), false, form.hWnd);
  DoEvents();
}

void EndBusyAskingForARestart() {
  auto& application = platform::Use<platform::Application>();
  platform::Use<platform::Forms>().Unload(WorkingWindow());
  application.SetMousePointer(platform::kDefaultPointer);
  Message("Please restart to apply the changes");
}

void ShowImage(ui::TreeView& tree, std::int32_t position, std::int16_t image) {
  tree.Item(position).Image = image;
  tree.Item(position).SelectedImage = image;
  tree.NodeChanged(position);
}

}  // namespace

ui::TreeView* FrmMain::VisibleTree() {
  for (ui::TreeView* tree : {&TvDesktop, &TvStartMenu, &TvExplore, &TvFileType, &TvControlPanel}) {
    if (tree->Visible()) return tree;
  }
  return nullptr;
}

void FrmMain::ClickOf(ui::TreeView& tree) {
  if (&tree == &TvDesktop) TvDesktop_Click();
  if (&tree == &TvStartMenu) TvStartMenu_Click();
  if (&tree == &TvExplore) TvExplore_Click();
  if (&tree == &TvFileType) TvFileType_Click();
  if (&tree == &TvControlPanel) TvControlPanel_Click();
}

void FrmMain::DblClickOf(ui::TreeView& tree) {
  if (&tree == &TvDesktop) TvDesktop_DblClick();
  if (&tree == &TvStartMenu) TvStartMenu_DblClick();
  if (&tree == &TvExplore) TvExplore_DblClick();
  if (&tree == &TvFileType) TvFileType_DblClick();
  if (&tree == &TvControlPanel) TvControlPanel_DblClick();
}

// --- staging --------------------------------------------------------------------------------

namespace {

// The row of the selected node (read anew for each row) gets the icon the user picks from its
// Current. TvDesktop marks the node bold before it keeps the row's image number and its
// Backup; the other trees keep the Backup first and then mark the node bold.
void StageSelectedRow(FrmMain& form, ui::TreeView& tree, bool isDesktop) {
  for (IconRecord& record : form.IconRecords) {
    if (tree.Item(tree.SelectedItem()).Text != record.Name) continue;
    const std::vector<std::string> pieces = text::Split(record.Current, ",");
    std::int32_t number = LenientLong(text::Piece(pieces, 1));
    std::string path = text::Piece(pieces, 0);
    const std::string chosen = PickIcon(path, number);
    if (chosen.empty()) return;  // the picker was cancelled

    const std::vector<std::string> picked = text::Split(chosen, ",");
    const std::int16_t image =
        StageIconImage(text::Piece(picked, 0), StrictLong(text::Piece(picked, 1)));
    const std::int32_t node = tree.SelectedItem();
    ShowImage(tree, node, image);
    if (isDesktop) {
      tree.Item(node).Bold = true;
      record.ImageNumber = image;
      if (record.Backup.empty()) record.Backup = record.Current;
    } else {
      if (record.Backup.empty()) record.Backup = record.Current;
      tree.Item(node).Bold = true;
    }
    tree.NodeChanged(node);
    record.Pending = chosen;
    record.Current = chosen;
    form.ClickOf(tree);
    return;
  }
}

}  // namespace

void FrmMain::TvDesktop_DblClick() { StageSelectedRow(*this, TvDesktop, true); }
void FrmMain::TvStartMenu_DblClick() { StageSelectedRow(*this, TvStartMenu, false); }
void FrmMain::TvExplore_DblClick() { StageSelectedRow(*this, TvExplore, false); }
void FrmMain::TvFileType_DblClick() { StageSelectedRow(*this, TvFileType, false); }
void FrmMain::TvControlPanel_DblClick() { StageSelectedRow(*this, TvControlPanel, false); }

void FrmMain::CmdChange_Click() {
  if (PBFileSystem.Visible()) {
    if (ChangeFolderIcon) ChangeFolderIcon();
    return;
  }
  if (!PBPelmoraMain.Visible()) return;
  ui::TreeView* tree = VisibleTree();
  if (tree == nullptr) return;
  // The walk only decides whether to go on: the double click finds its row by itself.
  for (std::int32_t i = 1; i <= tree->Count(); ++i) {
    if (tree->SelectedItem() == i) {
      DblClickOf(*tree);
      return;
    }
  }
}

// --- applying, default and reset --------------------------------------------------------------

namespace {

// The position over CmdWindow that opens the tree's category again after the rebuild.
// TvExplore has none: the earlier position stays.
void RememberCategory(FrmMain& form, const ui::TreeView& tree) {
  if (&tree == &form.TvDesktop) form.CategoryClickX = 30;
  if (&tree == &form.TvStartMenu) form.CategoryClickX = 1800;
  if (&tree == &form.TvFileType) form.CategoryClickX = 3400;
  if (&tree == &form.TvControlPanel) form.CategoryClickX = 4900;
}

}  // namespace

void FrmMain::EmptyCatalogue() {
  for (ui::TreeView* tree : {&TvDesktop, &TvStartMenu, &TvExplore, &TvFileType, &TvControlPanel}) {
    tree->Clear();
  }
  ILicons.Clear();
  for (IconRecord& record : IconRecords) record = IconRecord{};
}

void FrmMain::ReloadKeepingCategory() {
  const std::int16_t keptX = CategoryClickX;
  Form_Load();
  CategoryClickX = keptX;
}

void FrmMain::CmdApply_Click() {
  CategoryClickY = 30;
  if (!PBPelmoraMain.Visible()) {
    if (PBAppearance.Visible()) {
      if (ApplyAppearance) ApplyAppearance();
      if (mRestartNeeded != 0) Message("Please restart to apply the chages");
      mRestartNeeded = 0;
    }
    return;
  }
  ShowBusy(*this);

  if (ui::TreeView* tree = VisibleTree()) {
    const std::int32_t count = tree->Count();
    for (std::int32_t i = 1; i <= count; ++i) {
      if (!tree->Item(i).Bold) continue;
      // Every row of the node's name is written, not only the first.
      for (IconRecord& record : IconRecords) {
        if (record.Name != tree->Item(i).Text) continue;
        WriteIconRecord(Reg(), OSName, record.Name, record.Pending);
        if (tree == &TvDesktop) tree->Item(i).Tag = static_cast<std::int32_t>(record.ImageNumber);
        tree->Item(i).Bold = false;
        tree->NodeChanged(i);
        RememberCategory(*this, *tree);
      }
    }
  }
  DoEvents();

  EmptyCatalogue();
  ReloadKeepingCategory();
  DoEvents();
  CmdWindow_Click();

  EndBusyAskingForARestart();
}

void FrmMain::CmdDefault_Click() {
  CategoryClickY = 30;
  if (!PBPelmoraMain.Visible()) {
    if (PBFileSystem.Visible()) {
      if (RestoreFolderIcon) RestoreFolderIcon();
    } else if (PBAppearance.Visible()) {
      if (ApplyAppearanceDefaults) ApplyAppearanceDefaults();
    }
    return;
  }
  ShowBusy(*this);

  // Only the selected row goes back to stock, staged or not.
  if (ui::TreeView* tree = VisibleTree()) {
    for (IconRecord& record : IconRecords) {
      if (record.Name != tree->Item(tree->SelectedItem()).Text) continue;
      RestoreIconRecord(Reg(), OSName, record.Name, record.Default);
      RememberCategory(*this, *tree);
      break;
    }
  }
  DoEvents();

  EmptyCatalogue();
  DoEvents();
  ReloadKeepingCategory();
  CmdWindow_Click();
  DoEvents();

  EndBusyAskingForARestart();
}

void FrmMain::CmdReset_Click() {
  ui::TreeView* tree = VisibleTree();
  if (tree == nullptr) return;
  if (!tree->Item(tree->SelectedItem()).Bold) return;
  const std::int32_t node = tree->SelectedItem();
  ShowImage(*tree, node, ImageNumberOf(tree->Item(node).Tag));
  tree->Item(node).Bold = false;
  tree->NodeChanged(node);
  for (IconRecord& record : IconRecords) {
    if (record.Name != tree->Item(tree->SelectedItem()).Text) continue;
    record.Current = record.Backup;
    ClickOf(*tree);
    return;
  }
}

}  // namespace quorvane
