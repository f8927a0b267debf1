#include "platform/portable/DecodedPictures.h"

#include <fcntl.h>
#include <gif_lib.h>
#include <png.h>
#include <sys/stat.h>
#include <turbojpeg.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <memory>
#include <optional>
#include <vector>

#include "base/Failure.h"
#include "codecs/BitmapFile.h"
#include "codecs/PictureFormats.h"
#include "codecs/BitmapDecoder.h"
#include "platform/portable/Descriptors.h"
#include "platform/portable/HostPath.h"
#include "platform/portable/PortableFileSystem.h"

namespace quorvane::platform::portable {

namespace {

using Bytes = std::span<const std::uint8_t>;

[[noreturn]] void RaiseInvalidPicture() { Raise(FailureNumber::InvalidPicture, "Invalid picture"); }

Pixels Sized(std::int64_t width, std::int64_t height, std::uint32_t fill) {
  Pixels pixels;
  pixels.width = static_cast<std::int32_t>(width);
  pixels.height = static_cast<std::int32_t>(height);
  pixels.bgra.assign(static_cast<std::size_t>(width * height), fill);
  return pixels;
}

// --- JPEG -------------------------------------------------------------------------------------

struct TurboJpegClose {
  void operator()(void* handle) const { tjDestroy(handle); }
};

std::optional<Pixels> DecodeJpeg(Bytes bytes) {
  const std::unique_ptr<void, TurboJpegClose> handle(tjInitDecompress());
  if (!handle) return std::nullopt;
  int width = 0;
  int height = 0;
  int subsampling = 0;
  int colourSpace = 0;
  // The reader takes a non-const pointer and a 32-bit length, but never writes.
  if (bytes.size() > 0xFFFFFFFFu) return std::nullopt;
  auto* data = const_cast<unsigned char*>(bytes.data());
  const auto size = static_cast<unsigned long>(bytes.size());
  if (tjDecompressHeader3(handle.get(), data, size, &width, &height, &subsampling,
                          &colourSpace) != 0) {
    return std::nullopt;
  }
  if (!codecs::DecodableSize(width, height)) return std::nullopt;
  Pixels pixels = Sized(width, height, 0);
  // Four bytes a pixel, blue first: one 0xAARRGGBB value on this little-endian host. A warning
  // (data cut short, a damaged segment) stops the reader; a progressive picture may have no more
  // scans than a real one would.
  const int flags = TJFLAG_STOPONWARNING | TJFLAG_LIMITSCANS;
  if (tjDecompress2(handle.get(), data, size, reinterpret_cast<unsigned char*>(pixels.bgra.data()),
                    width, width * 4, height, TJPF_BGRA, flags) != 0) {
    return std::nullopt;
  }
  for (std::uint32_t& p : pixels.bgra) p |= 0xFF000000u;
  return pixels;
}

// --- PNG --------------------------------------------------------------------------------------

std::optional<Pixels> DecodePng(Bytes bytes) {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  if (png_image_begin_read_from_memory(&image, bytes.data(), bytes.size()) == 0) {
    return std::nullopt;
  }
  if (!codecs::DecodableSize(image.width, image.height)) {
    png_image_free(&image);
    return std::nullopt;
  }
  image.format = PNG_FORMAT_BGRA;
  Pixels pixels = Sized(image.width, image.height, 0);
  // On failure the reader has freed what it held.
  if (png_image_finish_read(&image, nullptr, pixels.bgra.data(), 0, nullptr) == 0) {
    return std::nullopt;
  }
  return pixels;
}

// --- GIF --------------------------------------------------------------------------------------

struct GifSource {
  Bytes bytes;
  std::size_t at = 0;
};

int ReadGifBytes(GifFileType* gif, GifByteType* buffer, int wanted) {
  auto* source = static_cast<GifSource*>(gif->UserData);
  if (wanted <= 0) return 0;
  const std::size_t left = source->bytes.size() - source->at;
  const std::size_t n = std::min(left, static_cast<std::size_t>(wanted));
  std::memcpy(buffer, source->bytes.data() + source->at, n);
  source->at += n;
  return static_cast<int>(n);
}

struct GifClose {
  void operator()(GifFileType* gif) const {
    int error = 0;
    DGifCloseFile(gif, &error);
  }
};

// The first frame, laid on the logical screen at its place; what it doesn't cover, and its
// transparent colour, are transparent.
std::optional<Pixels> DecodeGif(Bytes bytes) {
  GifSource source{bytes, 0};
  int error = 0;
  const std::unique_ptr<GifFileType, GifClose> gif(DGifOpen(&source, ReadGifBytes, &error));
  if (!gif) return std::nullopt;
  int transparent = -1;
  for (;;) {
    GifRecordType type = UNDEFINED_RECORD_TYPE;
    if (DGifGetRecordType(gif.get(), &type) == GIF_ERROR) return std::nullopt;
    if (type == EXTENSION_RECORD_TYPE) {
      int code = 0;
      GifByteType* block = nullptr;
      if (DGifGetExtension(gif.get(), &code, &block) == GIF_ERROR) return std::nullopt;
      if (code == GRAPHICS_EXT_FUNC_CODE && block != nullptr && block[0] >= 4) {
        transparent = (block[1] & 1u) != 0 ? block[4] : -1;
      }
      while (block != nullptr) {
        if (DGifGetExtensionNext(gif.get(), &block) == GIF_ERROR) return std::nullopt;
      }
      continue;
    }
    if (type != IMAGE_DESC_RECORD_TYPE) return std::nullopt;  // the end, and no frame
    if (DGifGetImageDesc(gif.get()) == GIF_ERROR) return std::nullopt;
    break;
  }

  const GifImageDesc& frame = gif->Image;
  const ColorMapObject* colours = frame.ColorMap != nullptr ? frame.ColorMap : gif->SColorMap;
  if (colours == nullptr || colours->Colors == nullptr || frame.Width <= 0 || frame.Height <= 0 ||
      frame.Left < 0 || frame.Top < 0) {
    return std::nullopt;
  }
  const std::int64_t width = std::max<std::int64_t>(gif->SWidth, std::int64_t{frame.Left} + frame.Width);
  const std::int64_t height = std::max<std::int64_t>(gif->SHeight, std::int64_t{frame.Top} + frame.Height);
  if (!codecs::DecodableSize(width, height) || !codecs::DecodableSize(frame.Width, frame.Height)) {
    return std::nullopt;
  }
  Pixels pixels = Sized(width, height, 0);
  std::vector<GifPixelType> line(static_cast<std::size_t>(frame.Width));
  // Interlaced rows come in four passes: every eighth from 0, every eighth from 4, every fourth
  // from 2, every second from 1.
  const int starts[4] = {0, 4, 2, 1};
  const int steps[4] = {8, 8, 4, 2};
  const int passes = frame.Interlace ? 4 : 1;
  for (int pass = 0; pass < passes; ++pass) {
    const int start = frame.Interlace ? starts[pass] : 0;
    const int step = frame.Interlace ? steps[pass] : 1;
    for (int r = start; r < frame.Height; r += step) {
      if (DGifGetLine(gif.get(), line.data(), frame.Width) == GIF_ERROR) return std::nullopt;
      std::uint32_t* dst = pixels.bgra.data() +
                           static_cast<std::size_t>(frame.Top + r) * static_cast<std::size_t>(width) +
                           static_cast<std::size_t>(frame.Left);
      for (std::size_t x = 0; x < line.size(); ++x) {
        const int index = line[x];
        if (index == transparent) continue;
        if (index >= colours->ColorCount) {
          dst[x] = 0xFF000000u;
          continue;
        }
        const GifColorType& c = colours->Colors[index];
        dst[x] = 0xFF000000u | (std::uint32_t{c.Red} << 16) | (std::uint32_t{c.Green} << 8) | c.Blue;
      }
    }
  }
  return pixels;
}

// --- icons and cursors ------------------------------------------------------------------------

// The largest image, or with `size` the one nearest that size.
std::optional<Pixels> DecodeIcon(Bytes bytes, std::int32_t size = 0) {
  const auto entries = codecs::ReadIconDirectory(bytes);
  if (!entries) return std::nullopt;
  const codecs::IconDirectoryEntry& entry = size > 0 ? codecs::IconEntryForSize(*entries, size)
                                                     : codecs::LargestIconEntry(*entries);
  const Bytes data = bytes.subspan(entry.offset, entry.size);
  return entry.png ? DecodePng(data) : codecs::DecodeIconBitmap(data);
}

// --- files ------------------------------------------------------------------------------------

[[noreturn]] void RaiseAccess(const std::string& path, const std::string& why) {
  Raise(FailureNumber::PathFileAccessError, "Path/File access error: \"" + path + "\": " + why);
}

std::vector<std::uint8_t> ReadWholeFile(const std::string& path) {
  const std::string host = HostPath(path);
  // Not blocking: a pipe or device by that name must not hold the program up; only a file is read.
  UniqueDescriptor file(::open(host.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  if (file.Get() < 0) {
    if (errno == ENOENT || errno == ENOTDIR || path.empty()) {
      Raise(FailureNumber::FileNotFound, "File not found: \"" + path + "\"");
    }
    RaiseAccess(path, std::strerror(errno));
  }
  struct stat st {};
  if (::fstat(file.Get(), &st) != 0) RaiseAccess(path, std::strerror(errno));
  if (!S_ISREG(st.st_mode)) RaiseAccess(path, "it is no file");
  std::vector<std::uint8_t> bytes;
  bytes.reserve(static_cast<std::size_t>(st.st_size));
  std::uint8_t buffer[1 << 16];
  for (;;) {
    const ssize_t n = ::read(file.Get(), buffer, sizeof buffer);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) RaiseAccess(path, std::strerror(errno));
    if (n == 0) break;
    bytes.insert(bytes.end(), buffer, buffer + n);
  }
  return bytes;
}

}  // namespace

Pixels DecodePicture(std::span<const std::uint8_t> bytes) {
  std::optional<Pixels> pixels;
  switch (codecs::KindOfPicture(bytes)) {
    case codecs::PictureKind::Bitmap: pixels = codecs::DecodeBitmapFile(bytes); break;
    case codecs::PictureKind::Gif: pixels = DecodeGif(bytes); break;
    case codecs::PictureKind::Jpeg: pixels = DecodeJpeg(bytes); break;
    case codecs::PictureKind::Png: pixels = DecodePng(bytes); break;
    case codecs::PictureKind::Icon: pixels = DecodeIcon(bytes); break;
    default: break;
  }
  if (!pixels || pixels->Empty()) RaiseInvalidPicture();
  return std::move(*pixels);
}

Pixels DecodedPictures::LoadPicture(const std::string& path) {
  const std::vector<std::uint8_t> bytes = ReadWholeFile(path);
  return DecodePicture(bytes);
}

void DecodedPictures::LoadPictureSizedInto(const std::string& path, std::int32_t size,
                                           std::int32_t /*depth*/, Pixels& picture) {
  constexpr std::int32_t kLargeShellPixels = 32;
  const std::vector<std::uint8_t> bytes = ReadWholeFile(path);
  if (size != kLargeShellSize || codecs::KindOfPicture(bytes) != codecs::PictureKind::Icon) {
    picture = DecodePicture(bytes);
    return;
  }
  std::optional<Pixels> pixels = DecodeIcon(bytes, kLargeShellPixels);
  if (!pixels || pixels->Empty()) RaiseInvalidPicture();
  picture = std::move(*pixels);
}

void DecodedPictures::SavePicture(const Pixels& picture, const std::string& path) {
  const std::vector<std::uint8_t> bytes = codecs::BitmapFileBytes(picture);
  // Into a new file beside the old one, which takes the old one's place at the end; whatever
  // goes wrong, the old file stays as it was.
  const Replacement saved = PortableFileSystem().ReplaceWhole(path, [&](FileWriter& file) {
    return bytes.empty() || file.Write(bytes.data(), bytes.size());
  });
  if (saved) return;
  if (saved.noFolder) Raise(FailureNumber::PathNotFound, "Path not found: \"" + path + "\"");
  RaiseAccess(path, std::strerror(static_cast<int>(saved.error)));
}

}  // namespace quorvane::platform::portable
