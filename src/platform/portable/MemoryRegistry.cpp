#include "platform/portable/MemoryRegistry.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <sstream>

#include "base/Text.h"
#include "platform/portable/HostPath.h"
#include "platform/portable/PortableFileSystem.h"

namespace quorvane::platform::portable {

namespace {

constexpr std::uint32_t kMaximumAllowed = 0x02000000u;
// The platform's registry is at most 512 levels deep.
constexpr std::size_t kMaximumDepth = 512;
constexpr std::uint32_t kChangingRights = reg::kSetValue | reg::kCreateSubKey | 0x20u |
                                          reg::kDelete | 0x40000u | 0x80000u;

// The platform takes names as C texts: they end at the first NUL.
std::string CName(const std::string& s) { return s.substr(0, std::strlen(s.c_str())); }

bool IsText(std::uint32_t kind) { return kind == reg::kSz || kind == reg::kExpandSz; }

// Sub-keys are kept in the order of their upper-case names, which is the order of enumeration.
bool NameBefore(const std::string& a, const std::string& b) {
  return text::UpperCase(a) < text::UpperCase(b);
}

}  // namespace

struct MemoryRegistry::Key {
  struct Value {
    std::string name;
    std::uint32_t kind = 0;
    std::string data;
  };

  std::string name;
  Key* parent = nullptr;
  std::vector<std::shared_ptr<Key>> subKeys;
  std::vector<Value> values;
  bool deleted = false;
  bool denyChanges = false;

  std::shared_ptr<Key> Find(const std::string& child) const {
    for (const auto& k : subKeys) {
      if (text::EqualsNoCase(k->name, child)) return k;
    }
    return nullptr;
  }

  std::shared_ptr<Key> Add(const std::string& child) {
    auto k = std::make_shared<Key>();
    k->name = child;
    k->parent = this;
    auto at = std::lower_bound(subKeys.begin(), subKeys.end(), k,
                               [](const auto& a, const auto& b) { return NameBefore(a->name, b->name); });
    subKeys.insert(at, k);
    return k;
  }

  // Values, like sub-keys, are kept in the order of their upper-case names.
  void AddValue(Value value) {
    auto at = std::lower_bound(values.begin(), values.end(), value,
                               [](const Value& a, const Value& b) { return NameBefore(a.name, b.name); });
    values.insert(at, std::move(value));
  }

