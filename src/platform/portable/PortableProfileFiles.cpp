#include "platform/portable/PortableProfileFiles.h"

#include <cerrno>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/portable/Descriptors.h"
#include "platform/portable/HostPath.h"
#include "platform/portable/PortableFileSystem.h"

namespace quorvane::platform::portable {

namespace {

// The file is held as UTF-16 code units, whatever its encoding on disk, so that a file written
// back keeps every character it had. The callers' texts are converted at the edge.
using Units = std::u16string;
using UnitsView = std::u16string_view;

// --- the active code page: Windows-1252 ---------------------------------------------------------

// Code points of the bytes 0x80 to 0x9F. The five bytes the code page leaves unassigned stand for
// the control characters of the same number, as the platform's table has them.
constexpr char16_t kHighCodePoints[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

char16_t FromAnsi(char c) {
  const auto byte = static_cast<unsigned char>(c);
  if (byte >= 0x80 && byte < 0xA0) return kHighCodePoints[byte - 0x80];
  return static_cast<char16_t>(byte);
}

char ToAnsi(char16_t unit) {
  if (unit < 0x80 || (unit >= 0xA0 && unit <= 0xFF)) return static_cast<char>(unit);
  for (unsigned i = 0; i < 32; ++i) {
    if (kHighCodePoints[i] == unit) return static_cast<char>(0x80 + i);
  }
  return '?';
}

Units Widen(std::string_view text) {
  Units out;
  out.reserve(text.size());
  for (char c : text) out.push_back(FromAnsi(c));
  return out;
}

std::string Narrow(UnitsView units) {
  std::string out;
  out.reserve(units.size());
  for (char16_t u : units) out.push_back(ToAnsi(u));
  return out;
}

// --- encodings on disk ----------------------------------------------------------------------------

enum class Encoding { Ansi, Utf8, Utf16Le, Utf16Be };

constexpr char16_t kReplacement = 0xFFFD;

void AppendCodePoint(Units& out, std::uint32_t cp) {
  if (cp < 0x10000) {
    out.push_back(static_cast<char16_t>(cp));
  } else {
    cp -= 0x10000;
    out.push_back(static_cast<char16_t>(0xD800 + (cp >> 10)));
    out.push_back(static_cast<char16_t>(0xDC00 + (cp & 0x3FF)));
  }
}

// UTF-8 to code units. A malformed sequence becomes one replacement character, and decoding
// goes on at the byte that broke it. As the platform reads it, a second byte that is a
// continuation byte but out of range for its lead (an overlong form, a surrogate, a code point
// past U+10FFFF) still belongs to the broken sequence.
Units DecodeUtf8(std::string_view bytes) {
  Units out;
  out.reserve(bytes.size());
  std::size_t i = 0;
  while (i < bytes.size()) {
    const auto lead = static_cast<unsigned char>(bytes[i]);
    if (lead < 0x80) {
      out.push_back(lead);
      ++i;
      continue;
    }
    int follow = 0;
    std::uint32_t cp = 0;
    unsigned char low = 0x80;
    unsigned char high = 0xBF;
    if (lead >= 0xC2 && lead <= 0xDF) {
      follow = 1;
      cp = lead & 0x1Fu;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
      follow = 2;
      cp = lead & 0x0Fu;
      if (lead == 0xE0) low = 0xA0;
      if (lead == 0xED) high = 0x9F;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
      follow = 3;
      cp = lead & 0x07u;
      if (lead == 0xF0) low = 0x90;
      if (lead == 0xF4) high = 0x8F;
    } else {
      out.push_back(kReplacement);
      ++i;
      continue;
    }
    std::size_t j = i + 1;
    bool whole = true;
    for (int k = 0; k < follow; ++k) {
      if (j >= bytes.size()) {
        whole = false;
        break;
      }
      const auto next = static_cast<unsigned char>(bytes[j]);
      if (next < 0x80 || next > 0xBF) {
        whole = false;
        break;
      }
      if (next < low || next > high) {
        whole = false;
        ++j;
        break;
      }
      cp = (cp << 6) | (next & 0x3Fu);
      ++j;
      low = 0x80;
      high = 0xBF;
    }
    if (whole) {
      AppendCodePoint(out, cp);
    } else {
      out.push_back(kReplacement);
    }
    i = j;
  }
  return out;
}

void AppendUtf8(std::string& out, std::uint32_t cp) {
  if (cp < 0x80) {
    out.push_back(static_cast<char>(cp));
  } else if (cp < 0x800) {
    out.push_back(static_cast<char>(0xC0 | (cp >> 6)));
    out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
  } else if (cp < 0x10000) {
    out.push_back(static_cast<char>(0xE0 | (cp >> 12)));
    out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
  } else {
    out.push_back(static_cast<char>(0xF0 | (cp >> 18)));
    out.push_back(static_cast<char>(0x80 | ((cp >> 12) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
  }
}

// Code units to UTF-8; a surrogate without its partner becomes the replacement character.
std::string EncodeUtf8(UnitsView units) {
  std::string out;
  out.reserve(units.size());
  for (std::size_t i = 0; i < units.size(); ++i) {
    const char16_t u = units[i];
    if (u >= 0xD800 && u <= 0xDBFF && i + 1 < units.size() && units[i + 1] >= 0xDC00 &&
        units[i + 1] <= 0xDFFF) {
      const std::uint32_t cp = 0x10000 + ((static_cast<std::uint32_t>(u) - 0xD800) << 10) +
                               (static_cast<std::uint32_t>(units[i + 1]) - 0xDC00);
      AppendUtf8(out, cp);
      ++i;
    } else if (u >= 0xD800 && u <= 0xDFFF) {
      AppendUtf8(out, kReplacement);
    } else {
      AppendUtf8(out, u);
    }
  }
  return out;
}

// UTF-16 in either byte order; an odd last byte is dropped.
Units DecodeUtf16(std::string_view bytes, bool bigEndian) {
  Units out;
  out.reserve(bytes.size() / 2);
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
    const auto first = static_cast<unsigned char>(bytes[i]);
    const auto second = static_cast<unsigned char>(bytes[i + 1]);
    out.push_back(bigEndian ? static_cast<char16_t>((first << 8) | second)
                            : static_cast<char16_t>((second << 8) | first));
  }
  return out;
}

std::string EncodeUtf16(UnitsView units, bool bigEndian) {
  std::string out;
  out.reserve(units.size() * 2);
  for (char16_t u : units) {
    const char high = static_cast<char>(u >> 8);
    const char low = static_cast<char>(u & 0xFF);
    out.push_back(bigEndian ? high : low);
    out.push_back(bigEndian ? low : high);
  }
  return out;
}

struct Decoded {
  Encoding encoding = Encoding::Ansi;
  Units text;
};

Decoded Decode(std::string_view bytes) {
  if (bytes.size() >= 3 && bytes.substr(0, 3) == "\xEF\xBB\xBF") {
    return {Encoding::Utf8, DecodeUtf8(bytes.substr(3))};
  }
  if (bytes.size() >= 2 && bytes.substr(0, 2) == "\xFF\xFE") {
    return {Encoding::Utf16Le, DecodeUtf16(bytes.substr(2), false)};
  }
  if (bytes.size() >= 2 && bytes.substr(0, 2) == "\xFE\xFF") {
    return {Encoding::Utf16Be, DecodeUtf16(bytes.substr(2), true)};
  }
  return {Encoding::Ansi, Widen(bytes)};
}

std::string Encode(Encoding encoding, UnitsView text) {
  switch (encoding) {
    case Encoding::Utf8:
      return "\xEF\xBB\xBF" + EncodeUtf8(text);
    case Encoding::Utf16Le:
      return "\xFF\xFE" + EncodeUtf16(text, false);
    case Encoding::Utf16Be:
      return "\xFE\xFF" + EncodeUtf16(text, true);
    case Encoding::Ansi:
      break;
  }
  return Narrow(text);
}

// --- the parts of a profile -----------------------------------------------------------------------

// Blanks are the space and the characters from tab to carriage return.
bool IsBlank(char16_t c) { return c == u' ' || (c >= u'\t' && c <= u'\r'); }

UnitsView TrimLeft(UnitsView s) {
  std::size_t first = 0;
  while (first < s.size() && IsBlank(s[first])) ++first;
  return s.substr(first);
}

UnitsView TrimRight(UnitsView s) {
  std::size_t last = s.size();
  while (last > 0 && IsBlank(s[last - 1])) --last;
  return s.substr(0, last);
}

UnitsView Trim(UnitsView s) { return TrimLeft(TrimRight(s)); }

// Names and values are C texts once taken out of their line: they end at a NUL.
Units UpToNul(UnitsView s) {
  const std::size_t nul = s.find(u'\0');
  return Units(nul == UnitsView::npos ? s : s.substr(0, nul));
}

char16_t FoldCase(char16_t c) { return (c >= u'a' && c <= u'z') ? static_cast<char16_t>(c - 32) : c; }

bool SameName(UnitsView a, UnitsView b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (FoldCase(a[i]) != FoldCase(b[i])) return false;
  }
  return true;
}

struct Entry {
  Units key;
  std::optional<Units> value;  // none for a line without "="
};

struct Section {
  Units name;
  std::vector<Entry> entries;
};

struct Profile {
  Encoding encoding = Encoding::Ansi;
  std::vector<Section> sections;
};

Profile Parse(const Decoded& decoded) {
  Profile profile;
  profile.encoding = decoded.encoding;
  profile.sections.emplace_back();  // the nameless section before the first header
  const UnitsView text = decoded.text;
  std::size_t pos = 0;
  while (pos < text.size()) {
    std::size_t end = text.find_first_of(u"\r\n", pos);
    if (end == UnitsView::npos) end = text.size();
    const UnitsView line = Trim(text.substr(pos, end - pos));
    pos = end + 1;
    if (line.empty()) continue;
    if (line.front() == u'[') {
      const std::size_t close = line.rfind(u']');
      if (close != UnitsView::npos && close > 0) {
        profile.sections.push_back(Section{UpToNul(Trim(line.substr(1, close - 1))), {}});
        continue;
      }
    }
    const std::size_t equals = line.find(u'=');
    if (equals == UnitsView::npos) {
      profile.sections.back().entries.push_back(Entry{UpToNul(line), std::nullopt});
    } else {
      profile.sections.back().entries.push_back(
          Entry{UpToNul(TrimRight(line.substr(0, equals))),
                UpToNul(TrimLeft(line.substr(equals + 1)))});
    }
  }
  return profile;
}

Units Serialize(const Profile& profile) {
  Units out;
  for (const Section& section : profile.sections) {
    if (!section.name.empty()) {
      out += u'[';
      out += section.name;
      out += u"]\r\n";
    }
    for (const Entry& entry : section.entries) {
      out += entry.key;
      if (entry.value) {
        out += u'=';
        out += *entry.value;
      }
      out += u"\r\n";
    }
  }
  return out;
}

std::vector<Section>::iterator FindSection(Profile& profile, UnitsView name) {
  for (auto it = profile.sections.begin(); it != profile.sections.end(); ++it) {
    if (SameName(it->name, name)) return it;
  }
  return profile.sections.end();
}

std::vector<Entry>::iterator FindEntry(Section& section, UnitsView key) {
  for (auto it = section.entries.begin(); it != section.entries.end(); ++it) {
    if (SameName(it->key, key)) return it;
  }
  return section.entries.end();
}

// --- the file -------------------------------------------------------------------------------------

using File = UniqueStream;

enum class FileState { Missing, Read, Unreadable };

struct Loaded {
  FileState state = FileState::Missing;
  Profile profile;
};

Loaded Load(const char* path) {
  Loaded loaded;
  loaded.profile.sections.emplace_back();
  if (path == nullptr || *path == '\0') return loaded;
  errno = 0;
  File f(std::fopen(HostPath(path).c_str(), "rb"));
  if (!f) {
    loaded.state = (errno == ENOENT || errno == ENOTDIR) ? FileState::Missing : FileState::Unreadable;
    return loaded;
  }
  std::string bytes;
  char chunk[16384];
  std::size_t n = 0;
  while ((n = std::fread(chunk, 1, sizeof chunk, f.get())) > 0) bytes.append(chunk, n);
  if (std::ferror(f.get()) != 0) {
    loaded.state = FileState::Unreadable;  // a folder, for one
    return loaded;
  }
  loaded.state = FileState::Read;
  loaded.profile = Parse(Decode(bytes));
  return loaded;
}

bool WriteFile(const std::string& path, const std::string& bytes) {
  File f(std::fopen(HostPath(path).c_str(), "wb"));
  if (!f) return false;
  if (!bytes.empty() && std::fwrite(bytes.data(), 1, bytes.size(), f.get()) != bytes.size()) {
    return false;
  }
  return CloseNow(f);
}

// The new content goes to a file beside the old one and is renamed over it, so a write that
// fails half-way leaves the old file whole. Where the file beside it can't be made or written,
// the file is written in place.
std::int32_t Save(const char* path, const Profile& profile) {
  const std::string bytes = Encode(profile.encoding, Serialize(profile));
  const Replacement saved = PortableFileSystem().ReplaceContent(path, bytes);
  if (saved) return 1;
  if (saved.failed == Replacement::Step::Commit) return 0;
  return WriteFile(path, bytes) ? 1 : 0;
}

// --- copying into the caller's buffer -------------------------------------------------------------

// A value, or a default, into a buffer of `size` characters with its terminator. A text in
// matching quotes loses them; when the buffer has room for exactly the unquoted text and no more,
// the platform gives one character less.
std::uint32_t CopyValue(UnitsView value, char* buffer, std::uint32_t size) {
  if (size == 0) return 0;
  const std::size_t room = size - 1;
  std::size_t start = 0;
  std::size_t count = 0;
  if (value.size() >= 2 && (value.front() == u'"' || value.front() == u'\'') &&
      value.back() == value.front()) {
    const std::size_t inner = value.size() - 2;
    start = 1;
    if (room < inner) {
      count = room;
    } else if (room == inner) {
      count = inner == 0 ? 0 : inner - 1;
    } else {
      count = inner;
    }
  } else {
    count = value.size() < room ? value.size() : room;
  }
  for (std::size_t i = 0; i < count; ++i) buffer[i] = ToAnsi(value[start + i]);
  buffer[count] = '\0';
  return static_cast<std::uint32_t>(count);
}

std::uint32_t CopyDefault(const char* defaultValue, char* buffer, std::uint32_t size) {
  Units text = defaultValue == nullptr ? Units() : Widen(defaultValue);
  while (text.size() > 1 && text.back() == u' ') text.pop_back();
  return CopyValue(text, buffer, size);
}

// A list of names, each ended by a NUL, and one more NUL at the end. When it does not fit, the
// list is cut two characters short of the buffer's end and ended by a single NUL there.
std::uint32_t CopyList(const std::vector<Units>& names, char* buffer, std::uint32_t size) {
  if (size == 0) return 0;
  Units list;
  for (const Units& name : names) {
    list += name;
    list += u'\0';
  }
  std::size_t count = 0;
  if (list.size() + 2 <= size) {
    count = list.size();
  } else if (size >= 2) {
    count = size - 2;
  }
  for (std::size_t i = 0; i < count; ++i) buffer[i] = ToAnsi(list[i]);
  buffer[count] = '\0';
  return static_cast<std::uint32_t>(count);
}

}  // namespace

std::uint32_t PortableProfileFiles::GetPrivateProfileStringA(const char* section, const char* key,
                                                             const char* defaultValue,
                                                             char* buffer, std::uint32_t size,
                                                             const char* file) {
  if (buffer == nullptr || size == 0) return 0;
  Loaded loaded = Load(file);
  Profile& profile = loaded.profile;

  if (section == nullptr) {
    std::vector<Units> names;
    for (const Section& s : profile.sections) {
      if (!s.name.empty()) names.push_back(s.name);
    }
    return CopyList(names, buffer, size);
  }

  const Units sectionName = Widen(section);
  const auto found = FindSection(profile, Trim(sectionName));
  if (key == nullptr) {
    if (found != profile.sections.end()) {
      std::vector<Units> keys;
      for (const Entry& entry : found->entries) {
        // Keys without a value, and keys that read as comments, are not listed.
        if (entry.value && (entry.key.empty() || entry.key.front() != u';')) {
          keys.push_back(entry.key);
        }
      }
      const std::uint32_t copied = CopyList(keys, buffer, size);
      if (copied != 0) return copied;
    }
    return CopyDefault(defaultValue, buffer, size);
  }

  if (found != profile.sections.end()) {
    const Units keyName = Widen(key);
    const auto entry = FindEntry(*found, Trim(keyName));
    if (entry != found->entries.end() && entry->value) {
      return CopyValue(*entry->value, buffer, size);
    }
  }
  return CopyDefault(defaultValue, buffer, size);
}

std::int32_t PortableProfileFiles::WritePrivateProfileStringA(const char* section,
                                                              const char* key, const char* value,
                                                              const char* file) {
  if (section == nullptr || file == nullptr || *file == '\0') return 0;
  Loaded loaded = Load(file);
  if (loaded.state == FileState::Unreadable) return 0;
  Profile& profile = loaded.profile;

  const Units sectionName = Widen(section);
  const auto found = FindSection(profile, Trim(sectionName));

  if (key == nullptr) {  // the whole section goes
    if (found == profile.sections.end()) return 1;
    profile.sections.erase(found);
    return Save(file, profile);
  }

  const Units keyName = Widen(key);
  if (value == nullptr) {  // the key goes
    if (found == profile.sections.end()) return 1;
    const auto entry = FindEntry(*found, Trim(keyName));
    if (entry == found->entries.end()) return 1;
    found->entries.erase(entry);
    return Save(file, profile);
  }

  // Leading blanks of what is written are dropped at once; trailing ones stay in the file
  // until it is next read.
  const Units newValue(TrimLeft(Widen(value)));
  if (found == profile.sections.end()) {
    profile.sections.push_back(
        Section{Units(TrimLeft(sectionName)), {Entry{Units(TrimLeft(keyName)), newValue}}});
    return Save(file, profile);
  }
  const auto entry = FindEntry(*found, Trim(keyName));
  if (entry == found->entries.end()) {
    found->entries.push_back(Entry{Units(TrimLeft(keyName)), newValue});
    return Save(file, profile);
  }
  if (entry->value && *entry->value == newValue) return 1;  // nothing changes
  entry->value = newValue;
  return Save(file, profile);
}

}  // namespace quorvane::platform::portable
