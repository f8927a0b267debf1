#pragma once
// The 65 rows of the icon write chain as the shell's keys are: for each row name, the registry
// changes that WriteIconRecord and RestoreIconRecord make, in order, on "Windows Vista" and on
// any other system. Shared by the native tests and the conformance tests.
#include <stdexcept>
#include <string>
#include <vector>

namespace quorvane::testing::chain {

inline const std::string kShellIcons =
    "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Icons";
inline const std::string kUser = "HKEY_USERS\\S-1-5-21-789336058-484061587-839522115-1003";

inline std::string InClasses(const std::string& id) {
  return "HKEY_CLASSES_ROOT\\CLSID\\" + id + "\\DefaultIcon";
}
inline std::string InUserClasses(const std::string& id) {
  return "HKEY_CURRENT_USER\\Software\\Classes\\CLSID\\" + id + "\\DefaultIcon";
}
inline std::string InExplorer(const std::string& id) {
  return "HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\CLSID\\" +
         id + "\\DefaultIcon";
}
inline std::string FileClass(const std::string& cls) {
  return "HKEY_CLASSES_ROOT\\" + cls + "\\DefaultIcon";
}

struct Change {
  bool kill;
  std::string key;
  std::string valueName;
};
using Changes = std::vector<Change>;

inline Change Set(const std::string& key, const std::string& valueName = "") {
  return Change{false, key, valueName};
}
inline Change Kill(const std::string& key, const std::string& valueName) {
  return Change{true, key, valueName};
}

struct ExpectedRow {
  std::string name;
  Changes applyVista, restoreVista, applyOther, restoreOther;
};

inline ExpectedRow Alike(const std::string& name, const Changes& c) { return {name, c, c, c, c}; }
inline ExpectedRow Overridden(const std::string& name, const std::string& number) {
  return {name, {Set(kShellIcons, number)}, {Kill(kShellIcons, number)},
          {Set(kShellIcons, number)}, {Kill(kShellIcons, number)}};
}

inline const std::vector<ExpectedRow>& Expected() {
  static const std::vector<ExpectedRow> rows = [] {
    const std::string myComputer = "{20D04FE0-3AEA-1069-A2D8-08002B30309D}";
    const std::string ie = "{871C5380-42A0-1069-A2EA-08002B30309D}";
    const std::string bin = "{645FF040-5081-101B-9F08-00AA002F954E}";
    const std::string panel = "{21EC2020-3AEA-1069-A2DD-08002B30309D}";
    const std::string places = "{208D2C60-3AEA-1069-A2D7-08002B30309D}";
    const std::string docs = "{450D8FBA-AD25-11D0-98A8-0800361B1103}";
    const std::string mail = "HKEY_LOCAL_MACHINE\\SOFTWARE\\Clients\\Mail\\";
    return std::vector<ExpectedRow>{
        Overridden("Desktop", "34"),
        Alike("My Computer", {Set(InClasses(myComputer)), Set(InUserClasses(myComputer)),
                              Set(InExplorer(myComputer))}),
        Alike("Internet Explorer", {Set(InExplorer(ie)), Set(InUserClasses(ie))}),
        {"My Network Places",
         {Set(InClasses("{F02C1A0D-BE21-4350-88B0-7367FC96EF3C}"))},
         {Set(InClasses(ie))},
         {Set(InClasses(places)), Set(InUserClasses(places)), Set(InExplorer(places))},
         {Set(InClasses(places))}},
        Alike("Recycle Bin (Empty)", {Set(InClasses(bin)), Set(InClasses(bin), "Empty"),
                                      Set(InExplorer(bin)), Set(InExplorer(bin), "Empty")}),
        {"Recycle Bin (Full)",
         {Set(InClasses(bin), "Full"), Set(InExplorer(bin), "Full"), Set(InUserClasses(bin), "Full")},
         {Set(InClasses(bin), "Full"), Set(InExplorer(bin), "Full")},
         {Set(InClasses(bin), "Full"), Set(InExplorer(bin), "Full"), Set(InUserClasses(bin), "Full")},
         {Set(InClasses(bin), "Full"), Set(InExplorer(bin), "Full")}},
        Alike("Briefcase", {Set("HKEY_CLASSES_ROOT\\Briefcase\\DefaultIcon"),
                            Set(InClasses("{85BBD920-42A0-1069-A2E4-08002B30309D}"))}),
        {"EMail",
         {Set(mail + "Microsoft Outlook\\DefaultIcon")},
         {Set(mail + "Microsoft Outlook\\DefaultIcon")},
         {Set(mail + "Outlook Express\\DefaultIcon")},
         {Set(mail + "Outlook Express\\DefaultIcon")}},
        Alike("Windows Security", {Set(InClasses("{2559a1f2-21d7-11d4-bdaf-00c04f60b9f0}"))}),
        Alike("Help and Support", {Set(InClasses("{2559a1f1-21d7-11d4-bdaf-00c04f60b9f0}"))}),
        Alike("Search", {Set(InClasses("{2559a1f0-21d7-11d4-bdaf-00c04f60b9f0}"))}),
        Alike("Run...", {Set(InClasses("{2559a1f3-21d7-11d4-bdaf-00c04f60b9f0}"))}),
        Alike("Set Program Access and Defaults",
              {Set(InClasses("{2559a1f7-21d7-11d4-bdaf-00c04f60b9f0}"))}),
        Alike("Program Group", {Set(kShellIcons, "36")}),
        Overridden("Floppy (3.5'')", "6"),
        Overridden("Hard Disk", "8"),
        Overridden("CD-ROM", "11"),
        Overridden("Audio CD", "40"),
        Overridden("Removal Disk Drive", "7"),
        Overridden("Network Drive", "9"),
        Overridden("Network Drive (Offline)", "10"),
        Overridden("RAM Drive", "12"),
        Overridden("Entire Network", "13"),
        Overridden("Network Service", "14"),
        Overridden("Workgroup", "18"),
        Overridden("Network Computer", "15"),
        Overridden("Folder (Closed)", "3"),
        Overridden("Folder (Open)", "4"),
        Alike("My Documents",
              {Set(kUser + "\\Software\\Classes\\CLSID\\" + docs + "\\DefaultIcon"),
               Set(kUser + "\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\CLSID\\" +
                   docs + "\\DefaultIcon"),
               Set(kUser + "_Classes\\CLSID\\" + docs + "\\DefaultIcon")}),
        Alike("Search Results", {Set(kUser + "\\Software\\Classes\\CLSID\\"
                                             "{e17d4fc0-5564-11d1-83f2-00a0c90dc849}\\DefaultIcon")}),
        Alike("Bitmap Image Files (*.bmp)", {Set(FileClass("Paint.Picture"))}),
        Alike("GIF Image Files (*.gif)", {Set(FileClass("giffile"))}),
        Alike("JPEG Image Files (*.jpg)", {Set(FileClass("jpegfile"))}),
        Alike("PNG Image Files (*.png)", {Set(FileClass("pngfile"))}),
        Alike("AVI Videos (*.avi)", {Set(FileClass("avifile")), Set(FileClass("WMP11.AssocFile.AVI"))}),
        Alike("Windows Media Clips Videos (*.wmv)",
              {Set(FileClass("wmvfile")), Set(FileClass("WMP11.AssocFile.WMV"))}),
        Alike("MPEG Video (*.mpg)", {Set(FileClass("mpegfile")), Set(FileClass("WMP11.AssocFile.MPEG"))}),
        Alike("MIDI Sequences (*.mid)",
              {Set(FileClass("midfile")), Set(FileClass("WMP11.AssocFile.MIDI"))}),
        Alike("Wave Sound Files (*.wav)",
              {Set(FileClass("SoundRec")), Set(FileClass("WMP11.AssocFile.WAV"))}),
        Alike("MP3 Files (*.mp3)", {Set(FileClass("mp3file")), Set(FileClass("WMP11.AssocFile.MP3"))}),
        Alike("Windows Media Audio Files (*.wma)",
              {Set(FileClass("wmafile")), Set(FileClass("WMP11.AssocFile.WMA"))}),
        Alike("WordPad Documents (*.wri)", {Set(FileClass("wrifile"))}),
        Alike("Rich Text Documents (*.rtf)", {Set(FileClass("rtffile"))}),
        Alike("Word Documents (*.doc)", {Set(FileClass("Word.Document.8"))}),
        Alike("Text Files (*.txt)", {Set(FileClass("txtfile"))}),
        Alike("ACE Archive (*.ace)", {Set(FileClass("WinRAR"))}),
        Alike("RAR Archives (*.rar)", {Set(FileClass("WinRAR"))}),
        Alike("ZIP Archives (*.zip)", {Set(FileClass("WinRAR.ZIP"))}),
        Alike("Configuration Files (*.ini)", {Set(FileClass("inifile"))}),
        Alike("Microsoft Data Link (*.udl)", {Set(FileClass("MSDASC"))}),
        Alike("Registration Entries (*.reg)", {Set(FileClass("regfile"))}),
        Alike("Batch Files (*.bat)", {Set(FileClass("batfile"))}),
        Alike("Remote Desktop Connection (*.rdp)", {Set(FileClass("RDP.File"))}),
        Overridden("Default Icon", "0"),
        Overridden("Shared", "28"),
        Overridden("Shortcut Overlay", "29"),
        Alike("Control Panel", {Set(InClasses(panel)), Set(InUserClasses(panel)),
                                Set(InExplorer(panel))}),
        Alike("Taskbar and Start Menu", {Set(InClasses("{0DF44EAA-FF21-4412-828E-260A8728E7F1}"))}),
        Alike("Folder Options", {Set(InClasses("{6DFD7C5C-2451-11d3-A299-00C04F8EF6AF}"))}),
        Alike("Administrative Tools", {Set(InClasses("{D20EA4E1-3957-11d2-A40B-0C5020524153}"))}),
        Alike("Network Connections", {Set(InClasses("{7007ACC7-3202-11D1-AAD2-00805FC1270E}"))}),
        Alike("Fonts", {Set(InClasses("{D20EA4E1-3957-11d2-A40B-0C5020524152}"))}),
        Alike("Scanners and Cameras", {Set(InClasses("{E211B736-43FD-11D1-9EFB-0000F8757FCD}"))}),
        Alike("Printers and Faxes", {Set(InClasses("{2227A280-3AEA-1069-A2DE-08002B30309D}"))}),
        Alike("Scheduled Tasks", {Set(InClasses("{D6277990-4C6A-11CF-8D87-00AA0060F5BF}"))}),
    };
  }();
  return rows;
}

inline const ExpectedRow& Row(const std::string& name) {
  for (const ExpectedRow& r : Expected()) {
    if (r.name == name) return r;
  }
  throw std::logic_error("no expected row " + name);
}

// A change as a recording registry's journal shows it, with `location` as the value written.
inline std::string Line(const Change& c, const std::string& location) {
  if (c.kill) return "delete " + c.key + " [" + c.valueName + "]";
  return "set " + c.key + " [" + c.valueName + "] = \"" + location + "\"";
}

// The changes of one routine on one side of the version test.
inline const Changes& ChangesOf(const ExpectedRow& r, bool write, bool vista) {
  if (write) return vista ? r.applyVista : r.applyOther;
  return vista ? r.restoreVista : r.restoreOther;
}

}  // namespace quorvane::testing::chain
