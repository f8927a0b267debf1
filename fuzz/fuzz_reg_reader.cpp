// The .reg reader over arbitrary bytes: never a crash, a result of 0 or 1, and what was in the
// store before stays there unless the file itself deletes it.
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "FuzzSeeds.h"
#include "base/Text.h"
#include "platform/Service.h"
#include "platform/portable/MemoryRegistry.h"
#include "platform/portable/PortableEventLoop.h"
#include "platform/portable/PortableFileSystem.h"
#include "stores/AdvRegistryAccess.h"

std::vector<std::string> QuorvaneFuzzSeeds() {
  return {
      "REGEDIT4\r\n\r\n[HKEY_CURRENT_USER\\Software\\F]\r\n\"a\"=\"b\"\r\n\"n\"=dword:0000002a\r\n"
      "\"h\"=hex:01,02,\\\r\n  03\r\n@=\"d\"\r\n",
      "REGEDIT4\r\n[-HKCU\\Software\\F]\r\n[HKCU\\Software\\F\\G]\r\n\"x\"=-\r\n@=\r\n; c\r\n",
      "REGEDIT4\r\n[\r\n",
      "regedit4\r\n[HKLM\\Software\\Classes\\.q]\r\n@=\"q\"\r\n\"v\"=DWORD:ffffffff\r\n",
      "Windows Registry Editor Version 5.00\r\n\r\n[HKEY_CURRENT_USER\\X]\r\n",
  };
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace quorvane;
  static platform::portable::PortableFileSystem files;
  static platform::portable::PortableEventLoop events;
  static const std::string path = "/tmp/quorvane-fuzz-reg-" + std::to_string(::getpid()) + ".reg";
  platform::Install<platform::FileSystem>(&files);
  platform::Install<platform::EventLoop>(&events);

  platform::portable::MemoryRegistry store;
  AdvRegistryAccess reg(store);
  reg.WriteString("HKCU\\Software\\Sentinel", "kept", "yes");

  if (!files.WriteAll(path, std::string(reinterpret_cast<const char*>(data), size))) std::abort();
  const std::int32_t result = reg.ImportFromReg(path);
  if (result != 0 && result != 1) std::abort();

  // The reader drops every double quote before it looks at a line, so only a file that names
  // the sentinel's key, in any case and with quotes anywhere, may touch it.
  const std::string input(reinterpret_cast<const char*>(data), size);
  const bool namesSentinel = text::InStr(1, text::Replace(input, "\"", ""), "sentinel", true) != 0;
  if (!namesSentinel &&
      reg.ReadString("HKCU\\Software\\Sentinel", "kept") != std::string("yes\0", 4)) {
    std::abort();
  }
  return 0;
}
