#include "appearance/Desktop.h"

#include <cstdint>
#include <optional>

#include "base/Int16.h"
#include "base/Numbers.h"
#include "base/Text.h"
#include "platform/MessageBoxes.h"
#include "platform/Service.h"
#include "platform/ShellRequests.h"

namespace quorvane {

namespace reg = platform::reg;
namespace shell = platform::shell;
using platform::RegHandle;

namespace {

constexpr char kWindowMetrics[] = "Control Panel\\Desktop\\WindowMetrics";
constexpr char kShellIconSize[] = "Shell Icon Size";

// lParam of the simulated key press: repeat count 1 in the low word, scan code 0x3F of F5 in
// the high word.
constexpr std::intptr_t kF5KeyData = 0x3F0001;
constexpr std::uint32_t kBroadcastTimeout = 10000;  // milliseconds

// What GetRegistryText opens with, and what SetRegistryText opens with.
constexpr std::uint32_t kReadAccess = reg::kQueryValue;
constexpr std::uint32_t kWriteAccess = reg::kSetValue | reg::kCreateSubKey;

platform::ShellRequests& Shell() { return platform::Use<platform::ShellRequests>(); }
platform::RegistryStore& Store() { return platform::Use<platform::RegistryStore>(); }

void Report(const std::string& prompt) {
  platform::Use<platform::MessageBoxes>().MsgBox(prompt, platform::msgbox::kOkOnly, "");
}

// The setting change with SPI_SETNONCLIENTMETRICS, sent to every top-level window; the answer
// is not looked at.
void SendSettingChange() {
  std::uintptr_t result = 0;
  Shell().SendMessageTimeoutA(shell::kBroadcast, shell::kSettingChange,
                              shell::kSetNonClientMetrics, 0, shell::kAbortIfHung,
                              kBroadcastTimeout, result);
}

}  // namespace

void RefreshDesktopView() {
  const std::uint32_t programManager = Shell().FindWindowExA(0, 0, "Progman", std::nullopt);
  const std::uint32_t defaultView =
      Shell().FindWindowExA(programManager, 0, "SHELLDLL_DefView", std::nullopt);
  const std::uint32_t listView =
      Shell().FindWindowExA(defaultView, 0, "SysListView32", std::nullopt);
  Shell().PostMessageA(listView, shell::kKeyDown, shell::kF5, kF5KeyData);
}

void BroadcastShellChange() {
  Shell().SHChangeNotify(shell::kAssociationChanged, shell::kIdList, 0, 0);
  Shell().PostMessageA(shell::kBroadcast, shell::kSettingChange, 0, 0);
  SendSettingChange();
}

void ToggleShellIconSize() {
  const std::string kept = GetRegistryText(reg::kCurrentUser, kWindowMetrics, kShellIconSize);
  // The size is a 16-bit integer, and so is the sum: no number is a type mismatch, beyond 16 bits
  // an overflow, before anything is written.
  const std::int16_t bigger = CheckedInt16(CheckedInt16(StrictLong(kept)) + 1);
  SetRegistryText(reg::kCurrentUser, kWindowMetrics, kShellIconSize, std::to_string(bigger));
  SendSettingChange();
  SetRegistryText(reg::kCurrentUser, kWindowMetrics, kShellIconSize, kept);
  SendSettingChange();
}

std::string GetRegistryText(RegHandle root, const std::string& key, const std::string& name) {
  RegHandle handle = 0;
  if (Store().RegOpenKeyExA(root, key, 0, kReadAccess, handle) != reg::kSuccess) {
    Report("Error opening key.");
    return "";
  }
  std::uint32_t kind = 0;
  std::uint32_t size = 0;
  if (Store().RegQueryValueExA(handle, name, nullptr, &kind, nullptr, &size) != reg::kSuccess) {
    Report("Error getting subkey length.");
    size = 0;  // a failed query gives no size to go on with
  }
  std::string result;
  std::string buffer = text::Repeat(' ', size);
  if (Store().RegQueryValueExA(handle, name, nullptr, &kind,
                               reinterpret_cast<std::uint8_t*>(buffer.data()),
                               &size) != reg::kSuccess) {
    Report("Error getting subkey value.");
  } else {
    // The stored text ends in its terminator, which is left off.
    result = text::Left(buffer, static_cast<std::int64_t>(size) - 1);
  }
  if (Store().RegCloseKey(handle) != reg::kSuccess) Report("Error closing key.");
  return result;
}

void SetRegistryText(RegHandle root, const std::string& key, const std::string& name,
                     const std::string& value) {
  RegHandle handle = 0;
  if (Store().RegOpenKeyExA(root, key, 0, kWriteAccess, handle) != reg::kSuccess) {
    Report("Error opening key.");
    return;
  }
  // The terminator is part of the data written, unlike AdvRegistryAccess.WriteString's.
  std::string data = value;
  data.push_back('\0');
  if (Store().RegSetValueExA(handle, name, 0, reg::kSz,
                             reinterpret_cast<const std::uint8_t*>(data.data()),
                             static_cast<std::uint32_t>(data.size())) != reg::kSuccess) {
    Report("Error saving value.");
    return;  // the key stays open, as the routine has always left it on this path
  }
  if (Store().RegCloseKey(handle) != reg::kSuccess) Report("Error closing key.");
}

}  // namespace quorvane
