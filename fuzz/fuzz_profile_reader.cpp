// The portable profile reader over arbitrary file contents: the input becomes an INI file, and
// several sections and keys are read from it with buffers of several sizes, the lists of
// sections and keys included. Every read must stay inside its buffer and end its text where its
// count says; a value written into the file must then read back as written.
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

#include "FuzzSeeds.h"
#include "FuzzSupport.h"
#include "platform/portable/PortableProfileFiles.h"

namespace {

using quorvane::fuzzing::Require;
using quorvane::fuzzing::ScratchFile;

// The byte-order mark a text begins with, as the reader tells encodings apart.
std::string MarkOf(const std::string& bytes) {
  for (const char* mark : {"\xEF\xBB\xBF", "\xFF\xFE", "\xFE\xFF"}) {
    if (bytes.rfind(mark, 0) == 0) return mark;
  }
  return "";
}

// Whether the text holds a NUL character: a zero byte, or a zero unit behind a UTF-16 mark.
bool HoldsNul(const std::string& bytes) {
  const std::string mark = MarkOf(bytes);
  if (mark == "\xFF\xFE" || mark == "\xFE\xFF") {
    for (std::size_t i = 2; i + 1 < bytes.size(); i += 2) {
      if (bytes[i] == '\0' && bytes[i + 1] == '\0') return true;
    }
    return false;
  }
  return bytes.find('\0') != std::string::npos;
}

constexpr std::uint32_t kSizes[] = {0, 1, 2, 3, 8, 255};
constexpr std::size_t kGuard = 8;

// Reads with a buffer of `size` inside a larger one filled with a pattern, and checks that
// nothing past the buffer changed and that the count and terminator agree.
void CheckedRead(quorvane::platform::portable::PortableProfileFiles& profiles, const char* section,
                 const char* key, const char* defaultValue, std::uint32_t size,
                 const char* file) {
  std::vector<char> space(size + kGuard, '\x5A');
  const std::uint32_t count =
      profiles.GetPrivateProfileStringA(section, key, defaultValue, space.data(), size, file);
  for (std::size_t i = size; i < space.size(); ++i) {
    Require(space[i] == '\x5A', "wrote past the end of the buffer");
  }
  if (size == 0) {
    Require(count == 0, "count for a buffer of size 0");
    return;
  }
  Require(count < size, "count not below the size");
  Require(space[count] == '\0', "no terminator behind the count");
  if (section != nullptr && key != nullptr) {
    Require(std::memchr(space.data(), '\0', count) == nullptr, "NUL inside a value");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static ScratchFile scratch(".ini");
  quorvane::platform::portable::PortableProfileFiles profiles;
  scratch.Fill(data, size);

  static const char* const kPairs[][2] = {{"Files", "2"},          {".ShellClassInfo", "IconFile"},
                                          {" files ", "\t1 "},      {"", ""},
                                          {"[", ";"},              {"\xC9t\xE9", "\xFF"}};
  for (const auto& pair : kPairs) {
    CheckedRead(profiles, pair[0], pair[1], "?!?", 256, scratch.Path().c_str());
  }
  for (std::uint32_t bufferSize : kSizes) {
    CheckedRead(profiles, "Files", "1", "\"quoted\"  ", bufferSize, scratch.Path().c_str());
    CheckedRead(profiles, "Count", nullptr, "none", bufferSize, scratch.Path().c_str());
    CheckedRead(profiles, nullptr, nullptr, "none", bufferSize, scratch.Path().c_str());
  }

  // A write must succeed and leave the value readable. Two kinds of input may lose it, on the
  // platform too, since the file is written back from its parts: a NUL, which ends a name
  // early and can leave it with blanks that the next read trims ("Total \0x=1" becomes a key
  // "Total " and then "Total"); and a file written back beginning with a byte-order mark that
  // the input did not have (a first line " \xFF\xFE" loses its blank), which is then read in
  // another encoding.
  Require(profiles.WritePrivateProfileStringA("Count", "Total", "42", scratch.Path().c_str()) != 0,
          "write failed");
  const std::string input(reinterpret_cast<const char*>(data), size);
  if (!HoldsNul(input) && MarkOf(scratch.Contents()) == MarkOf(input)) {
    char buffer[8];
    const std::uint32_t count = profiles.GetPrivateProfileStringA(
        "Count", "Total", "?!?", buffer, sizeof buffer, scratch.Path().c_str());
    Require(count == 2 && std::strcmp(buffer, "42") == 0, "written value does not read back");
  }
  return 0;
}

std::vector<std::string> QuorvaneFuzzSeeds() {
  using namespace std::string_literals;
  return {
      "[Files]\r\n1=Sea\\bay.jpg\r\n2=Sea\\cliff.bmp\r\n3=Town\\night.jpg\r\n[Count]\r\nTotal=3\r\n",
      "[Count]\r\nTotal=0\r\n",
      "[.ShellClassInfo]\r\nIconFile=C:\\Icons\\Folder.ico\r\nIconIndex=0\r\n"
      "InfoTip=My pictures\r\n",
      "\xFF\xFE[\0.\0S\0h\0e\0l\0l\0C\0l\0a\0s\0s\0I\0n\0f\0o\0]\0\r\0\n\0"
      "I\0c\0o\0n\0F\0i\0l\0e\0=\0x\0.\0i\0c\0o\0\r\0\n\0"s,
      "\xEF\xBB\xBF; saved by hand\n[Files]\n1 = \"Sea\\bay.jpg\"\n2='Sea\\cliff.bmp'\n\n"
      "[Count]\nTotal = 2\n",
      "; a comment\r\nfree=1\r\n[ Files ]  trailing\r\n1\r\n=empty\r\n[Files]\r\n1=second\r\n"
      "[Count\r\nTotal=7",
      "[Files]\r1=cr only\r[Count]\rTotal=1\r",
  };
}
