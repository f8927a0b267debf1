#include "platform/portable/PortableFileTypes.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <iterator>

#include "platform/portable/HostPath.h"

namespace quorvane::platform::portable {

namespace {

struct KnownType {
  const char* extension;  // lower case, with its point
  const char* name;
};

constexpr KnownType kKnown[] = {
    {".bmp", "Bitmap Image"},   {".dib", "Bitmap Image"},    {".jpg", "JPEG Image"},
    {".jpeg", "JPEG Image"},    {".jpe", "JPEG Image"},      {".gif", "GIF Image"},
    {".png", "PNG Image"},      {".ico", "Icon"},            {".cur", "Cursor"},
    {".wmf", "WMF Image"},      {".emf", "EMF Image"},       {".tif", "TIFF Image"},
    {".tiff", "TIFF Image"},    {".txt", "Text Document"},   {".ini", "Configuration Settings"},
    {".exe", "Application"},    {".dll", "Application Extension"},
    {".htm", "HTML Document"},  {".html", "HTML Document"},  {".zip", "Compressed (zipped) Folder"},
};

std::string Lower(std::string text) {
  for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return text;
}

std::string Upper(std::string text) {
  for (char& c : text) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return text;
}

}  // namespace

std::uintptr_t PortableFileTypes::SHGetFileInfoA(const std::string& name,
                                                 std::uint32_t /*attributes*/,
                                                 std::uint32_t flags, std::string& typeName) {
  queries_.push_back(name);
  if ((flags & filetypes::kTypeName) == 0) return 1;
  // The extension is what stands behind the last point of the name's last part.
  const std::size_t slash = name.find_last_of("\\/");
  const std::size_t start = slash == std::string::npos ? 0 : slash + 1;
  const std::size_t point = name.rfind('.');
  std::string extension;
  if (point != std::string::npos && point >= start) extension = name.substr(point);
  const std::string lower = Lower(extension);
  const auto known = std::find_if(std::begin(kKnown), std::end(kKnown),
                                  [&](const KnownType& type) { return lower == type.extension; });
  if (known != std::end(kKnown)) {
    typeName = known->name;
  } else if (extension.size() > 1) {
    typeName = Upper(extension.substr(1)) + " File";
  } else {
    typeName = "File";
  }
  if (typeName.size() >= filetypes::kTypeNameSize) typeName.resize(filetypes::kTypeNameSize - 1);
  return 1;
}

std::int64_t PortableFileTypes::FileLen(const std::string& path) {
  std::error_code ec;
  const std::filesystem::path host(HostPath(path));
  if (!std::filesystem::is_regular_file(host, ec)) return -1;
  const auto size = std::filesystem::file_size(host, ec);
  return ec ? -1 : static_cast<std::int64_t>(size);
}

}  // namespace quorvane::platform::portable
