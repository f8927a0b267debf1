// The icon catalogue, row by row, on both systems: from a store prepared for the test, each
// row's Name, Key, Default and Current, and the image it adds, found by its colour.
#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <utility>
#include <set>
#include <string>
#include <vector>

#include "IcoFiles.h"
#include "core/FrmMain.h"
#include "core/MainModule.h"
#include "icons/Catalogue.h"
#include "platform/Service.h"
#include "platform/portable/MemoryRegistry.h"
#include "platform/portable/PortableDeviceContexts.h"
#include "platform/portable/PortableIcons.h"
#include "platform/MemorySurface.h"

#include "PortableServices.h"

namespace quorvane {
namespace {

struct ExpectedRow {
  int row;
  int image;
  const char* name;
  const char* keyVista;
  const char* keyOther;
  const char* valueRead;
  const char* stockVista;
  const char* stockOther;
  char steps;  // W: the row of ".doc"
};

// The catalogue as the shell's keys and the program's stock give it.
const ExpectedRow kExpected[] = {
  {0, 31, "Bitmap Image Files (*.bmp)", "HKEY_CLASSES_ROOT\\Paint.Picture\\DefaultIcon", "HKEY_CLASSES_ROOT\\Paint.Picture\\DefaultIcon", "", "%SystemRoot%\\System32\\imageres.dll,64", "shimgvw.dll,1", 'A'},
  {1, 32, "GIF Image Files (*.gif)", "HKEY_CLASSES_ROOT\\giffile\\DefaultIcon", "HKEY_CLASSES_ROOT\\giffile\\DefaultIcon", "", "%SystemRoot%\\System32\\imageres.dll,65", "shimgvw.dll,2", 'A'},
  {2, 33, "JPEG Image Files (*.jpg)", "HKEY_CLASSES_ROOT\\jpegfile\\DefaultIcon", "HKEY_CLASSES_ROOT\\jpegfile\\DefaultIcon", "", "%SystemRoot%\\System32\\imageres.dll,66", "shimgvw.dll,3", 'A'},
  {3, 34, "PNG Image Files (*.png)", "HKEY_CLASSES_ROOT\\pngfile\\DefaultIcon", "HKEY_CLASSES_ROOT\\pngfile\\DefaultIcon", "", "%SystemRoot%\\System32\\imageres.dll,77", "shimgvw.dll,4", 'A'},
  {4, 35, "AVI Videos (*.avi)", "HKEY_CLASSES_ROOT\\WMP11.AssocFile.AVI\\DefaultIcon", "HKEY_CLASSES_ROOT\\AVIFile\\DefaultIcon", "", "%SystemRoot%\\system32\\wmploc.dll,58", "%ProgramFiles%\\Windows Media Player\\wmplayer.exe,1", 'A'},
  {5, 36, "Windows Media Clips Videos (*.wmv)", "HKEY_CLASSES_ROOT\\WMP11.AssocFile.WMV\\DefaultIcon", "HKEY_CLASSES_ROOT\\WMVFile\\DefaultIcon", "", "%SystemRoot%\\system32\\wmploc.dll,62", "%ProgramFiles%\\Windows Media Player\\wmplayer.exe,1", 'A'},
  {6, 37, "MPEG Video (*.mpg)", "HKEY_CLASSES_ROOT\\WMP11.AssocFile.MPEG\\DefaultIcon", "HKEY_CLASSES_ROOT\\mpegfile\\DefaultIcon", "", "%SystemRoot%\\system32\\wmploc.dll,60", "%ProgramFiles%\\Windows Media Player\\wmplayer.exe,1", 'A'},
  {7, 38, "MIDI Sequences (*.mid)", "HKEY_CLASSES_ROOT\\WMP11.AssocFile.MIDI\\DefaultIcon", "HKEY_CLASSES_ROOT\\MIDFile\\DefaultIcon", "", "%SystemRoot%\\system32\\wmploc.dll,57", "%ProgramFiles%\\Windows Media Player\\wmplayer.exe,1", 'A'},
  {8, 39, "Wave Sound Files (*.wav)", "HKEY_CLASSES_ROOT\\WMP11.AssocFile.WAV\\DefaultIcon", "HKEY_CLASSES_ROOT\\SoundRec\\DefaultIcon", "", "%SystemRoot%\\system32\\wmploc.dll,61", "%ProgramFiles%\\Windows Media Player\\wmplayer.exe,1", 'A'},
  {9, 40, "MP3 Files (*.mp3)", "HKEY_CLASSES_ROOT\\WMP11.AssocFile.MP3\\DefaultIcon", "HKEY_CLASSES_ROOT\\mp3file\\DefaultIcon", "", "%SystemRoot%\\system32\\wmploc.dll,59", "%ProgramFiles%\\Windows Media Player\\wmplayer.exe,1", 'A'},
  {10, 41, "Windows Media Audio Files (*.wma)", "HKEY_CLASSES_ROOT\\WMP11.AssocFile.WMA\\DefaultIcon", "HKEY_CLASSES_ROOT\\wmafile\\DefaultIcon", "", "%SystemRoot%\\system32\\wmploc.dll,62", "%ProgramFiles%\\Windows Media Player\\wmplayer.exe,1", 'A'},
  {11, 42, "WordPad Documents (*.wri)", "HKEY_CLASSES_ROOT\\Wordpad.Document.1\\DefaultIcon", "HKEY_CLASSES_ROOT\\wrifile\\DefaultIcon", "", "%ProgramFiles%\\Windows NT\\Accessories\\WORDPAD.EXE,0", "%ProgramFiles%\\Windows NT\\Accessories\\WORDPAD.EXE,0", 'B'},
  {12, 43, "Rich Text Documents (*.rtf)", "HKEY_CLASSES_ROOT\\rtffile\\DefaultIcon", "HKEY_CLASSES_ROOT\\rtffile\\DefaultIcon", "", "%ProgramFiles%\\Windows NT\\Accessories\\WORDPAD.EXE,2", "%ProgramFiles%\\Windows NT\\Accessories\\WORDPAD.EXE,2", 'B'},
  {13, 44, "Word Documents (*.doc)", "", "", "", "", "", 'W'},
  {14, 45, "Text Files (*.txt)", "HKEY_CLASSES_ROOT\\txtfile\\DefaultIcon", "HKEY_CLASSES_ROOT\\txtfile\\DefaultIcon", "", "shell32.dll,70", "shell32.dll,70", 'A'},
  {15, 46, "ACE Archive (*.ace)", "HKEY_CLASSES_ROOT\\WinRAR\\DefaultIcon", "HKEY_CLASSES_ROOT\\WinRAR\\DefaultIcon", "", "%ProgramFiles%\\WinRAR\\WinRAR.exe,0", "%ProgramFiles%\\WinRAR\\WinRAR.exe,0", 'C'},
  {16, 47, "RAR Archives (*.rar)", "HKEY_CLASSES_ROOT\\WinRAR\\DefaultIcon", "HKEY_CLASSES_ROOT\\WinRAR\\DefaultIcon", "", "%ProgramFiles%\\WinRAR\\WinRAR.exe,0", "%ProgramFiles%\\WinRAR\\WinRAR.exe,0", 'C'},
  {17, 48, "ZIP Archives (*.zip)", "HKEY_CLASSES_ROOT\\WinRAR.ZIP\\DefaultIcon", "HKEY_CLASSES_ROOT\\WinRAR.ZIP\\DefaultIcon", "", "%ProgramFiles%\\WinRAR\\WinRAR.exe,0", "%ProgramFiles%\\WinRAR\\WinRAR.exe,0", 'C'},
  {18, 49, "Configuration Files (*.ini)", "HKEY_CLASSES_ROOT\\inifile\\DefaultIcon", "HKEY_CLASSES_ROOT\\inifile\\DefaultIcon", "", "shell32.dll,69", "shell32.dll,69", 'A'},
  {19, 50, "Microsoft Data Link (*.udl)", "HKEY_CLASSES_ROOT\\MSDASC\\DefaultIcon", "HKEY_CLASSES_ROOT\\MSDASC\\DefaultIcon", "", "oledb32.dll,0", "oledb32.dll,0", 'A'},
  {20, 51, "Registration Entries (*.reg)", "HKEY_CLASSES_ROOT\\regfile\\DefaultIcon", "HKEY_CLASSES_ROOT\\regfile\\DefaultIcon", "", "%SystemRoot%\\regedit.exe,0", "%SystemRoot%\\regedit.exe,0", 'A'},
  {21, 52, "Batch Files (*.bat)", "HKEY_CLASSES_ROOT\\batfile\\DefaultIcon", "HKEY_CLASSES_ROOT\\batfile\\DefaultIcon", "", "shell32.dll,71", "shell32.dll,71", 'A'},
  {22, 53, "Remote Desktop Connection (*.rdp)", "HKEY_CLASSES_ROOT\\RDP.File\\DefaultIcon", "HKEY_CLASSES_ROOT\\RDP.File\\DefaultIcon", "", "mstsc.exe,0", "mstsc.exe,0", 'A'},
  {23, 54, "Default Icon", "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Icons", "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Icons", "0", "shell32.dll,0", "shell32.dll,0", 'D'},
  {24, 55, "Shared", "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Icons", "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Icons", "28", "shell32.dll,28", "shell32.dll,28", 'D'},
  {25, 56, "Shortcut Overlay", "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Icons", "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Icons", "29", "shell32.dll,29", "shell32.dll,29", 'D'},
  {26, 1, "Desktop", "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Icons", "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Icons", "34", "shell32.dll,34", "shell32.dll,34", 'E'},
  {27, 2, "My Computer", "HKEY_CLASSES_ROOT\\CLSID\\{20D04FE0-3AEA-1069-A2D8-08002B30309D}\\DefaultIcon", "HKEY_CLASSES_ROOT\\CLSID\\{20D04FE0-3AEA-1069-A2D8-08002B30309D}\\DefaultIcon", "", "Explorer.exe,0", "Explorer.exe,0", 'G'},
  {28, 3, "Internet Explorer", "HKEY_CLASSES_ROOT\\CLSID\\{871C5380-42A0-1069-A2EA-08002B30309D}\\DefaultIcon", "HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\CLSID\\{871C5380-42A0-1069-A2EA-08002B30309D}\\DefaultIcon", "", "ieframe.dll,-190", "shdoclc.dll,0", 'F'},
  {29, 4, "My Network Places", "HKEY_CLASSES_ROOT\\CLSID\\{F02C1A0D-BE21-4350-88B0-7367FC96EF3C}\\DefaultIcon", "HKEY_CLASSES_ROOT\\CLSID\\{208D2C60-3AEA-1069-A2D7-08002B30309D}\\DefaultIcon", "", "%systemroot%\\system32\\NetworkExplorer.dll,0", "shell32.dll,17", 'H'},
  {30, 5, "Recycle Bin (Empty)", "HKEY_CLASSES_ROOT\\CLSID\\{645FF040-5081-101B-9F08-00AA002F954E}\\DefaultIcon", "HKEY_CLASSES_ROOT\\CLSID\\{645FF040-5081-101B-9F08-00AA002F954E}\\DefaultIcon", "", "shell32.dll,31", "shell32.dll,31", 'F'},
  {31, 6, "Recycle Bin (Full)", "HKEY_CLASSES_ROOT\\CLSID\\{645FF040-5081-101B-9F08-00AA002F954E}\\DefaultIcon", "HKEY_CLASSES_ROOT\\CLSID\\{645FF040-5081-101B-9F08-00AA002F954E}\\DefaultIcon", "Full", "shell32.dll,32", "shell32.dll,32", 'H'},
  {32, 7, "Briefcase", "HKEY_CLASSES_ROOT\\CLSID\\{85BBD920-42A0-1069-A2E4-08002B30309D}\\DefaultIcon", "HKEY_CLASSES_ROOT\\CLSID\\{85BBD920-42A0-1069-A2E4-08002B30309D}\\DefaultIcon", "", "syncui.dll,0", "syncui.dll,0", 'H'},
  {33, 8, "EMail", "HKEY_LOCAL_MACHINE\\SOFTWARE\\Clients\\Mail\\Microsoft Outlook\\DefaultIcon", "HKEY_LOCAL_MACHINE\\SOFTWARE\\Clients\\Mail\\Outlook Express\\DefaultIcon", "", "D:\\PROGRA~1\\MICROS~2\\Office12\\OUTLOOK.EXE,7", "%ProgramFiles%\\Outlook Express\\msimn.exe,0", 'F'},
  {34, 9, "Windows Security", "HKEY_CLASSES_ROOT\\CLSID\\{2559a1f2-21d7-11d4-bdaf-00c04f60b9f0}\\DefaultIcon", "HKEY_CLASSES_ROOT\\CLSID\\{2559a1f2-21d7-11d4-bdaf-00c04f60b9f0}\\DefaultIcon", "", "shell32.dll,47", "shell32.dll,47", 'F'},
  {35, 10, "Help and Support", "HKEY_CLASSES_ROOT\\CLSID\\{2559a1f1-21d7-11d4-bdaf-00c04f60b9f0}\\DefaultIcon", "HKEY_CLASSES_ROOT\\CLSID\\{2559a1f1-21d7-11d4-bdaf-00c04f60b9f0}\\DefaultIcon", "", "shell32.dll,23", "shell32.dll,23", 'F'},
  {36, 11, "Search", "HKEY_CLASSES_ROOT\\CLSID\\{2559a1f0-21d7-11d4-bdaf-00c04f60b9f0}\\DefaultIcon", "HKEY_CLASSES_ROOT\\CLSID\\{2559a1f0-21d7-11d4-bdaf-00c04f60b9f0}\\DefaultIcon", "", "shell32.dll,22", "shell32.dll,22", 'F'},
  {37, 12, "Run...", "HKEY_CLASSES_ROOT\\CLSID\\{2559a1f3-21d7-11d4-bdaf-00c04f60b9f0}\\DefaultIcon", "HKEY_CLASSES_ROOT\\CLSID\\{2559a1f3-21d7-11d4-bdaf-00c04f60b9f0}\\DefaultIcon", "", "shell32.dll,24", "shell32.dll,24", 'F'},
  {38, 13, "Set Program Access and Defaults", "HKEY_CLASSES_ROOT\\CLSID\\{2559a1f7-21d7-11d4-bdaf-00c04f60b9f0}\\DefaultIcon", "HKEY_CLASSES_ROOT\\CLSID\\{2559a1f7-21d7-11d4-bdaf-00c04f60b9f0}\\DefaultIcon", "", "moricons.dll,113", "moricons.dll,113", 'F'},
  {39, 14, "Program Group", "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Icons", "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Icons", "36", "shell32.dll,36", "shell32.dll,36", 'F'},
  {40, 15, "Floppy (3.5'')", "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Icons", "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Icons", "6", "shell32.dll,6", "shell32.dll,6", 'F'},
  {41, 16, "Hard Disk", "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Icons", "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Icons", "8", "shell32.dll,8", "shell32.dll,8", 'F'},
  {42, 17, "CD-ROM", "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Icons", "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Icons", "11", "shell32.dll,11", "shell32.dll,11", 'F'},
  {43, 18, "Audio CD", "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Icons", "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Icons", "40", "shell32.dll,40", "shell32.dll,40", 'F'},
  {44, 19, "Removal Disk Drive", "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Icons", "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Icons", "7", "shell32.dll,7", "shell32.dll,7", 'F'},
  {45, 20, "Network Drive", "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Icons", "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Icons", "9", "shell32.dll,9", "shell32.dll,9", 'F'},
  {46, 21, "Network Drive (Offline)", "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Icons", "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Icons", "10", "shell32.dll,10", "shell32.dll,10", 'F'},
  {47, 22, "RAM Drive", "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Icons", "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Icons", "12", "shell32.dll,12", "shell32.dll,12", 'F'},
  {48, 23, "Entire Network", "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Icons", "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Icons", "13", "shell32.dll,13", "shell32.dll,13", 'F'},
  {49, 24, "Network Service", "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Icons", "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Icons", "14", "shell32.dll,14", "shell32.dll,14", 'F'},
  {50, 25, "Workgroup", "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Icons", "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Icons", "18", "shell32.dll,18", "shell32.dll,18", 'F'},
  {51, 26, "Network Computer", "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Icons", "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Icons", "15", "shell32.dll,15", "shell32.dll,15", 'F'},
  {52, 27, "Folder (Closed)", "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Icons", "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Icons", "3", "shell32.dll,3", "shell32.dll,3", 'F'},
  {53, 28, "Folder (Open)", "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Icons", "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Icons", "4", "shell32.dll,4", "shell32.dll,4", 'F'},
  {54, 29, "My Documents", "HKEY_USERS\\S-1-5-21-789336058-484061587-839522115-1003\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\CLSID\\{450D8FBA-AD25-11D0-98A8-0800361B1103}\\DefaultIcon", "HKEY_USERS\\S-1-5-21-789336058-484061587-839522115-1003\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\CLSID\\{450D8FBA-AD25-11D0-98A8-0800361B1103}\\DefaultIcon", "", "mydocs.dll,0", "mydocs.dll,0", 'F'},
  {55, 30, "Search Results", "HKEY_USERS\\S-1-5-21-789336058-484061587-839522115-1003\\Software\\Classes\\CLSID\\{e17d4fc0-5564-11d1-83f2-00a0c90dc849}\\DefaultIcon", "HKEY_USERS\\S-1-5-21-789336058-484061587-839522115-1003\\Software\\Classes\\CLSID\\{e17d4fc0-5564-11d1-83f2-00a0c90dc849}\\DefaultIcon", "", "shell32.dll,55", "shell32.dll,55", 'F'},
  {56, 57, "Control Panel", "HKEY_CLASSES_ROOT\\CLSID\\{21EC2020-3AEA-1069-A2DD-08002B30309D}\\DefaultIcon", "HKEY_CLASSES_ROOT\\CLSID\\{21EC2020-3AEA-1069-A2DD-08002B30309D}\\DefaultIcon", "", "shell32.dll,21", "shell32.dll,21", 'F'},
  {57, 58, "Taskbar and Start Menu", "HKEY_CLASSES_ROOT\\CLSID\\{0DF44EAA-FF21-4412-828E-260A8728E7F1}\\DefaultIcon", "HKEY_CLASSES_ROOT\\CLSID\\{0DF44EAA-FF21-4412-828E-260A8728E7F1}\\DefaultIcon", "", "shell32.dll,39", "shell32.dll,39", 'F'},
  {58, 59, "Folder Options", "HKEY_CLASSES_ROOT\\CLSID\\{6DFD7C5C-2451-11d3-A299-00C04F8EF6AF}\\DefaultIcon", "HKEY_CLASSES_ROOT\\CLSID\\{6DFD7C5C-2451-11d3-A299-00C04F8EF6AF}\\DefaultIcon", "", "shell32.dll,110", "shell32.dll,110", 'F'},
  {59, 60, "Administrative Tools", "HKEY_CLASSES_ROOT\\CLSID\\{D20EA4E1-3957-11d2-A40B-0C5020524153}\\DefaultIcon", "HKEY_CLASSES_ROOT\\CLSID\\{D20EA4E1-3957-11d2-A40B-0C5020524153}\\DefaultIcon", "", "main.cpl,10", "main.cpl,10", 'F'},
  {60, 61, "Network Connections", "HKEY_CLASSES_ROOT\\CLSID\\{7007ACC7-3202-11D1-AAD2-00805FC1270E}\\DefaultIcon", "HKEY_CLASSES_ROOT\\CLSID\\{7007ACC7-3202-11D1-AAD2-00805FC1270E}\\DefaultIcon", "", "netshell.dll,0", "netshell.dll,0", 'F'},
  {61, 62, "Fonts", "HKEY_CLASSES_ROOT\\CLSID\\{D20EA4E1-3957-11d2-A40B-0C5020524152}\\DefaultIcon", "HKEY_CLASSES_ROOT\\CLSID\\{D20EA4E1-3957-11d2-A40B-0C5020524152}\\DefaultIcon", "", "main.cpl,9", "main.cpl,9", 'F'},
  {62, 63, "Scanners and Cameras", "", "HKEY_CLASSES_ROOT\\CLSID\\{E211B736-43FD-11D1-9EFB-0000F8757FCD}\\DefaultIcon", "", "", "wiashext.dll,0", 'F'},
  {63, 64, "Printers and Faxes", "HKEY_CLASSES_ROOT\\CLSID\\{2227A280-3AEA-1069-A2DE-08002B30309D}\\DefaultIcon", "HKEY_CLASSES_ROOT\\CLSID\\{2227A280-3AEA-1069-A2DE-08002B30309D}\\DefaultIcon", "", "shell32.dll,58", "shell32.dll,58", 'F'},
  {64, 65, "Scheduled Tasks", "HKEY_CLASSES_ROOT\\CLSID\\{D6277990-4C6A-11CF-8D87-00AA0060F5BF}\\DefaultIcon", "HKEY_CLASSES_ROOT\\CLSID\\{D6277990-4C6A-11CF-8D87-00AA0060F5BF}\\DefaultIcon", "", "mstask.dll,0", "mstask.dll,0", 'F'},
};

constexpr char kDocClassKey[] = "HKEY_CLASSES_ROOT\\Word.Document.8\\DefaultIcon";
const std::string kNul(1, '\0');

std::uint32_t RowColour(int row) {
  return static_cast<std::uint32_t>(((row * 37 + 50) & 0xFF) << 16 | ((row * 91 + 20) & 0xFF) << 8 |
                                    ((row * 53 + 80) & 0xFF));
}

bool FullPathRow(char steps) { return steps == 'F' || steps == 'G' || steps == 'H'; }

class CatalogueTest : public ::testing::TestWithParam<bool> {
 protected:
  void SetUp() override {
    folder_ = std::filesystem::temp_directory_path() /
              ("quorvane-catalogue-" +
               std::string(::testing::UnitTest::GetInstance()->current_test_info()->name()));
    std::filesystem::remove_all(folder_);
    std::filesystem::create_directories(folder_);
    core::gSystemFolder = folder_.string() + "/";
    core::gProgramFilesFolder = folder_.string() + "/pf/";
    form_.OSName = Vista() ? "Windows Vista" : "Windows XP";
    testing::PreviewsInMemory(form_);
  }
  void TearDown() override { std::filesystem::remove_all(folder_); }