  Value* FindValue(const std::string& valueName) {
    for (auto& v : values) {
      if (text::EqualsNoCase(v.name, valueName)) return &v;
    }
    return nullptr;
  }
};

struct MemoryRegistry::OpenKey {
  std::shared_ptr<Key> key;
  std::uint32_t access = 0;
};

MemoryRegistry::MemoryRegistry() {
  auto machine = std::make_shared<Key>();
  machine->name = "HKEY_LOCAL_MACHINE";
  auto user = std::make_shared<Key>();
  user->name = "HKEY_CURRENT_USER";
  auto users = std::make_shared<Key>();
  users->name = "HKEY_USERS";
  users->Add(".DEFAULT");
  user->Add("Software");
  machine->Add("Software");
  roots_[reg::kLocalMachine] = machine;
  roots_[reg::kCurrentUser] = user;
  roots_[reg::kUsers] = users;
  std::shared_ptr<Key> classes, config;
  Walk(machine, "Software\\Classes", true, classes);
  Walk(machine, "System\\CurrentControlSet\\Hardware Profiles\\Current", true, config);
  roots_[reg::kClassesRoot] = classes;
  roots_[reg::kCurrentConfig] = config;
}

MemoryRegistry::~MemoryRegistry() = default;

namespace {

std::size_t Depth(const MemoryRegistry::Key& key) {
  std::size_t depth = 0;
  for (const MemoryRegistry::Key* k = &key; k->parent != nullptr; k = k->parent) ++depth;
  return depth;
}

}  // namespace

std::uint32_t MemoryRegistry::AllowedAccess(const Key& key, std::uint32_t wanted) const {
  if (wanted & kMaximumAllowed) {
    return key.denyChanges ? reg::kRead : reg::kAllAccess;
  }
  if (key.denyChanges && (wanted & kChangingRights) != 0) return 0;
  return wanted;
}

RegStatus MemoryRegistry::Resolve(RegHandle handle, std::uint32_t needed,
                                  std::shared_ptr<Key>& key) const {
  std::uint32_t access = reg::kAllAccess;
  if (reg::IsPredefinedRoot(handle)) {
    auto it = roots_.find(handle);
    if (it == roots_.end()) return reg::kInvalidHandle;
    key = it->second;
    if (key->denyChanges) access = reg::kRead;
  } else {
    if (handle == 0 || handle % 4 != 0) return reg::kInvalidHandle;
    const std::size_t slot = handle / 4 - 1;
    if (slot >= handles_.size() || !handles_[slot]) return reg::kInvalidHandle;
    key = handles_[slot]->key;
    access = handles_[slot]->access;
  }
  if (key->deleted) return reg::kKeyDeleted;
  if ((access & needed) != needed) return reg::kAccessDenied;
  return reg::kSuccess;
}

RegStatus MemoryRegistry::Walk(const std::shared_ptr<Key>& from, const std::string& subKey,
                               bool create, std::shared_ptr<Key>& found) {
  const std::string path = CName(subKey);
  if (!path.empty() && path[0] == '\\') return reg::kBadPathname;
  std::shared_ptr<Key> at = from;
  std::size_t pos = 0;
  while (pos < path.size()) {
    std::size_t end = path.find('\\', pos);
    if (end == std::string::npos) end = path.size();
    const std::string segment = path.substr(pos, end - pos);
    pos = end + 1;
    if (segment.empty()) continue;  // doubled and trailing backslashes are passed over
    if (segment.size() > 255) return reg::kInvalidParameter;
    std::shared_ptr<Key> next = at->Find(segment);
    if (!next) {
      if (!create) return reg::kFileNotFound;
      if (Depth(*at) + 1 > kMaximumDepth) return reg::kInvalidParameter;
      if (at->denyChanges) return reg::kAccessDenied;
      next = at->Add(segment);
    }
    at = next;
  }
  found = at;
  return reg::kSuccess;
}

RegHandle MemoryRegistry::NewHandle(const std::shared_ptr<Key>& key, std::uint32_t access) {
  auto open = std::make_unique<OpenKey>();
  open->key = key;
  open->access = access;
  for (std::size_t i = 0; i < handles_.size(); ++i) {
    if (!handles_[i]) {
      handles_[i] = std::move(open);
      return static_cast<RegHandle>((i + 1) * 4);
    }
  }
  handles_.push_back(std::move(open));
  return static_cast<RegHandle>(handles_.size() * 4);
}

RegStatus MemoryRegistry::RegOpenKeyExA(RegHandle key, const std::string& subKey,
                                        std::uint32_t /*options*/, std::uint32_t samDesired,
                                        RegHandle& result) {
  std::shared_ptr<Key> from;
  if (RegStatus s = Resolve(key, 0, from); s != reg::kSuccess) return s;
  std::shared_ptr<Key> found;
  if (RegStatus s = Walk(from, subKey, false, found); s != reg::kSuccess) return s;
  const std::uint32_t access = AllowedAccess(*found, samDesired);
  if (access == 0 && samDesired != 0) return reg::kAccessDenied;
  result = NewHandle(found, access);
  return reg::kSuccess;
}

RegStatus MemoryRegistry::RegOpenKeyA(RegHandle key, const std::string& subKey,
                                      RegHandle& result) {
  if (CName(subKey).empty()) {
    std::shared_ptr<Key> same;
    if (RegStatus s = Resolve(key, 0, same); s != reg::kSuccess) return s;
    result = key;
    return reg::kSuccess;
  }
  return RegOpenKeyExA(key, subKey, 0, kMaximumAllowed, result);
}

RegStatus MemoryRegistry::RegCreateKeyA(RegHandle key, const std::string& subKey,
                                        RegHandle& result) {
  std::shared_ptr<Key> from;
  if (RegStatus s = Resolve(key, 0, from); s != reg::kSuccess) return s;
  // An empty sub-key gives a new handle to the key itself, unlike RegOpenKeyA.
  std::shared_ptr<Key> found;
  if (RegStatus s = Walk(from, subKey, true, found); s != reg::kSuccess) return s;
  result = NewHandle(found, AllowedAccess(*found, kMaximumAllowed));
  return reg::kSuccess;
}

RegStatus MemoryRegistry::RegCloseKey(RegHandle key) {
  if (reg::IsPredefinedRoot(key)) return reg::kSuccess;  // closing a root is harmless
  if (key == 0 || key % 4 != 0) return reg::kInvalidHandle;
  const std::size_t slot = key / 4 - 1;
  if (slot >= handles_.size() || !handles_[slot]) return reg::kInvalidHandle;
  handles_[slot].reset();
  return reg::kSuccess;
}

RegStatus MemoryRegistry::RegDeleteKeyA(RegHandle key, const std::string& subKey) {
  std::shared_ptr<Key> from;
  if (RegStatus s = Resolve(key, 0, from); s != reg::kSuccess) return s;
  std::shared_ptr<Key> target;
  if (CName(subKey).empty()) {
    if (RegStatus s = Resolve(key, reg::kDelete, from); s != reg::kSuccess) return s;
    target = from;
  } else if (RegStatus s = Walk(from, subKey, false, target); s != reg::kSuccess) {
    return s;
  }
  if (target->parent == nullptr || target->denyChanges || !target->subKeys.empty()) {
    return reg::kAccessDenied;
  }
  for (const auto& [handle, root] : roots_) {
    if (root == target) return reg::kAccessDenied;
  }
  auto& siblings = target->parent->subKeys;
  siblings.erase(std::remove(siblings.begin(), siblings.end(), target), siblings.end());
  target->deleted = true;
  target->parent = nullptr;
  return reg::kSuccess;
}

RegStatus MemoryRegistry::RegDeleteValueA(RegHandle key, const std::string& valueName) {
  std::shared_ptr<Key> k;
  if (RegStatus s = Resolve(key, reg::kSetValue, k); s != reg::kSuccess) return s;
  const std::string name = CName(valueName);
  auto it = std::find_if(k->values.begin(), k->values.end(),
                         [&](const Key::Value& v) { return text::EqualsNoCase(v.name, name); });
  if (it == k->values.end()) return reg::kFileNotFound;
  k->values.erase(it);
  return reg::kSuccess;
}

RegStatus MemoryRegistry::RegSetValueExA(RegHandle key, const std::string& valueName,
                                         std::uint32_t /*reserved*/, std::uint32_t kind,
                                         const std::uint8_t* data, std::uint32_t size) {
  std::shared_ptr<Key> k;
  if (RegStatus s = Resolve(key, reg::kSetValue, k); s != reg::kSuccess) return s;
  if (data == nullptr && size != 0) return reg::kInvalidParameter;
  std::string bytes = data ? std::string(reinterpret_cast<const char*>(data), size) : "";
  if (IsText(kind) && (bytes.empty() || bytes.back() != '\0')) bytes.push_back('\0');
  const std::string name = CName(valueName);
  if (Key::Value* v = k->FindValue(name)) {
    v->kind = kind;
    v->data = std::move(bytes);
  } else {
    k->AddValue({name, kind, std::move(bytes)});
  }
  return reg::kSuccess;
}

namespace {

// Gives kind, data and size by the query's rules.
RegStatus HandOut(const std::string& stored, std::uint32_t storedKind, std::uint32_t* kind,
                  std::uint8_t* data, std::uint32_t* size) {
  if (data != nullptr && size == nullptr) return reg::kInvalidParameter;
  if (kind) *kind = storedKind;
  const auto needed = static_cast<std::uint32_t>(stored.size());
  RegStatus status = reg::kSuccess;
  if (data != nullptr) {
    if (*size < needed) {
      status = reg::kMoreData;
    } else {
      std::memcpy(data, stored.data(), stored.size());
    }
  }
  if (size) *size = needed;
  return status;
}

}  // namespace

RegStatus MemoryRegistry::RegQueryValueExA(RegHandle key, const std::string& valueName,
                                           std::uint32_t* /*reserved*/, std::uint32_t* kind,
                                           std::uint8_t* data, std::uint32_t* size) {
  std::shared_ptr<Key> k;
  if (RegStatus s = Resolve(key, reg::kQueryValue, k); s != reg::kSuccess) return s;
  const Key::Value* v = k->FindValue(CName(valueName));
  if (v == nullptr) return reg::kFileNotFound;
  return HandOut(v->data, v->kind, kind, data, size);
}

namespace {

// Copies a name with its terminator into a buffer of `*size` characters.
RegStatus HandOutName(const std::string& name, char* buffer, std::uint32_t* size) {
  if (buffer == nullptr || size == nullptr) return reg::kInvalidParameter;
  if (name.size() + 1 > *size) return reg::kMoreData;
  std::memcpy(buffer, name.c_str(), name.size() + 1);
  *size = static_cast<std::uint32_t>(name.size());
  return reg::kSuccess;
}

}  // namespace

RegStatus MemoryRegistry::RegEnumKeyExA(RegHandle key, std::uint32_t index, char* name,
                                        std::uint32_t* nameSize) {
  std::shared_ptr<Key> k;
  if (RegStatus s = Resolve(key, reg::kEnumerateSubKeys, k); s != reg::kSuccess) return s;
  if (index >= k->subKeys.size()) return reg::kNoMoreItems;
  return HandOutName(k->subKeys[index]->name, name, nameSize);
}

RegStatus MemoryRegistry::RegEnumValueA(RegHandle key, std::uint32_t index, char* name,
                                        std::uint32_t* nameSize, std::uint32_t* kind,
                                        std::uint8_t* data, std::uint32_t* dataSize) {
  std::shared_ptr<Key> k;
  if (RegStatus s = Resolve(key, reg::kQueryValue, k); s != reg::kSuccess) return s;
  if (index >= k->values.size()) return reg::kNoMoreItems;
  const Key::Value& v = k->values[index];
  if (RegStatus s = HandOutName(v.name, name, nameSize); s != reg::kSuccess) return s;
  return HandOut(v.data, v.kind, kind, data, dataSize);
}

std::size_t MemoryRegistry::OpenHandleCount() const {
  return static_cast<std::size_t>(
      std::count_if(handles_.begin(), handles_.end(), [](const auto& h) { return h != nullptr; }));
}

bool MemoryRegistry::DenyChanges(RegHandle root, const std::string& subKey) {
  std::shared_ptr<Key> from, found;
  if (Resolve(root, 0, from) != reg::kSuccess) return false;
  if (Walk(from, subKey, false, found) != reg::kSuccess) return false;
  found->denyChanges = true;
  return true;
}

// --- the store's file -------------------------------------------------------------------------
//
//   Quorvane registry store 1
//   key <TAB> ROOT <TAB> segment <TAB> segment ...
//   value <TAB> name <TAB> kind <TAB> hex data
//
// Names are written with %XX for bytes outside the printable range and for '%'; a value line
// belongs to the key line above it.

namespace {

constexpr char kFileHeader[] = "Quorvane registry store 1";

std::string Escape(const std::string& s) {
  static constexpr char kHex[] = "0123456789ABCDEF";
  std::string out;
  for (const char c : s) {
    const auto u = static_cast<unsigned char>(c);
    if (u <= 0x20 || u >= 0x7F || c == '%') {
      out += '%';
      out += kHex[u >> 4];
      out += kHex[u & 0xF];
    } else {
      out += c;
    }
  }
  return out;
}

int HexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return -1;
}

bool Unescape(const std::string& s, std::string& out) {
  out.clear();
  for (std::size_t i = 0; i < s.size(); ++i) {
    if (s[i] != '%') {
      out += s[i];
      continue;
    }
    if (i + 2 >= s.size()) return false;
    const int hi = HexValue(s[i + 1]), lo = HexValue(s[i + 2]);
    if (hi < 0 || lo < 0) return false;
    out += static_cast<char>(hi * 16 + lo);
    i += 2;
  }
  return true;
}

std::string HexBytes(const std::string& data) {
  static constexpr char kHex[] = "0123456789ABCDEF";
  std::string out;
  for (const char c : data) {
    const auto u = static_cast<unsigned char>(c);
    out += kHex[u >> 4];
    out += kHex[u & 0xF];
  }
  return out;
}

bool ParseHexBytes(const std::string& hex, std::string& out) {
  if (hex.size() % 2 != 0) return false;
  out.clear();
  for (std::size_t i = 0; i < hex.size(); i += 2) {
    const int hi = HexValue(hex[i]), lo = HexValue(hex[i + 1]);
    if (hi < 0 || lo < 0) return false;
    out += static_cast<char>(hi * 16 + lo);
  }
  return true;
}

std::vector<std::string> Fields(const std::string& line) {
  std::vector<std::string> fields;
  std::size_t from = 0;
  for (;;) {
    const std::size_t tab = line.find('\t', from);
    fields.push_back(line.substr(from, tab == std::string::npos ? std::string::npos : tab - from));
    if (tab == std::string::npos) return fields;
    from = tab + 1;
  }
}

void SaveKey(std::ostream& out, const std::string& path, const MemoryRegistry::Key& key) {
  out << "key\t" << path << '\n';
  for (const auto& v : key.values) {
    out << "value\t" << Escape(v.name) << '\t' << v.kind << '\t' << HexBytes(v.data) << '\n';
  }
  for (const auto& sub : key.subKeys) SaveKey(out, path + '\t' + Escape(sub->name), *sub);
}

const char* const kSavedRoots[] = {"HKEY_LOCAL_MACHINE", "HKEY_CURRENT_USER", "HKEY_USERS"};
const RegHandle kSavedRootHandles[] = {reg::kLocalMachine, reg::kCurrentUser, reg::kUsers};

}  // namespace

