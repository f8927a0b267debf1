// The shell's type names and the files' lengths the collection editor lists, in both builds:
// natively from the portable table, under Wine from the real shell, where FileTypeName (asked
// with the flag word 0x6614) must give what the shell itself says of the extension.
#include <gtest/gtest.h>

#include <cctype>
#include <fstream>
#include <string>

#include "platform/FileTypes.h"
#include "platform/Service.h"
#include "wallpaper/FrmWallpaperCreateCollection.h"
#include "Support.h"
#ifdef _WIN32
#include <windows.h>
#include <shellapi.h>

#include "platform/win32/Win32Platform.h"
#else
#include "platform/portable/PortablePlatform.h"
#endif

namespace quorvane {
namespace {

#ifdef _WIN32
using BuildPlatform = platform::win32::Win32Platform;

// What the shell says of the extension when asked in its own wide interface, for the type name
// alone, as the active code page writes it.
std::string ShellSays(const std::string& extension) {
  const std::wstring wide(extension.begin(), extension.end());
  SHFILEINFOW info{};
  if (::SHGetFileInfoW(wide.c_str(), FILE_ATTRIBUTE_NORMAL, &info, sizeof info,
                       SHGFI_TYPENAME | SHGFI_USEFILEATTRIBUTES) == 0) {
    return "(no answer)";
  }
  char narrow[160] = {};
  ::WideCharToMultiByte(CP_ACP, 0, info.szTypeName, -1, narrow, sizeof narrow, nullptr, nullptr);
  std::string text = narrow;
  while (!text.empty() && text.back() == ' ') text.pop_back();
  return text;
}
#else
using BuildPlatform = platform::portable::PortablePlatform;
#endif

std::string Lower(std::string text) {
  for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return text;
}

class FileTypesConformance : public ::testing::Test {
 protected:
  BuildPlatform platform_;
};

TEST_F(FileTypesConformance, KnownKindsHaveANameOfTheirOwnTrimmed) {
  for (const char* extension : {".jpg", ".bmp", ".txt"}) {
    const std::string name = FileTypeName(extension);
    ASSERT_FALSE(name.empty()) << extension;
    EXPECT_NE(name.front(), ' ') << extension;
    EXPECT_NE(name.back(), ' ') << extension;
    // The letter case of the extension names the same kind.
    std::string upper = extension;
    for (char& c : upper) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    EXPECT_EQ(Lower(FileTypeName(upper)), Lower(name)) << upper;
  }
  EXPECT_NE(FileTypeName(".jpg"), FileTypeName(".txt"));
  EXPECT_NE(FileTypeName(".jpg"), FileTypeName(".bmp"));
}

TEST_F(FileTypesConformance, AnUnknownExtensionIsNamedAfterItself) {
  const std::string name = FileTypeName(".qvzz");
  EXPECT_NE(Lower(name).find("qvzz"), std::string::npos) << name;
  EXPECT_NE(Lower(name).find("file"), std::string::npos) << name;
}

#ifdef _WIN32
TEST_F(FileTypesConformance, TheNameIsWhatTheShellItselfSays) {
  for (const char* extension : {".jpg", ".bmp", ".txt", ".qvzz", ".JPG"}) {
    EXPECT_EQ(FileTypeName(extension), ShellSays(extension)) << extension;
  }
}

TEST_F(FileTypesConformance, ARegisteredClassIsSeenAsTheShellSeesIt) {
  // An extension among the classes naming a class whose default value is the type's name, as
  // the shell reads it; taken away again afterwards.
  const char kExtension[] = ".qvzzreg";
  const char kClass[] = "Quorvane.ConformanceType";
  ASSERT_EQ(::RegSetValueA(HKEY_CLASSES_ROOT, kExtension, REG_SZ, "Quorvane.ConformanceType", 0),
            ERROR_SUCCESS);
  ASSERT_EQ(::RegSetValueA(HKEY_CLASSES_ROOT, kClass, REG_SZ, "Quorvane Conformance Picture", 0),
            ERROR_SUCCESS);
  const std::string name = FileTypeName(".qvzzreg");
  const std::string shell = ShellSays(".qvzzreg");
  ::RegDeleteKeyA(HKEY_CLASSES_ROOT, kExtension);
  ::RegDeleteKeyA(HKEY_CLASSES_ROOT, kClass);
  // The class is seen: Windows names the type by the class's value; Wine's shell, which reads
  // only the class's name, by that name and " file". Either way it is what the shell says.
  EXPECT_NE(name.find("Conformance"), std::string::npos) << name;
  EXPECT_EQ(name, shell);
}
#else
TEST_F(FileTypesConformance, ThePortableTableNamesTheDesktopsUsualKinds) {
  EXPECT_EQ(FileTypeName(".jpg"), "JPEG Image");
  EXPECT_EQ(FileTypeName(".bmp"), "Bitmap Image");
  EXPECT_EQ(FileTypeName(".txt"), "Text Document");
  EXPECT_EQ(FileTypeName(".qvzz"), "QVZZ File");
  EXPECT_EQ(FileTypeName("."), "File");
}
#endif

TEST_F(FileTypesConformance, TheLengthOfAFileAndOfWhatIsNone) {
  const std::string folder = testing::FreshTempFolder();
  const std::string path = folder + "twelve.bin";
  {
    std::ofstream out(path, std::ios::binary);
    out << std::string(1536, 'x');
  }
  auto& types = platform::Use<platform::FileTypes>();
  EXPECT_EQ(types.FileLen(path), 1536);
  EXPECT_EQ(types.FileLen(folder + "missing.bin"), -1);
  EXPECT_EQ(types.FileLen(folder), -1) << "a folder is no file";
  EXPECT_EQ(FileSizeText(types.FileLen(path)), "1.50 KB");
}

}  // namespace
}  // namespace quorvane