  bool Vista() const { return GetParam(); }
  const char* KeyOf(const ExpectedRow& e) const { return Vista() ? e.keyVista : e.keyOther; }
  const char* StockOf(const ExpectedRow& e) const { return Vista() ? e.stockVista : e.stockOther; }

  // An icon file of the row's own colour, and the location a row's value names it by: a bare
  // file name on the rows that take it from the system folder, the full path on the others.
  std::string IconFor(int row) {
    const std::string file = "row" + std::to_string(row) + ".ico";
    testing::WriteBytes(core::gSystemFolder + file,
                        testing::IcoBytes({testing::SolidImage(32, 24, RowColour(row))}));
    return file;
  }
  std::string LocationFor(const ExpectedRow& e) {
    const std::string file = IconFor(e.row);
    return (FullPathRow(e.steps) ? core::gSystemFolder + file : file) + ",0";
  }

  void Put(const std::string& key, const std::string& name, const std::string& value) {
    AdvRegistryAccess reg(store_);
    ASSERT_NE(reg.WriteString(key, name, value), 0) << key;
  }

  // The colour in the middle of image `number` of ILicons.
  std::uint32_t ImageColour(int number) {
    const ui::Pixels& p = form_.ILicons.Item(number).picture;
    return p.bgra.at(static_cast<std::size_t>((p.height / 2) * p.width + p.width / 2)) & 0xFFFFFFu;
  }

