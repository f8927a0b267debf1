#include "icons/IconRecordWrites.h"

#include <algorithm>
#include <initializer_list>
#include <utility>
#include <vector>

#include "appearance/Desktop.h"

namespace quorvane {

namespace {

constexpr char kVista[] = "Windows Vista";
constexpr char kShellIcons[] =
    "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Icons";
// One fixed user's hive: a literal, not the running user's, so elsewhere its keys are made.
constexpr char kFixedUser[] = "HKEY_USERS\\S-1-5-21-789336058-484061587-839522115-1003";

// Class ids of more than one row.
constexpr char kMyComputer[] = "{20D04FE0-3AEA-1069-A2D8-08002B30309D}";
constexpr char kInternetExplorer[] = "{871C5380-42A0-1069-A2EA-08002B30309D}";
constexpr char kNetworkVista[] = "{F02C1A0D-BE21-4350-88B0-7367FC96EF3C}";
constexpr char kNetwork[] = "{208D2C60-3AEA-1069-A2D7-08002B30309D}";
constexpr char kRecycleBin[] = "{645FF040-5081-101B-9F08-00AA002F954E}";
constexpr char kBriefcase[] = "{85BBD920-42A0-1069-A2E4-08002B30309D}";
constexpr char kMyDocuments[] = "{450D8FBA-AD25-11D0-98A8-0800361B1103}";
constexpr char kSearchResults[] = "{e17d4fc0-5564-11d1-83f2-00a0c90dc849}";

enum class Action { Write, Kill };

// One registry change: the row's location written to, or the value deleted from, `key`.
struct Step {
  Action action;
  std::string key;
  std::string valueName;  // "" is the key's default value
};
using Steps = std::vector<Step>;

struct Row {
  std::string name;
  Steps apply;    // WriteIconRecord
  Steps restore;  // RestoreIconRecord
};

Step Write(const std::string& key, const std::string& valueName = "") {
  return Step{Action::Write, key, valueName};
}

// The three places a class id keeps its DefaultIcon.
std::string RootA(const std::string& clsid) {
  return "HKEY_CLASSES_ROOT\\CLSID\\" + clsid + "\\DefaultIcon";
}
std::string RootB(const std::string& clsid) {
  return "HKEY_CURRENT_USER\\Software\\Classes\\CLSID\\" + clsid + "\\DefaultIcon";
}
std::string RootC(const std::string& clsid) {
  return "HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\CLSID\\" +
         clsid + "\\DefaultIcon";
}

// Writes of one value of the class id under the roots named by their letters, in that order.
Steps Under(const char* roots, const std::string& clsid, const std::string& valueName = "") {
  Steps steps;
  for (const char* r = roots; *r != '\0'; ++r) {
    switch (*r) {
      case 'A': steps.push_back(Write(RootA(clsid), valueName)); break;
      case 'B': steps.push_back(Write(RootB(clsid), valueName)); break;
      case 'C': steps.push_back(Write(RootC(clsid), valueName)); break;
      default: break;
    }
  }
  return steps;
}

// A row whose two routines write the same keys.
Row Both(const std::string& name, Steps steps) { return Row{name, steps, steps}; }

// A row whose two routines differ.
Row Apart(const std::string& name, Steps apply, Steps restore) {
  return Row{name, std::move(apply), std::move(restore)};
}

// A row of the shell's override list: its icon is the value of that number; the restore
// deletes it.
Row ShellIcon(const std::string& name, const std::string& number) {
  return Apart(name, {Write(kShellIcons, number)}, {Step{Action::Kill, kShellIcons, number}});
}

// A row of a class id's default value under the roots named by letters.
Row ClassIcon(const std::string& name, const std::string& clsid, const char* roots) {
  return Both(name, Under(roots, clsid));
}

// A file type: the DefaultIcon of each class, directly below HKEY_CLASSES_ROOT, in order.
Row FileType(const std::string& name, std::initializer_list<const char*> classes) {
  Steps steps;
  for (const char* cls : classes) {
    steps.push_back(Write(std::string("HKEY_CLASSES_ROOT\\") + cls + "\\DefaultIcon"));
  }
  return Both(name, steps);
}

// The chain of rows, in the order the names are compared, for one side of the version test.
std::vector<Row> BuildChain(bool vista) {
  const std::string mail = std::string("HKEY_LOCAL_MACHINE\\SOFTWARE\\Clients\\Mail\\") +
                           (vista ? "Microsoft Outlook" : "Outlook Express") + "\\DefaultIcon";
  return {
      ShellIcon("Desktop", "34"),
      ClassIcon("My Computer", kMyComputer, "ABC"),
      ClassIcon("Internet Explorer", kInternetExplorer, "CB"),
      // The restore under "Windows Vista" goes to the class id of "Internet Explorer".
      vista ? Apart("My Network Places", Under("A", kNetworkVista), Under("A", kInternetExplorer))
            : Apart("My Network Places", Under("ABC", kNetwork), Under("A", kNetwork)),
      Both("Recycle Bin (Empty)", {Write(RootA(kRecycleBin)), Write(RootA(kRecycleBin), "Empty"),
                                   Write(RootC(kRecycleBin)), Write(RootC(kRecycleBin), "Empty")}),
      // The restore leaves B as the last apply wrote it.
      Apart("Recycle Bin (Full)", Under("ACB", kRecycleBin, "Full"),
            Under("AC", kRecycleBin, "Full")),
      Both("Briefcase", {Write("HKEY_CLASSES_ROOT\\Briefcase\\DefaultIcon"),
                         Write(RootA(kBriefcase))}),
      Both("EMail", {Write(mail)}),
      ClassIcon("Windows Security", "{2559a1f2-21d7-11d4-bdaf-00c04f60b9f0}", "A"),
      ClassIcon("Help and Support", "{2559a1f1-21d7-11d4-bdaf-00c04f60b9f0}", "A"),
      ClassIcon("Search", "{2559a1f0-21d7-11d4-bdaf-00c04f60b9f0}", "A"),
      ClassIcon("Run...", "{2559a1f3-21d7-11d4-bdaf-00c04f60b9f0}", "A"),
      ClassIcon("Set Program Access and Defaults", "{2559a1f7-21d7-11d4-bdaf-00c04f60b9f0}", "A"),
      // The one override that the restore writes instead of deleting: it keeps the stock.
      Both("Program Group", {Write(kShellIcons, "36")}),
      ShellIcon("Floppy (3.5'')", "6"),
      ShellIcon("Hard Disk", "8"),
      ShellIcon("CD-ROM", "11"),
      ShellIcon("Audio CD", "40"),
      ShellIcon("Removal Disk Drive", "7"),
      ShellIcon("Network Drive", "9"),
      ShellIcon("Network Drive (Offline)", "10"),
      ShellIcon("RAM Drive", "12"),
      ShellIcon("Entire Network", "13"),
      ShellIcon("Network Service", "14"),
      ShellIcon("Workgroup", "18"),
      ShellIcon("Network Computer", "15"),
      ShellIcon("Folder (Closed)", "3"),
      ShellIcon("Folder (Open)", "4"),
      Both("My Documents",
           {Write(std::string(kFixedUser) + "\\Software\\Classes\\CLSID\\" + kMyDocuments +
                  "\\DefaultIcon"),
            Write(std::string(kFixedUser) +
                  "\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\CLSID\\" +
                  kMyDocuments + "\\DefaultIcon"),
            Write(std::string(kFixedUser) + "_Classes\\CLSID\\" + kMyDocuments +
                  "\\DefaultIcon")}),
      Both("Search Results", {Write(std::string(kFixedUser) + "\\Software\\Classes\\CLSID\\" +
                                    kSearchResults + "\\DefaultIcon")}),
      FileType("Bitmap Image Files (*.bmp)", {"Paint.Picture"}),
      FileType("GIF Image Files (*.gif)", {"giffile"}),
      FileType("JPEG Image Files (*.jpg)", {"jpegfile"}),
      FileType("PNG Image Files (*.png)", {"pngfile"}),
      FileType("AVI Videos (*.avi)", {"avifile", "WMP11.AssocFile.AVI"}),
      FileType("Windows Media Clips Videos (*.wmv)", {"wmvfile", "WMP11.AssocFile.WMV"}),
      FileType("MPEG Video (*.mpg)", {"mpegfile", "WMP11.AssocFile.MPEG"}),
      FileType("MIDI Sequences (*.mid)", {"midfile", "WMP11.AssocFile.MIDI"}),
      FileType("Wave Sound Files (*.wav)", {"SoundRec", "WMP11.AssocFile.WAV"}),
      FileType("MP3 Files (*.mp3)", {"mp3file", "WMP11.AssocFile.MP3"}),
      FileType("Windows Media Audio Files (*.wma)", {"wmafile", "WMP11.AssocFile.WMA"}),
      FileType("WordPad Documents (*.wri)", {"wrifile"}),
      FileType("Rich Text Documents (*.rtf)", {"rtffile"}),
      FileType("Word Documents (*.doc)", {"Word.Document.8"}),
      FileType("Text Files (*.txt)", {"txtfile"}),
      // The two archive kinds share one class, and so one icon.
      FileType("ACE Archive (*.ace)", {"WinRAR"}),
      FileType("RAR Archives (*.rar)", {"WinRAR"}),
      FileType("ZIP Archives (*.zip)", {"WinRAR.ZIP"}),
      FileType("Configuration Files (*.ini)", {"inifile"}),
      FileType("Microsoft Data Link (*.udl)", {"MSDASC"}),
      FileType("Registration Entries (*.reg)", {"regfile"}),
      FileType("Batch Files (*.bat)", {"batfile"}),
      FileType("Remote Desktop Connection (*.rdp)", {"RDP.File"}),
      ShellIcon("Default Icon", "0"),
      ShellIcon("Shared", "28"),
      ShellIcon("Shortcut Overlay", "29"),
      ClassIcon("Control Panel", "{21EC2020-3AEA-1069-A2DD-08002B30309D}", "ABC"),
      ClassIcon("Taskbar and Start Menu", "{0DF44EAA-FF21-4412-828E-260A8728E7F1}", "A"),
      ClassIcon("Folder Options", "{6DFD7C5C-2451-11d3-A299-00C04F8EF6AF}", "A"),
      ClassIcon("Administrative Tools", "{D20EA4E1-3957-11d2-A40B-0C5020524153}", "A"),
      ClassIcon("Network Connections", "{7007ACC7-3202-11D1-AAD2-00805FC1270E}", "A"),
      ClassIcon("Fonts", "{D20EA4E1-3957-11d2-A40B-0C5020524152}", "A"),
      ClassIcon("Scanners and Cameras", "{E211B736-43FD-11D1-9EFB-0000F8757FCD}", "A"),
      ClassIcon("Printers and Faxes", "{2227A280-3AEA-1069-A2DE-08002B30309D}", "A"),
      ClassIcon("Scheduled Tasks", "{D6277990-4C6A-11CF-8D87-00AA0060F5BF}", "A"),
  };
}

const std::vector<Row>& Chain(const std::string& osName) {
  static const std::vector<Row> vista = BuildChain(true);
  static const std::vector<Row> other = BuildChain(false);
  return osName == kVista ? vista : other;
}

// The first row of that exact name, or none.
const Row* FindRow(const std::string& osName, const std::string& name) {
  const std::vector<Row>& chain = Chain(osName);
  const auto row =
      std::find_if(chain.begin(), chain.end(), [&](const Row& r) { return r.name == name; });
  return row == chain.end() ? nullptr : &*row;
}

void Perform(AdvRegistryAccess& reg, const Steps& steps, const std::string& location) {
  for (const Step& step : steps) {
    if (step.action == Action::Write) {
      reg.WriteString(step.key, step.valueName, location);
    } else {
      reg.KillValue(step.key, step.valueName);
    }
  }
}

// After each row, written or not, the shell is told in this order.
void RefreshShell() {
  RefreshDesktopView();
  BroadcastShellChange();
  ToggleShellIconSize();
}

}  // namespace

void WriteIconRecord(AdvRegistryAccess& reg, const std::string& osName, const std::string& name,
                     const std::string& location) {
  if (const Row* row = FindRow(osName, name)) Perform(reg, row->apply, location);
  RefreshShell();
}

void RestoreIconRecord(AdvRegistryAccess& reg, const std::string& osName,
                       const std::string& name, const std::string& location) {
  if (const Row* row = FindRow(osName, name)) Perform(reg, row->restore, location);
  RefreshShell();
}

}  // namespace quorvane
