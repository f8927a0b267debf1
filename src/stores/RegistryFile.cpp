// AdvRegistryAccess: moving key trees to and from REGEDIT4 text, and the converters between hex
// text and byte strings. Writer and reader are not each other's inverse: the writer's dword form
// carries "0x", which the reader reads as 0, and the writer writes text raw, NUL included.
#include <cmath>

#include "base/Failure.h"
#include "base/Text.h"
#include "core/Regimes.h"
#include "platform/EventLoop.h"
#include "platform/FileSystem.h"
#include "platform/Service.h"
#include "stores/AdvRegistryAccess.h"

namespace quorvane {

namespace {

constexpr char kCrLf[] = "\r\n";
constexpr char kHeader[] = "REGEDIT4";

// Short root forms back to the long ones, in the order of the root table.
constexpr const char* kLongForms[][2] = {
    {"HKCU", "HKEY_CURRENT_USER"}, {"HKLM", "HKEY_LOCAL_MACHINE"},
    {"HKCR", "HKEY_CLASSES_ROOT"}, {"HKUS", "HKEY_USERS"},
    {"HKPD", "HKEY_PERFORMANCE_DATA"}, {"HKDD", "HKEY_DYN_DATA"},
    {"HKCC", "HKEY_CURRENT_CONFIG"},
};

// The file a key block is written to, opened for appending. What was written reaches the file
// when it is closed, on success and on the failure path alike.
class AppendFile {
 public:
  explicit AppendFile(std::string path) : path_(std::move(path)) {}
  ~AppendFile() { Flush(); }
  AppendFile(const AppendFile&) = delete;
  AppendFile& operator=(const AppendFile&) = delete;

  void PrintLine(const std::string& line) {
    pending_ += line;
    pending_ += kCrLf;
  }
  void Close() {
    if (!Flush()) Raise(FailureNumber::PathFileAccessError, "Path/File access error");
  }

 private:
  bool Flush() noexcept {
    if (!open_) return true;
    open_ = false;
    return core::AsResult(
        core::kAnything,
        [&] { return platform::Use<platform::FileSystem>().Append(path_, pending_); }, false);
  }