bool MemoryRegistry::SaveToFile(const std::string& path) const {
  std::ostringstream out;
  out << kFileHeader << '\n';
  for (std::size_t i = 0; i < 3; ++i) {
    SaveKey(out, kSavedRoots[i], *roots_.at(kSavedRootHandles[i]));
  }
  return static_cast<bool>(PortableFileSystem().ReplaceContent(path, out.str()));
}

bool MemoryRegistry::LoadFromFile(const std::string& path) {
  std::ifstream file(HostPath(path), std::ios::binary);
  if (!file) return false;
  std::string line;
  if (!std::getline(file, line) || line != kFileHeader) return false;

  MemoryRegistry loaded;
  std::shared_ptr<Key> current;
  while (std::getline(file, line)) {
    const std::vector<std::string> f = Fields(line);
    if (f[0] == "key" && f.size() >= 2) {
      std::size_t root = 0;
      while (root < 3 && f[1] != kSavedRoots[root]) ++root;
      if (root == 3) return false;
      if (f.size() - 2 > kMaximumDepth) return false;
      current = loaded.roots_.at(kSavedRootHandles[root]);
      for (std::size_t i = 2; i < f.size(); ++i) {
        std::string segment;
        if (!Unescape(f[i], segment) || segment.empty() || segment.find('\\') != std::string::npos) {
          return false;
        }
        std::shared_ptr<Key> next = current->Find(segment);
        current = next ? next : current->Add(segment);
      }
    } else if (f[0] == "value" && f.size() == 4 && current) {
      std::string name, data;
      if (!Unescape(f[1], name) || !ParseHexBytes(f[3], data)) return false;
      char* end = nullptr;
      const unsigned long kind = std::strtoul(f[2].c_str(), &end, 10);
      if (f[2].empty() || *end != '\0' || kind > 0xFFFFFFFFul) return false;
      if (Key::Value* v = current->FindValue(name)) {
        v->kind = static_cast<std::uint32_t>(kind);
        v->data = data;
      } else {
        current->AddValue({name, static_cast<std::uint32_t>(kind), data});
      }
    } else if (!line.empty()) {
      return false;
    }
  }
  roots_ = std::move(loaded.roots_);
  handles_.clear();
  return true;
}

}  // namespace quorvane::platform::portable
