#include "icons/FillTree.h"

#include <cstdint>
#include <initializer_list>

#include "core/FrmMain.h"

namespace quorvane {

namespace {

struct Entry {
  const char* text;
  std::int16_t image;
};

void Fill(ui::TreeView& tree, std::initializer_list<Entry> entries) {
  for (const Entry& e : entries) {
    const std::int32_t position = tree.Add(e.text, e.image, e.image);
    tree.Item(position).Tag = static_cast<std::int32_t>(e.image);
    tree.NodeChanged(position);
  }
  tree.Select(1);
}

}  // namespace

void FillCatalogueTrees() {
  FrmMain& form = MainWindow();
  const bool vista = form.OSName == "Windows Vista";

  if (vista) {
    Fill(form.TvDesktop, {{"My Computer", 2}, {"My Network Places", 4}, {"Recycle Bin (Empty)", 5},
                          {"Recycle Bin (Full)", 6}, {"Briefcase", 7}});
    Fill(form.TvStartMenu, {{"EMail", 8}, {"Windows Security", 9}, {"Help and Support", 10},
                            {"Search", 11}, {"Set Program Access and Defaults", 13}});
  } else {
    Fill(form.TvDesktop, {{"My Computer", 2}, {"Internet Explorer", 3}, {"My Network Places", 4},
                          {"Recycle Bin (Empty)", 5}, {"Recycle Bin (Full)", 6}, {"Briefcase", 7}});
    Fill(form.TvStartMenu, {{"EMail", 8}, {"Windows Security", 9}, {"Help and Support", 10},
                            {"Search", 11}, {"Run...", 12}, {"Set Program Access and Defaults", 13}});
  }

  Fill(form.TvExplore, {{"Floppy (3.5'')", 15}, {"Hard Disk", 16}, {"CD-ROM", 17},
                        {"Audio CD", 18}, {"Removal Disk Drive", 19}, {"Network Drive", 20},
                        {"Network Drive (Offline)", 21}, {"RAM Drive", 22}, {"Entire Network", 23},
                        {"Network Service", 24}, {"Workgroup", 25}, {"Network Computer", 26},
                        {"Folder (Closed)", 27}, {"Folder (Open)", 28}, {"My Documents", 29},
                        {"Search Results", 30}});

  Fill(form.TvFileType, {{"Bitmap Image Files (*.bmp)", 31}, {"GIF Image Files (*.gif)", 32},
                         {"JPEG Image Files (*.jpg)", 33}, {"PNG Image Files (*.png)", 34},
                         {"AVI Videos (*.avi)", 35}, {"Windows Media Clips Videos (*.wmv)", 36},
                         {"MPEG Video (*.mpg)", 37}, {"MIDI Sequences (*.mid)", 38},
                         {"Wave Sound Files (*.wav)", 39}, {"MP3 Files (*.mp3)", 40},
                         {"Windows Media Audio Files (*.wma)", 41},
                         {"WordPad Documents (*.wri)", 42}, {"Rich Text Documents (*.rtf)", 43},
                         {"Word Documents (*.doc)", 44}, {"Text Files (*.txt)", 45},
                         {"ACE Archive (*.ace)", 46}, {"RAR Archives (*.rar)", 47},
                         {"ZIP Archives (*.zip)", 48}, {"Configuration Files (*.ini)", 49},
                         {"Microsoft Data Link (*.udl)", 50}, {"Registration Entries (*.reg)", 51},
                         {"Batch Files (*.bat)", 52}, {"Remote Desktop Connection (*.rdp)", 53},
                         {"Default Icon", 54}, {"Shared", 55}, {"Shortcut Overlay", 56}});

  if (vista) {
    Fill(form.TvControlPanel, {{"Control Panel", 57}, {"Taskbar and Start Menu", 58},
                               {"Folder Options", 59}, {"Administrative Tools", 60},
                               {"Network Connections", 61}, {"Fonts", 62},
                               {"Printers and Faxes", 64}, {"Scheduled Tasks", 65}});
  } else {
    Fill(form.TvControlPanel, {{"Control Panel", 57}, {"Taskbar and Start Menu", 58},
                               {"Folder Options", 59}, {"Administrative Tools", 60},
                               {"Network Connections", 61}, {"Fonts", 62},
                               {"Scanners and Cameras", 63}, {"Printers and Faxes", 64},
                               {"Scheduled Tasks", 65}});
  }
}

}  // namespace quorvane