  std::string path_;
  std::string pending_;
  bool open_ = true;
};

std::string Quoted(const std::string& s) { return "\"" + s + "\""; }

// A line of the file as the reader sees it: trimmed, without any double quote.
std::string CleanLine(const std::string& line) {
  return text::Replace(text::Trim(line), "\"", "");
}

}  // namespace

std::int32_t AdvRegistryAccess::ExportToReg(std::string sPath, std::string sRegFile,
                                            Boolean IncludeSubkeys) {
  const auto exportAll = [&]() -> std::int32_t {
    auto& files = platform::Use<platform::FileSystem>();
    if (files.FileExists(sRegFile)) return 0;  // an export never replaces a file
    if (!files.WriteAll(sRegFile, std::string(kHeader) + kCrLf + kCrLf)) return 0;
    Boolean result = kFalse;
    // The public call passes an empty text box, which the worker counts as passed.
    ExportKey(sPath, sRegFile, IncludeSubkeys, std::optional<TextBox*>(nullptr), result);
    return result == kTrue ? 1 : 0;
  };
  return core::AsResult(exportAll, std::int32_t{0});
}

void AdvRegistryAccess::ExportKey(std::string sPath, const std::string& sRegFile,
                                  Boolean IncludeSubkeys, std::optional<TextBox*> txtStatus,
                                  Boolean& result) {
  const auto exportKey = [&] {
    for (const auto& form : kLongForms) sPath = text::Replace(sPath, form[0], form[1], true);

    if (txtStatus.has_value()) {
      platform::Use<platform::EventLoop>().DoEvents();
      if (*txtStatus == nullptr) RaiseObjectVariableNotSet();
      (*txtStatus)->SetText(sPath);
    }

    AppendFile file(sRegFile);
    file.PrintLine("[" + sPath + "]");

    const std::string noDefault(1, '\0');
    if (ReadString(sPath, "", noDefault) != noDefault) {
      file.PrintLine("@=" + Quoted(ReadString(sPath, "", "")));
    }

    std::vector<std::string> names;
    std::vector<RegValue> values;
    std::int32_t count = EnumValues(sPath, names, values, platform::reg::kSz);
    for (std::int32_t i = 0; i < count; ++i) {
      if (names[static_cast<std::size_t>(i)].empty()) continue;
      file.PrintLine(Quoted(names[static_cast<std::size_t>(i)]) + "=" +
                     Quoted(std::get<std::string>(values[static_cast<std::size_t>(i)])));
    }

    count = EnumValues(sPath, names, values, platform::reg::kBinary);
    for (std::int32_t i = 0; i < count; ++i) {
      const auto& hex = std::get<std::string>(values[static_cast<std::size_t>(i)]);
      file.PrintLine(Quoted(names[static_cast<std::size_t>(i)]) + "=hex:" +
                     text::Replace(text::Trim(hex), " ", ","));
    }

    count = EnumValues(sPath, names, values, platform::reg::kDword);
    for (std::int32_t i = 0; i < count; ++i) {
      const std::int32_t number = std::get<std::int32_t>(values[static_cast<std::size_t>(i)]);
      file.PrintLine(Quoted(names[static_cast<std::size_t>(i)]) + "=dword:0x" +
                     text::Right("00000000" + text::HexOf(number), 8));
    }

    file.PrintLine("");
    file.Close();

    if (IncludeSubkeys != kFalse) {
      std::vector<std::string> subKeys;
      const std::int32_t subCount = EnumKeys(sPath, subKeys);
      for (std::int32_t i = 0; i < subCount; ++i) {
        Boolean subResult = kFalse;
        ExportKey(sPath + "\\" + subKeys[static_cast<std::size_t>(i)], sRegFile, IncludeSubkeys,
                  txtStatus, subResult);
        if (subResult != kTrue) {
          result = kFalse;
          return;
        }
      }
    }
    result = kTrue;
  };
  if (!core::AsResult(exportKey)) result = kFalse;
}

std::int32_t AdvRegistryAccess::ImportFromReg(std::string sRegFile) {
  const auto importAll = [&]() -> std::int32_t {
    mCreateKeyIfDoesntExists = kTrue;
    auto& files = platform::Use<platform::FileSystem>();
    if (!files.FileExists(sRegFile)) return 0;
    std::string content;
    if (!files.ReadAll(sRegFile, content)) {
      Raise(FailureNumber::PathFileAccessError, "Path/File access error");
    }
    const std::vector<std::string> lines = text::Split(content, kCrLf);
    if (lines.empty()) RaiseSubscriptOutOfRange();
    if (text::UpperCase(lines[0]) != kHeader) return 0;

    std::size_t i = 1;
    while (i < lines.size()) {
      const std::string line = CleanLine(lines[i]);
      if (text::Left(line, 1) != "[") {
        ++i;
        continue;
      }
      // A line "[" alone gives a negative length here, which ends the import.
      const std::string key =
          text::Mid(line, 2, static_cast<std::int64_t>(line.size()) - 2);
      if (text::Left(key, 1) == "-") {
        KillKey(text::Mid(key, 2));
        ++i;
        continue;
      }

      std::size_t j = i + 1;
      for (; j < lines.size(); ++j) {
        const std::string entry = CleanLine(lines[j]);
        if (text::Left(entry, 1) == "[") break;
        if (text::Left(entry, 1) == ";" || entry.empty() || text::InStr(1, entry, "=") == 0) {
          continue;
        }
        const std::vector<std::string> pieces = text::Split(entry, "=");
        const std::string& name = pieces[0];
        const std::string value = pieces.size() > 1 ? pieces[1] : std::string();

        if (text::Trim(value) == "-") {
          KillValue(key, name);
        } else if (text::LowerCase(text::Left(value, 4)) == "hex:") {
          WriteBinary(key, name, text::Replace(text::Mid(value, 5), ",", " "));
        } else if (text::LowerCase(text::Left(value, 6)) == "dword:") {
          WriteDWORD(key, name, text::ValHex(text::Mid(value, 7)));
        } else {
          WriteString(key, name, value);
          if (value.empty() && name == "@") KillValue(key, "");
        }
      }
      i = j;
    }
    return 1;
  };
  return core::AsResult(importAll, std::int32_t{0});
}

std::string AdvRegistryAccess::StrToBin(std::string& sBin) {
  sBin = text::Trim(text::Replace(sBin, " ", ""));
  if (sBin.empty()) return "";
  const std::int16_t length = text::CheckedLength16(sBin);

  struct Piece {
    std::string digits;
    bool null = false;
  };
  std::vector<Piece> pieces;
  for (std::int64_t at = 1; at <= length; at += 2) {
    Piece piece{text::Mid(sBin, at, 2)};
    piece.null = piece.digits == "00";
    pieces.push_back(piece);
  }

  // Half the length, rounded to even: a lone last digit counts only when the length is three
  // more than a multiple of four.
  const std::int64_t used = text::RoundHalfEven(length / 2.0);
  std::string bytes;
  for (std::int64_t k = 0; k < used; ++k) {
    const Piece& piece = pieces[static_cast<std::size_t>(k)];
    bytes += piece.null ? '\0' : static_cast<char>(text::ValHex(piece.digits) & 0xFF);
  }
  return bytes;
}

std::string AdvRegistryAccess::BinToStr(std::string& sStr) {
  if (sStr.empty()) return "";
  text::CheckedLength16(sStr);
  std::string out;
  for (const char c : sStr) {
    std::string pair;
    if (c == '\0') {
      pair = "00";
    } else {
      pair = text::HexOf(static_cast<unsigned char>(c));
      if (pair.size() == 1) pair = "0" + pair;
    }
    out += " " + pair;
  }
  return out;
}

Boolean AdvRegistryAccess::isBinValid(std::string sBin) {
  sBin = text::Trim(text::UpperCase(text::Replace(sBin, " ", "")));
  if (sBin.empty()) return kFalse;
  for (std::int64_t at = 1; at <= static_cast<std::int64_t>(sBin.size()); ++at) {
    // The digit set is looked for inside the one character, never the other way round.
    if (text::InStr(1, text::Mid(sBin, at, 1), "0123456789ABCDEF ", true) == 0) return kFalse;
  }
  return kTrue;
}

}  // namespace quorvane
