// FrmMain: a click on a node of a catalogue tree shows the icon of the node's row in the
// preview boxes. TvDesktop's routine passes over its failures statement by statement; the
// other four let a failure end the routine.
#include <vector>

#include "core/FrmMain.h"
#include "core/Regimes.h"
#include "base/Numbers.h"
#include "base/Text.h"
#include "icons/modextracticon.h"

namespace quorvane {

namespace {

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
    // A row whose comparison fails is passed over.
    bool equal = false;
    if (!core::AsResult(
            [&] { equal = TvDesktop.Item(TvDesktop.SelectedItem()).Text == record.Name; })) {
      continue;
    }
    if (!equal) continue;
    std::vector<std::string> pieces;
    std::int32_t number = 0;
    core::ResumeEach([&] { pieces = text::Split(record.Current, ","); },
                     [&] { number = StrictLong(text::Piece(pieces, 1)); },
                     [&] {
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
