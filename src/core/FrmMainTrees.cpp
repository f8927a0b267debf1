// FrmMain: a click on a node of a catalogue tree shows the icon of the node's row in the
// preview boxes. TvDesktop's routine passes over its failures statement by statement; the
// other four let a failure end the routine.
#include <exception>
#include <vector>

#include "core/FrmMain.h"
#include "base/Numbers.h"
#include "base/Text.h"
#include "icons/modextracticon.h"

namespace quorvane {

namespace {

// Runs one statement, passing over its failure.
template <class Statement>
bool Guarded(Statement&& statement) {
  try {
    statement();
    return true;
  } catch (const std::exception&) {
    return false;
  }
}

// Finds the row of the selected node, reading the node anew for each row; at the first equal
// row, previews its Current without adding to ILicons.
void PreviewSelectedRow(FrmMain& form, ui::TreeView& tree) {
  for (IconRecord& record : form.IconRecords) {
    if (tree.Item(tree.SelectedItem()).Text != record.Name) continue;
    const std::vector<std::string> pieces = text::Split(record.Current, ",");
    const std::int32_t number = StrictLong(text::Piece(pieces, 1));
    std::int16_t add = 0;
    AddIconImage(text::Piece(pieces, 0), number, add);
    return;
  }
}

}  // namespace

void FrmMain::TvDesktop_Click() {
  for (IconRecord& record : IconRecords) {
    bool equal = false;
    if (!Guarded([&] { equal = TvDesktop.Item(TvDesktop.SelectedItem()).Text == record.Name; })) {
      continue;
    }
    if (!equal) continue;
    std::vector<std::string> pieces;
    std::int32_t number = 0;
    Guarded([&] { pieces = text::Split(record.Current, ","); });
    Guarded([&] { number = StrictLong(text::Piece(pieces, 1)); });
    Guarded([&] {
      std::int16_t add = 0;
      AddIconImage(text::Piece(pieces, 0), number, add);
    });
    return;
  }
}

void FrmMain::TvStartMenu_Click() { PreviewSelectedRow(*this, TvStartMenu); }
void FrmMain::TvExplore_Click() { PreviewSelectedRow(*this, TvExplore); }
void FrmMain::TvFileType_Click() { PreviewSelectedRow(*this, TvFileType); }
void FrmMain::TvControlPanel_Click() { PreviewSelectedRow(*this, TvControlPanel); }

}  // namespace quorvane
