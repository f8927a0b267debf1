#include "icons/Catalogue.h"

#include <array>
#include <vector>

#include "core/FrmMain.h"
#include "core/MainModule.h"
#include "base/Numbers.h"
#include "base/Text.h"
#include "icons/modextracticon.h"

namespace quorvane {

namespace {

constexpr char kVista[] = "Windows Vista";
constexpr char kShellIcons[] =
    "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Icons";
constexpr char kFixedUserKey[] =
    "HKEY_USERS\\S-1-5-21-789336058-484061587-839522115-1003\\Software\\";
constexpr char kOlderProductKey[] = "HKEY_CURRENT_USER\\Software\\Talvenor\\Mirefold\\Pelmora";

// How a row turns the value it read into its location and image.
enum class Steps { A, B, C, D, E, F, G, H, Doc };

// Where a row's number is read strictly (a text that is no number is a failure) or leniently.
enum class Number { Strict, Lenient };

struct Row {
  const char* name;
  const char* keyVista;   // full key, or a bare class id under HKEY_CLASSES_ROOT\CLSID
  const char* keyOther;
  const char* valueRead;  // "" is the key's default value
  const char* stockVista;
  const char* stockOther;
  Steps steps;
  const char* valueName = nullptr;  // set by the seven rows that name theirs
  Number number = Number::Strict;
};

// A file type's key: the class's DefaultIcon.
#define FILE_TYPE(cls) "HKEY_CLASSES_ROOT\\" cls "\\DefaultIcon"
#define WMP(vista, other) FILE_TYPE(vista), FILE_TYPE(other)
#define SAME_CLASS(cls) FILE_TYPE(cls), FILE_TYPE(cls)
#define PLAYER "%ProgramFiles%\\Windows Media Player\\wmplayer.exe,1"
#define WORDPAD "%ProgramFiles%\\Windows NT\\Accessories\\WORDPAD.EXE"
#define ARCHIVER "%ProgramFiles%\\WinRAR\\WinRAR.exe,0"

// The rows in row order. A key of the form "{...}" is HKEY_CLASSES_ROOT\CLSID\{...}\DefaultIcon.
const std::array<Row, 65> kRows = {{
    // File types.
    {"Bitmap Image Files (*.bmp)", SAME_CLASS("Paint.Picture"), "",
     "%SystemRoot%\\System32\\imageres.dll,64", "shimgvw.dll,1", Steps::A},
    {"GIF Image Files (*.gif)", SAME_CLASS("giffile"), "",
     "%SystemRoot%\\System32\\imageres.dll,65", "shimgvw.dll,2", Steps::A},
    {"JPEG Image Files (*.jpg)", SAME_CLASS("jpegfile"), "",
     "%SystemRoot%\\System32\\imageres.dll,66", "shimgvw.dll,3", Steps::A},
    {"PNG Image Files (*.png)", SAME_CLASS("pngfile"), "",
     "%SystemRoot%\\System32\\imageres.dll,77", "shimgvw.dll,4", Steps::A},
    {"AVI Videos (*.avi)", WMP("WMP11.AssocFile.AVI", "AVIFile"), "",
     "%SystemRoot%\\system32\\wmploc.dll,58", PLAYER, Steps::A},
    {"Windows Media Clips Videos (*.wmv)", WMP("WMP11.AssocFile.WMV", "WMVFile"), "",
     "%SystemRoot%\\system32\\wmploc.dll,62", PLAYER, Steps::A},
    {"MPEG Video (*.mpg)", WMP("WMP11.AssocFile.MPEG", "mpegfile"), "",
     "%SystemRoot%\\system32\\wmploc.dll,60", PLAYER, Steps::A},
    {"MIDI Sequences (*.mid)", WMP("WMP11.AssocFile.MIDI", "MIDFile"), "",
     "%SystemRoot%\\system32\\wmploc.dll,57", PLAYER, Steps::A},
    {"Wave Sound Files (*.wav)", WMP("WMP11.AssocFile.WAV", "SoundRec"), "",
     "%SystemRoot%\\system32\\wmploc.dll,61", PLAYER, Steps::A},
    {"MP3 Files (*.mp3)", WMP("WMP11.AssocFile.MP3", "mp3file"), "",
     "%SystemRoot%\\system32\\wmploc.dll,59", PLAYER, Steps::A},
    {"Windows Media Audio Files (*.wma)", WMP("WMP11.AssocFile.WMA", "wmafile"), "",
     "%SystemRoot%\\system32\\wmploc.dll,62", PLAYER, Steps::A},
    {"WordPad Documents (*.wri)", WMP("Wordpad.Document.1", "wrifile"), "", WORDPAD ",0",
     WORDPAD ",0", Steps::B},
    {"Rich Text Documents (*.rtf)", SAME_CLASS("rtffile"), "", WORDPAD ",2", WORDPAD ",2",
     Steps::B},
    {"Word Documents (*.doc)", "", "", "", "", "", Steps::Doc},
    {"Text Files (*.txt)", SAME_CLASS("txtfile"), "", "shell32.dll,70", "shell32.dll,70", Steps::A},
    {"ACE Archive (*.ace)", SAME_CLASS("WinRAR"), "", ARCHIVER, ARCHIVER, Steps::C},
    {"RAR Archives (*.rar)", SAME_CLASS("WinRAR"), "", ARCHIVER, ARCHIVER, Steps::C},
    {"ZIP Archives (*.zip)", SAME_CLASS("WinRAR.ZIP"), "", ARCHIVER, ARCHIVER, Steps::C},
    {"Configuration Files (*.ini)", SAME_CLASS("inifile"), "", "shell32.dll,69", "shell32.dll,69",
     Steps::A},
    {"Microsoft Data Link (*.udl)", SAME_CLASS("MSDASC"), "", "oledb32.dll,0", "oledb32.dll,0",
     Steps::A},
    {"Registration Entries (*.reg)", SAME_CLASS("regfile"), "", "%SystemRoot%\\regedit.exe,0",
     "%SystemRoot%\\regedit.exe,0", Steps::A},
    {"Batch Files (*.bat)", SAME_CLASS("batfile"), "", "shell32.dll,71", "shell32.dll,71", Steps::A},
    {"Remote Desktop Connection (*.rdp)", SAME_CLASS("RDP.File"), "", "mstsc.exe,0", "mstsc.exe,0",
     Steps::A},
    // Shell icons that files and the desktop show.
    {"Default Icon", kShellIcons, kShellIcons, "0", "shell32.dll,0", "shell32.dll,0", Steps::D},
    {"Shared", kShellIcons, kShellIcons, "28", "shell32.dll,28", "shell32.dll,28", Steps::D},
    {"Shortcut Overlay", kShellIcons, kShellIcons, "29", "shell32.dll,29", "shell32.dll,29", Steps::D},
    {"Desktop", kShellIcons, kShellIcons, "34", "shell32.dll,34", "shell32.dll,34", Steps::E, "34",
     Number::Lenient},
    // Desktop and Start Menu objects.
    {"My Computer", "{20D04FE0-3AEA-1069-A2D8-08002B30309D}",
     "{20D04FE0-3AEA-1069-A2D8-08002B30309D}", "", "Explorer.exe,0", "Explorer.exe,0", Steps::G,
     ""},
    {"Internet Explorer", "{871C5380-42A0-1069-A2EA-08002B30309D}",
     "HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\CLSID\\"
     "{871C5380-42A0-1069-A2EA-08002B30309D}\\DefaultIcon",
     "", "ieframe.dll,-190", "shdoclc.dll,0", Steps::F, ""},
    {"My Network Places", "{F02C1A0D-BE21-4350-88B0-7367FC96EF3C}",
     "{208D2C60-3AEA-1069-A2D7-08002B30309D}", "",
     "%systemroot%\\system32\\NetworkExplorer.dll,0", "shell32.dll,17", Steps::H, ""},
    {"Recycle Bin (Empty)", "{645FF040-5081-101B-9F08-00AA002F954E}",
     "{645FF040-5081-101B-9F08-00AA002F954E}", "", "shell32.dll,31", "shell32.dll,31", Steps::F, "",
     Number::Lenient},
    {"Recycle Bin (Full)", "{645FF040-5081-101B-9F08-00AA002F954E}",
     "{645FF040-5081-101B-9F08-00AA002F954E}", "Full", "shell32.dll,32", "shell32.dll,32",
     Steps::H, "Full", Number::Lenient},
    {"Briefcase", "{85BBD920-42A0-1069-A2E4-08002B30309D}",
     "{85BBD920-42A0-1069-A2E4-08002B30309D}", "", "syncui.dll,0", "syncui.dll,0", Steps::H, ""},
    {"EMail", "HKEY_LOCAL_MACHINE\\SOFTWARE\\Clients\\Mail\\Microsoft Outlook\\DefaultIcon",
     "HKEY_LOCAL_MACHINE\\SOFTWARE\\Clients\\Mail\\Outlook Express\\DefaultIcon", "",
     "D:\\PROGRA~1\\MICROS~2\\Office12\\OUTLOOK.EXE,7",
     "%ProgramFiles%\\Outlook Express\\msimn.exe,0", Steps::F},
    {"Windows Security", "{2559a1f2-21d7-11d4-bdaf-00c04f60b9f0}",
     "{2559a1f2-21d7-11d4-bdaf-00c04f60b9f0}", "", "shell32.dll,47", "shell32.dll,47", Steps::F},
    {"Help and Support", "{2559a1f1-21d7-11d4-bdaf-00c04f60b9f0}",
     "{2559a1f1-21d7-11d4-bdaf-00c04f60b9f0}", "", "shell32.dll,23", "shell32.dll,23", Steps::F},
    {"Search", "{2559a1f0-21d7-11d4-bdaf-00c04f60b9f0}", "{2559a1f0-21d7-11d4-bdaf-00c04f60b9f0}",
     "", "shell32.dll,22", "shell32.dll,22", Steps::F},
    {"Run...", "{2559a1f3-21d7-11d4-bdaf-00c04f60b9f0}", "{2559a1f3-21d7-11d4-bdaf-00c04f60b9f0}",
     "", "shell32.dll,24", "shell32.dll,24", Steps::F},
    {"Set Program Access and Defaults", "{2559a1f7-21d7-11d4-bdaf-00c04f60b9f0}",
     "{2559a1f7-21d7-11d4-bdaf-00c04f60b9f0}", "", "moricons.dll,113", "moricons.dll,113",
     Steps::F},
    // Drive, network and folder kinds, with the program group.
    {"Program Group", kShellIcons, kShellIcons, "36", "shell32.dll,36", "shell32.dll,36", Steps::F},
    {"Floppy (3.5'')", kShellIcons, kShellIcons, "6", "shell32.dll,6", "shell32.dll,6", Steps::F},
    {"Hard Disk", kShellIcons, kShellIcons, "8", "shell32.dll,8", "shell32.dll,8", Steps::F},
    {"CD-ROM", kShellIcons, kShellIcons, "11", "shell32.dll,11", "shell32.dll,11", Steps::F},
    {"Audio CD", kShellIcons, kShellIcons, "40", "shell32.dll,40", "shell32.dll,40", Steps::F},
    {"Removal Disk Drive", kShellIcons, kShellIcons, "7", "shell32.dll,7", "shell32.dll,7", Steps::F},
    {"Network Drive", kShellIcons, kShellIcons, "9", "shell32.dll,9", "shell32.dll,9", Steps::F},
    {"Network Drive (Offline)", kShellIcons, kShellIcons, "10", "shell32.dll,10", "shell32.dll,10",
     Steps::F},
    {"RAM Drive", kShellIcons, kShellIcons, "12", "shell32.dll,12", "shell32.dll,12", Steps::F},
    {"Entire Network", kShellIcons, kShellIcons, "13", "shell32.dll,13", "shell32.dll,13", Steps::F},
    {"Network Service", kShellIcons, kShellIcons, "14", "shell32.dll,14", "shell32.dll,14", Steps::F},
    {"Workgroup", kShellIcons, kShellIcons, "18", "shell32.dll,18", "shell32.dll,18", Steps::F},
    {"Network Computer", kShellIcons, kShellIcons, "15", "shell32.dll,15", "shell32.dll,15",
     Steps::F},
    {"Folder (Closed)", kShellIcons, kShellIcons, "3", "shell32.dll,3", "shell32.dll,3", Steps::F},
    {"Folder (Open)", kShellIcons, kShellIcons, "4", "shell32.dll,4", "shell32.dll,4", Steps::F},
    {"My Documents",
     "HKEY_USERS\\S-1-5-21-789336058-484061587-839522115-1003\\Software\\Microsoft\\Windows\\"
     "CurrentVersion\\Explorer\\CLSID\\{450D8FBA-AD25-11D0-98A8-0800361B1103}\\DefaultIcon",
     "HKEY_USERS\\S-1-5-21-789336058-484061587-839522115-1003\\Software\\Microsoft\\Windows\\"
     "CurrentVersion\\Explorer\\CLSID\\{450D8FBA-AD25-11D0-98A8-0800361B1103}\\DefaultIcon",
     "", "mydocs.dll,0", "mydocs.dll,0", Steps::F},
    {"Search Results",
     "HKEY_USERS\\S-1-5-21-789336058-484061587-839522115-1003\\Software\\Classes\\CLSID\\"
     "{e17d4fc0-5564-11d1-83f2-00a0c90dc849}\\DefaultIcon",
     "HKEY_USERS\\S-1-5-21-789336058-484061587-839522115-1003\\Software\\Classes\\CLSID\\"
     "{e17d4fc0-5564-11d1-83f2-00a0c90dc849}\\DefaultIcon",
     "", "shell32.dll,55", "shell32.dll,55", Steps::F},
    // Control Panel objects.
    {"Control Panel", "{21EC2020-3AEA-1069-A2DD-08002B30309D}",
     "{21EC2020-3AEA-1069-A2DD-08002B30309D}", "", "shell32.dll,21", "shell32.dll,21", Steps::F},
    {"Taskbar and Start Menu", "{0DF44EAA-FF21-4412-828E-260A8728E7F1}",
     "{0DF44EAA-FF21-4412-828E-260A8728E7F1}", "", "shell32.dll,39", "shell32.dll,39", Steps::F},
    {"Folder Options", "{6DFD7C5C-2451-11d3-A299-00C04F8EF6AF}",
     "{6DFD7C5C-2451-11d3-A299-00C04F8EF6AF}", "", "shell32.dll,110", "shell32.dll,110", Steps::F},
    {"Administrative Tools", "{D20EA4E1-3957-11d2-A40B-0C5020524153}",
     "{D20EA4E1-3957-11d2-A40B-0C5020524153}", "", "main.cpl,10", "main.cpl,10", Steps::F},
    {"Network Connections", "{7007ACC7-3202-11D1-AAD2-00805FC1270E}",
     "{7007ACC7-3202-11D1-AAD2-00805FC1270E}", "", "netshell.dll,0", "netshell.dll,0", Steps::F},
    {"Fonts", "{D20EA4E1-3957-11d2-A40B-0C5020524152}", "{D20EA4E1-3957-11d2-A40B-0C5020524152}",
     "", "main.cpl,9", "main.cpl,9", Steps::F},
    {"Scanners and Cameras", "", "{E211B736-43FD-11D1-9EFB-0000F8757FCD}", "", "",
     "wiashext.dll,0", Steps::F},
    {"Printers and Faxes", "{2227A280-3AEA-1069-A2DE-08002B30309D}",
     "{2227A280-3AEA-1069-A2DE-08002B30309D}", "", "shell32.dll,58", "shell32.dll,58", Steps::F},
    {"Scheduled Tasks", "{D6277990-4C6A-11CF-8D87-00AA0060F5BF}",
     "{D6277990-4C6A-11CF-8D87-00AA0060F5BF}", "", "mstask.dll,0", "mstask.dll,0", Steps::F},
}};

#undef FILE_TYPE
#undef WMP
#undef SAME_CLASS
#undef PLAYER
#undef WORDPAD
#undef ARCHIVER

constexpr std::size_t kScannersAndCameras = 62;

std::string FullKey(const char* key) {
  const std::string k = key;
  if (!k.empty() && k.front() == '{') return "HKEY_CLASSES_ROOT\\CLSID\\" + k + "\\DefaultIcon";
  return k;
}

bool HasBackslash(const std::string& t) { return text::InStr(1, t, "\\") != 0; }

// The backslash test: a bare file name is taken from the system folder.
void FromSystemFolder(std::string& t) {
  if (!HasBackslash(t)) t = core::gSystemFolder + t;
}

std::string Ensured(std::string& t) { return EnsureIconIndex(t); }

// Splits a location at its commas and adds the icon of its first two pieces to ILicons.
void AddRowImage(const std::vector<std::string>& pieces, Number number) {
  const std::string& path = text::Piece(pieces, 0);
  const std::string& index = text::Piece(pieces, 1);
  const std::int32_t n = number == Number::Lenient ? LenientLong(index) : StrictLong(index);
  std::int16_t add = kTrue;
  AddIconImage(path, n, add);
}

void AddRowImage(const std::string& location, Number number) {
  AddRowImage(text::Split(location, ","), number);
}

// Row 13: its key is found through the class of ".doc", and the first icon seen is kept
// under the product key while the stock comes from the older key.
void LoadWordDocumentRow(FrmMain& form, IconRecord& record) {
  AdvRegistryAccess& reg = form.Reg();
  std::string d = reg.ReadString("HKEY_CLASSES_ROOT\\.doc", "", "");
  std::string k;
  if (!text::Trim(d).empty()) {
    d = text::Left(d, static_cast<std::int64_t>(d.size()) - 1);
    k = "HKEY_CLASSES_ROOT\\" + d + "\\DefaultIcon";
    d = reg.ReadString(k, "", "");
    if (reg.ValueExists(core::ProductKey, ".doc") == kFalse) {
      reg.WriteString(core::ProductKey, ".doc", d);
    }
  }
  record.Default = reg.ReadString(kOlderProductKey, ".doc", "");
  record.Key = k;
  record.Name = "Word Documents (*.doc)";
  std::string t = reg.ReadString(k, "", "");
  if (t.empty()) t = record.Default;
  FromSystemFolder(t);
  record.Current = Ensured(t);
}

}  // namespace

std::int32_t FindIconRecord(const FrmMain& form, const std::string& text) {
  for (std::size_t i = 0; i < form.IconRecords.size(); ++i) {
    if (form.IconRecords[i].Name == text) return static_cast<std::int32_t>(i);
  }
  return -1;
}

void LoadIconRecords(FrmMain& form) {
  const bool vista = form.OSName == kVista;
  AdvRegistryAccess& reg = form.Reg();
  // Rows 0 to 25 keep their location here until their images are added, after row 55.
  std::array<std::string, 26> later;

  for (std::size_t i = 0; i < kRows.size(); ++i) {
    const Row& row = kRows[i];
    IconRecord& record = form.IconRecords[i];

    if (i == kScannersAndCameras && vista) {
      // No such row here: only an image takes its place, so that the later numbers stay.
      std::int16_t add = kTrue;
      AddIconImage("Shell32.dll", 0, add);
      continue;
    }
    if (row.steps == Steps::Doc) {
      LoadWordDocumentRow(form, record);
      later[i] = record.Current;
      continue;
    }

    record.Default = vista ? row.stockVista : row.stockOther;
    if (row.valueName != nullptr) record.ValueName = row.valueName;
    record.Key = FullKey(vista ? row.keyVista : row.keyOther);
    record.Name = row.name;
    std::string t = reg.ReadString(record.Key, row.valueRead, "");

    switch (row.steps) {
      case Steps::B:
        t = text::Replace(t, "%ProgramFiles%\\", core::gProgramFilesFolder);
        [[fallthrough]];
      case Steps::A:
        FromSystemFolder(t);
        record.Current = Ensured(t);
        break;
      case Steps::C:
        if (t.empty()) {
          t = core::gSystemFolder + "SHELL32.dll,0";
        } else {
          FromSystemFolder(t);
        }
        record.Current = Ensured(t);
        break;
      case Steps::D:
        if (t.empty()) t = record.Default;
        FromSystemFolder(t);
        Ensured(t);
        record.Current = t;
        break;
      case Steps::E:
        if (t.empty()) t = record.Default;
        FromSystemFolder(t);
        record.Current = t;  // before the comma is mended
        Ensured(t);
        AddRowImage(t, row.number);
        break;
      case Steps::F:
        if (t.empty()) t = record.Default;
        Ensured(t);
        record.Current = t;
        AddRowImage(t, row.number);
        break;
      case Steps::G: {
        const std::vector<std::string> pieces = text::Split(t, ",");  // before the mend
        Ensured(t);
        record.Current = t;
        AddRowImage(pieces, row.number);
        break;
      }
      case Steps::H:
        Ensured(t);
        record.Current = t;
        AddRowImage(t, row.number);
        break;
      case Steps::Doc:
        break;
    }
    if (i < later.size()) later[i] = record.Current;
    if (i == 19) Ensured(t);  // this row mends its text twice, to no further effect

    if (i == 55) {
      for (const std::string& location : later) AddRowImage(location, Number::Strict);
    }
  }
}

}  // namespace quorvane
