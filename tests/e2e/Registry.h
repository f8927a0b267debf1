#pragma once
// The registry values a run sets or that the program writes, each put back afterwards as the run
// found it, so that the Wine prefix is left as it was.
#include <windows.h>

#include <optional>
#include <string>
#include <vector>

namespace quorvane::e2e {

// A value of a key under `root` (the default value when `name` is empty), with the keys on its
// path. When its owner goes the value is written back with the same type and bytes, or removed
// when it was not there, and the keys that were not there are removed again, innermost first (a
// key that has gained other keys meanwhile stays).
class KeptValue {
 public:
  KeptValue(HKEY root, std::string key, std::string name);
  ~KeptValue();
  KeptValue(const KeptValue&) = delete;
  KeptValue& operator=(const KeptValue&) = delete;

  // Whether the value was there when its owner came.
  bool Present() const { return existed_; }
  // Writes text (REG_SZ), or a number (REG_DWORD), making the keys on the path as needed.
  bool Set(const std::string& text) const;
  bool SetNumber(DWORD number) const;
  void Remove() const;
  // The value now: its text, its number as decimal text, or nothing when it is not there.
  std::optional<std::string> Now() const;

  const std::string& Name() const { return name_; }
  // "HKEY_CURRENT_USER\<key> "<name>"", or "... (default value)", for messages.
  std::string Where() const;

 private:
  const char* NameOrDefault() const { return name_.empty() ? nullptr : name_.c_str(); }
  bool Write(DWORD type, const BYTE* data, std::size_t size) const;

  HKEY root_;
  std::string key_;
  std::string name_;
  std::vector<std::string> missingKeys_;
  bool existed_ = false;
  DWORD type_ = REG_NONE;
  std::vector<BYTE> bytes_;
};

// The settings a resident run of the program starts with, and the desktop's wallpaper values it
// changes, each kept and put back when the run's scope ends; the system's own wallpaper (kept in
// `previousWallpaper`) is the run's to set back, before the values go.
struct KeptWallpaperSettings {
  KeptWallpaperSettings();
  // The change on, every 60 minutes (so the minute timer never fires by itself), in order,
  // tiled. False when the key can't be written.
  bool StartChanging() const;

  KeptValue enable;
  KeptValue interval;
  KeptValue order;
  KeptValue position;
  KeptValue tile;
  KeptValue style;
  KeptValue wallpaper;
  std::string previousWallpaper;
};

// A value for a message: "\"text\"", or "no value".
std::string Shown(const std::optional<std::string>& value);

}  // namespace quorvane::e2e