  std::filesystem::path folder_;
  platform::portable::MemoryRegistry store_;
  platform::portable::PortableDeviceContexts gdi_;
  platform::portable::PortableIcons icons_{gdi_};
  platform::ScopedService<platform::RegistryStore> storeInstalled_{store_};
  platform::ScopedService<platform::DeviceContexts> gdiInstalled_{gdi_};
  platform::ScopedService<platform::Icons> iconsInstalled_{icons_};
  FrmMain form_;
  MainWindowScope formInstalled_{form_};
};

TEST_P(CatalogueTest, EveryRowReadsItsKeyAndAddsItsImage) {
  // Rows that read the same value show the icon of the last row written there.
  std::map<std::pair<std::string, std::string>, int> writer;
  for (const ExpectedRow& e : kExpected) {
    if (e.steps == 'W' || (e.row == 62 && Vista())) continue;
    Put(KeyOf(e), e.valueRead, LocationFor(e));
    writer[{KeyOf(e), e.valueRead}] = e.row;
  }
  Put("HKEY_CLASSES_ROOT\\.doc", "", "Word.Document.8");
  Put(kDocClassKey, "", IconFor(13) + ",0");
  Put("HKEY_CURRENT_USER\\Software\\Talvenor\\Mirefold\\Pelmora", ".doc", "older.ico,0");

  LoadIconRecords(form_);

  ASSERT_EQ(form_.ILicons.Count(), 65);
  std::set<std::uint32_t> colours;
  for (const ExpectedRow& e : kExpected) {
    SCOPED_TRACE("row " + std::to_string(e.row));
    const IconRecord& r = form_.IconRecords[static_cast<std::size_t>(e.row)];
    if (e.row == 62 && Vista()) {
      EXPECT_EQ(r.Name, "");
      EXPECT_EQ(r.Key, "");
      EXPECT_EQ(ImageColour(e.image), 0xFFFFFFu);  // the stand-in image, drawn from no file
      continue;
    }
    EXPECT_EQ(r.Name, e.name);
    const int shown = e.steps == 'W' ? 13 : writer.at({KeyOf(e), e.valueRead});
    EXPECT_EQ(ImageColour(e.image), RowColour(shown));
    colours.insert(RowColour(shown));
    const std::string file = "row" + std::to_string(shown) + ".ico,0";
    if (e.steps == 'W') {
      EXPECT_EQ(r.Key, kDocClassKey);
      EXPECT_EQ(r.Default, "older.ico,0" + kNul);
      EXPECT_EQ(r.Current, core::gSystemFolder + file + kNul);
      continue;
    }
    EXPECT_EQ(r.Key, KeyOf(e));
    EXPECT_EQ(r.Default, StockOf(e));
    EXPECT_EQ(r.Current, core::gSystemFolder + file + kNul);
    EXPECT_EQ(r.Pending, "");
    EXPECT_EQ(r.ImageNumber, 0);
    EXPECT_EQ(r.Backup, "");
  }
  EXPECT_EQ(colours.size(), Vista() ? 63u : 64u);  // the two archive rows share one value
  for (std::size_t i = 65; i < form_.IconRecords.size(); ++i) {
    EXPECT_EQ(form_.IconRecords[i].Name, "");
  }
}

TEST_P(CatalogueTest, SevenRowsNameTheirValue) {
  Put("HKEY_CLASSES_ROOT\\CLSID\\{20D04FE0-3AEA-1069-A2D8-08002B30309D}\\DefaultIcon", "",
      "Explorer.exe,0");
  LoadIconRecords(form_);
  for (int row = 0; row < 65; ++row) {
    const std::string& v = form_.IconRecords[static_cast<std::size_t>(row)].ValueName;
    switch (row) {
      case 26: EXPECT_EQ(v, "34"); break;
      case 31: EXPECT_EQ(v, "Full"); break;
      default: EXPECT_EQ(v, "") << row;
    }
  }
}

TEST_P(CatalogueTest, MissingValuesFallBackByTheRowsSteps) {
  Put("HKEY_CLASSES_ROOT\\CLSID\\{20D04FE0-3AEA-1069-A2D8-08002B30309D}\\DefaultIcon", "",
      "Explorer.exe,0");
  LoadIconRecords(form_);
  const auto current = [&](int row) { return form_.IconRecords[static_cast<std::size_t>(row)].Current; };
  const std::string& sys = core::gSystemFolder;
  EXPECT_EQ(current(0), sys + ",0");                   // A: the bare system folder
  EXPECT_EQ(current(11), sys + ",0");                  // B
  EXPECT_EQ(current(15), sys + "SHELL32.dll,0");       // C, whatever the stock says
  EXPECT_EQ(current(17), sys + "SHELL32.dll,0");
  EXPECT_EQ(current(23), sys + "shell32.dll,0");       // D: the stock from the system folder
  EXPECT_EQ(current(26), sys + "shell32.dll,34");      // E
  EXPECT_EQ(current(39), "shell32.dll,36");            // F: the stock as it stands
  EXPECT_EQ(current(29), ",0");                        // H: no stock
  EXPECT_EQ(current(32), ",0");
  EXPECT_EQ(current(13), sys + ",0");                  // no class of ".doc" at all
  EXPECT_EQ(form_.IconRecords[13].Key, "");
  // No file gives an icon: every image is the stand-in's, and there is still one a row.
  EXPECT_EQ(form_.ILicons.Count(), 65);
}

TEST_P(CatalogueTest, AValueWithoutACommaGetsOne) {
  Put("HKEY_CLASSES_ROOT\\CLSID\\{20D04FE0-3AEA-1069-A2D8-08002B30309D}\\DefaultIcon", "",
      "Explorer.exe,0");
  Put("HKEY_CLASSES_ROOT\\txtfile\\DefaultIcon", "", "notepad.exe");
  Put(kExpected[56].keyOther, "", "C:\\x\\cp.dll");
  Put(kExpected[26].keyOther, "34", "desk.ico");
  LoadIconRecords(form_);
  EXPECT_EQ(form_.IconRecords[14].Current, core::gSystemFolder + "notepad.exe" + kNul + ",0");
  EXPECT_EQ(form_.IconRecords[56].Current, "C:\\x\\cp.dll" + kNul + ",0");
  // The desktop row keeps its value without the comma.
  EXPECT_EQ(form_.IconRecords[26].Current, core::gSystemFolder + "desk.ico" + kNul);
}

TEST_P(CatalogueTest, MyComputerWithoutACommaEndsTheBuild) {
  Put("HKEY_CLASSES_ROOT\\CLSID\\{20D04FE0-3AEA-1069-A2D8-08002B30309D}\\DefaultIcon", "",
      "explorer.exe");
  EXPECT_ANY_THROW(LoadIconRecords(form_));
  EXPECT_EQ(form_.IconRecords[27].Name, "My Computer");
  // Its location was mended before the split it had made without the comma failed.
  EXPECT_EQ(form_.IconRecords[27].Current, "explorer.exe" + kNul + ",0");
  EXPECT_EQ(form_.IconRecords[28].Name, "");
  EXPECT_EQ(form_.ILicons.Count(), 1);  // only the desktop row's image
}

TEST_P(CatalogueTest, StrictAndLenientNumbers) {
  Put("HKEY_CLASSES_ROOT\\CLSID\\{20D04FE0-3AEA-1069-A2D8-08002B30309D}\\DefaultIcon", "",
      "Explorer.exe,0");
  Put("HKEY_CLASSES_ROOT\\CLSID\\{645FF040-5081-101B-9F08-00AA002F954E}\\DefaultIcon", "",
      core::gSystemFolder + IconFor(30) + ",zero");
  LoadIconRecords(form_);  // row 30 reads its number leniently: 0
  EXPECT_EQ(ImageColour(5), RowColour(30));

  FrmMain again;
  MainWindowScope installed(again);
  again.OSName = form_.OSName;
  testing::PreviewsInMemory(again);
  Put("HKEY_CLASSES_ROOT\\CLSID\\{2559a1f2-21d7-11d4-bdaf-00c04f60b9f0}\\DefaultIcon", "",
      "shell32.dll,x");
  EXPECT_ANY_THROW(LoadIconRecords(again));  // row 34 reads strictly
  EXPECT_EQ(again.IconRecords[35].Name, "");
}

TEST_P(CatalogueTest, TheFirstDocIconIsKeptUnderTheProductKeyOnce) {
  Put("HKEY_CLASSES_ROOT\\CLSID\\{20D04FE0-3AEA-1069-A2D8-08002B30309D}\\DefaultIcon", "",
      "Explorer.exe,0");
  Put("HKEY_CLASSES_ROOT\\.doc", "", "Word.Document.8");
  Put(kDocClassKey, "", "first.ico,1");
  LoadIconRecords(form_);
  AdvRegistryAccess reg(store_);
  EXPECT_EQ(reg.ReadString(core::ProductKey, ".doc"), "first.ico,1" + kNul);
  Put(kDocClassKey, "", "second.ico,2");
  FrmMain again;
  MainWindowScope installed(again);
  again.OSName = form_.OSName;
  LoadIconRecords(again);
  EXPECT_EQ(reg.ReadString(core::ProductKey, ".doc"), "first.ico,1" + kNul);
  // The stock comes from the older key, which nothing here wrote.
  EXPECT_EQ(again.IconRecords[13].Default, "");
}

TEST_P(CatalogueTest, FindIconRecordMatchesNamesExactly) {
  Put("HKEY_CLASSES_ROOT\\CLSID\\{20D04FE0-3AEA-1069-A2D8-08002B30309D}\\DefaultIcon", "",
      "Explorer.exe,0");
  LoadIconRecords(form_);
  EXPECT_EQ(FindIconRecord(form_, "Briefcase"), 32);
  EXPECT_EQ(FindIconRecord(form_, "briefcase"), -1);
  EXPECT_EQ(FindIconRecord(form_, "Scanners and Cameras"), Vista() ? -1 : 62);
}

INSTANTIATE_TEST_SUITE_P(Systems, CatalogueTest, ::testing::Values(true, false),
                         [](const ::testing::TestParamInfo<bool>& p) { return p.param ? "Vista" : "Other"; });

}  // namespace
}  // namespace quorvane
