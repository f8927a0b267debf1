#pragma once
// A registry store that keeps the keys it has opened open for a moment after
// they are closed, and hands the same handle out again when the same key is
// opened the same way. Every open and close of the real store is a round trip
// to the system; the store's callers open and close a key for each value they
// touch, so most of those trips are spared.
//
// What a caller sees stays what the store beneath gives: a key is reused only
// while it was opened the same way (open with the same options and access,
// plain open, or create) under the same spelling of its path, only for a short
// while after its last close, and never across a delete of any key by this
// store, after which every kept key is closed for good and every key still held
// is closed when its holder closes it.
#include <cstdint>
#include <functional>
#include <list>
#include <map>
#include <string>
#include <tuple>

#include "platform/RegistryStore.h"

namespace quorvane::platform {

class KeyReusingRegistry : public RegistryStore {
 public:
  using Milliseconds = std::function<std::uint64_t()>;

  // Keys closed longer ago than this are opened afresh: another program may
  // have changed the key in the meantime.
  static constexpr std::uint64_t kKeptFor = 500;
  // At most this many closed keys are kept open; the one closed longest ago
  // goes first.
  static constexpr std::size_t kMostKept = 64;

  KeyReusingRegistry(RegistryStore& keys, Milliseconds now);
  ~KeyReusingRegistry() override;
  KeyReusingRegistry(const KeyReusingRegistry&) = delete;
  KeyReusingRegistry& operator=(const KeyReusingRegistry&) = delete;

  RegStatus RegOpenKeyExA(RegHandle key, const std::string& subKey, std::uint32_t options,
                          std::uint32_t samDesired, RegHandle& result) override;
  RegStatus RegOpenKeyA(RegHandle key, const std::string& subKey, RegHandle& result) override;
  RegStatus RegCreateKeyA(RegHandle key, const std::string& subKey, RegHandle& result) override;
  RegStatus RegCloseKey(RegHandle key) override;
  RegStatus RegDeleteKeyA(RegHandle key, const std::string& subKey) override;
  RegStatus RegDeleteValueA(RegHandle key, const std::string& valueName) override;
  RegStatus RegSetValueExA(RegHandle key, const std::string& valueName, std::uint32_t reserved,
                           std::uint32_t kind, const std::uint8_t* data,
                           std::uint32_t size) override;
  RegStatus RegQueryValueExA(RegHandle key, const std::string& valueName, std::uint32_t* reserved,
                             std::uint32_t* kind, std::uint8_t* data, std::uint32_t* size) override;
  RegStatus RegEnumKeyExA(RegHandle key, std::uint32_t index, char* name,
                          std::uint32_t* nameSize) override;
  RegStatus RegEnumValueA(RegHandle key, std::uint32_t index, char* name, std::uint32_t* nameSize,
                          std::uint32_t* kind, std::uint8_t* data,
                          std::uint32_t* dataSize) override;

  // How many keys are open in the store beneath on this store's account, held
  // or kept.
  std::size_t OpenKeys() const { return byHandle_.size(); }

 private:
  enum class Way : std::uint8_t { OpenWithAccess, Open, Create };
  // The way a key was opened, and its path from its root as spelled, in
  // capitals.
  using Opening = std::tuple<Way, std::uint32_t, std::uint32_t, std::string>;

  struct OpenKey {
    std::string path;                     // root and path, in capitals, for opening below it
    int holders = 0;                      // callers that have it open
    bool reusable = true;                 // false once a delete has happened while it was held
    std::uint64_t closedAt = 0;           // when its last holder closed it
    bool isKept = false;                  // closed by every holder and still open beneath
    std::list<RegHandle>::iterator kept;  // its place among the kept keys, when kept
    const Opening* opening = nullptr;     // its entry in byOpening_, when reusable
  };

  template <class OpenBeneath>
  RegStatus Open(Way way, std::uint32_t options, std::uint32_t samDesired, RegHandle key,
                 const std::string& subKey, RegHandle& result, OpenBeneath open);
  bool PathOf(RegHandle key, const std::string& subKey, std::string& path) const;
  // A handle of this store's that every holder has closed: using it is using a
  // closed key.
  bool Closed(RegHandle key) const;
  RegStatus CloseForGood(RegHandle handle);
  void ForgetAllAfterDelete();

  RegistryStore& keys_;
  Milliseconds now_;
  std::map<RegHandle, OpenKey> byHandle_;
  std::map<Opening, RegHandle> byOpening_;
  std::list<RegHandle> kept_;  // closed keys still open beneath, the longest closed first
};

}  // namespace quorvane::platform
