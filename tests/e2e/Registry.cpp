#include "Registry.h"

#include <cstdint>
#include <cstring>
#include <utility>

namespace quorvane::e2e {

namespace {

std::string RootName(HKEY root) {
  if (root == HKEY_CURRENT_USER) return "HKEY_CURRENT_USER";
  if (root == HKEY_CLASSES_ROOT) return "HKEY_CLASSES_ROOT";
  if (root == HKEY_LOCAL_MACHINE) return "HKEY_LOCAL_MACHINE";
  return "(a root key)";
}

}  // namespace

KeptValue::KeptValue(HKEY root, std::string key, std::string name)
    : root_(root), key_(std::move(key)), name_(std::move(name)) {
  std::size_t end = 0;
  do {
    end = key_.find('\\', end + 1);
    const std::string path = key_.substr(0, end);
    HKEY handle = nullptr;
    if (::RegOpenKeyExA(root_, path.c_str(), 0, KEY_READ, &handle) == ERROR_SUCCESS) {
      ::RegCloseKey(handle);
    } else {
      missingKeys_.push_back(path);
    }
  } while (end != std::string::npos);
  HKEY handle = nullptr;
  if (::RegOpenKeyExA(root_, key_.c_str(), 0, KEY_QUERY_VALUE, &handle) != ERROR_SUCCESS) return;
  DWORD size = 0;
  if (::RegQueryValueExA(handle, NameOrDefault(), nullptr, &type_, nullptr, &size) ==
      ERROR_SUCCESS) {
    bytes_.resize(size);
    existed_ = ::RegQueryValueExA(handle, NameOrDefault(), nullptr, &type_,
                                  bytes_.empty() ? nullptr : bytes_.data(),
                                  &size) == ERROR_SUCCESS;
    bytes_.resize(size);
  }
  ::RegCloseKey(handle);
}

KeptValue::~KeptValue() {
  if (existed_) {
    Write(type_, bytes_.data(), bytes_.size());
  } else {
    Remove();
  }
  for (auto path = missingKeys_.rbegin(); path != missingKeys_.rend(); ++path) {
    ::RegDeleteKeyA(root_, path->c_str());
  }
}

bool KeptValue::Set(const std::string& text) const {
  return Write(REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()), text.size() + 1);
}

bool KeptValue::SetNumber(DWORD number) const {
  return Write(REG_DWORD, reinterpret_cast<const BYTE*>(&number), sizeof number);
}

void KeptValue::Remove() const {
  HKEY handle = nullptr;
  if (::RegOpenKeyExA(root_, key_.c_str(), 0, KEY_SET_VALUE, &handle) == ERROR_SUCCESS) {
    ::RegDeleteValueA(handle, NameOrDefault());
    ::RegCloseKey(handle);
  }
}

std::optional<std::string> KeptValue::Now() const {
  HKEY handle = nullptr;
  if (::RegOpenKeyExA(root_, key_.c_str(), 0, KEY_QUERY_VALUE, &handle) != ERROR_SUCCESS) {
    return std::nullopt;
  }
  std::optional<std::string> now;
  DWORD type = REG_NONE;
  DWORD size = 0;
  if (::RegQueryValueExA(handle, NameOrDefault(), nullptr, &type, nullptr, &size) ==
      ERROR_SUCCESS) {
    // One byte more than asked for, so that a text stored without its terminator ends all the
    // same.
    std::vector<BYTE> bytes(static_cast<std::size_t>(size) + 1, 0);
    if (::RegQueryValueExA(handle, NameOrDefault(), nullptr, &type, bytes.data(), &size) ==
        ERROR_SUCCESS) {
      if (type == REG_DWORD && size == 4) {
        DWORD number = 0;
        std::memcpy(&number, bytes.data(), 4);
        now = std::to_string(static_cast<std::int32_t>(number));
      } else if (type == REG_SZ || type == REG_EXPAND_SZ) {
        now = std::string(reinterpret_cast<const char*>(bytes.data()));
      } else {
        now = "(a value of type " + std::to_string(type) + ")";
      }
    }
  }
  ::RegCloseKey(handle);
  return now;
}

std::string KeptValue::Where() const {
  return RootName(root_) + "\\" + key_ +
         (name_.empty() ? " (default value)" : " \"" + name_ + "\"");
}

bool KeptValue::Write(DWORD type, const BYTE* data, std::size_t size) const {
  HKEY handle = nullptr;
  if (::RegCreateKeyExA(root_, key_.c_str(), 0, nullptr, 0, KEY_SET_VALUE, nullptr, &handle,
                        nullptr) != ERROR_SUCCESS) {
    return false;
  }
  const LONG set =
      ::RegSetValueExA(handle, NameOrDefault(), 0, type, data, static_cast<DWORD>(size));
  ::RegCloseKey(handle);
  return set == ERROR_SUCCESS;
}

std::string Shown(const std::optional<std::string>& value) {
  return value ? "\"" + *value + "\"" : "no value";
}

namespace {

// The key the running program takes its wallpaper settings from when it starts, and the
// desktop's.
const char kStartSettingsKey[] = "Software\\Talvenor\\Mirefold\\Sablewick";
const char kWallpaperKey[] = "Control Panel\\Desktop";

}  // namespace

KeptWallpaperSettings::KeptWallpaperSettings()
    : enable(HKEY_CURRENT_USER, kStartSettingsKey, "Enable"),
      interval(HKEY_CURRENT_USER, kStartSettingsKey, "TimeInterval"),
      order(HKEY_CURRENT_USER, kStartSettingsKey, "ChangeOrder"),
      position(HKEY_CURRENT_USER, kStartSettingsKey, "Position"),
      tile(HKEY_CURRENT_USER, kWallpaperKey, "TileWallpaper"),
      style(HKEY_CURRENT_USER, kWallpaperKey, "WallpaperStyle"),
      wallpaper(HKEY_CURRENT_USER, kWallpaperKey, "Wallpaper"),
      previousWallpaper(wallpaper.Now().value_or("")) {}

bool KeptWallpaperSettings::StartChanging() const {
  return enable.SetNumber(1) && interval.SetNumber(60) && order.SetNumber(1) &&
         position.SetNumber(1);
}

}  // namespace quorvane::e2e
