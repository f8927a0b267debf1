#include "platform/portable/DecodedPictures.h"

#include <fcntl.h>
#include <gif_lib.h>
#include <png.h>
#include <sys/stat.h>
#include <turbojpeg.h>
#include <unistd.h>

#include <cerrno>
#include <csetjmp>
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

// PNG goes through libpng's lower-level reader, and its samples are brought to 8-bit BGRA here,
// as the platform's reader brings them: as they stand, whatever gamma the file declares, and
// 16-bit samples by their high byte. (libpng's simplified reader would correct from a declared
// gamma, take 16-bit samples without one for linear light, which shows them far too bright,
// and give wrong pixels for interlaced 16-bit pictures.)
struct PngSource {
  Bytes bytes;
  std::size_t at = 0;
};

void ReadPngBytes(png_structp png, png_bytep out, png_size_t count) {
  auto* source = static_cast<PngSource*>(png_get_io_ptr(png));
  if (count > source->bytes.size() - source->at) png_error(png, "the file is cut short");
  std::memcpy(out, source->bytes.data() + source->at, count);
  source->at += count;
}

void IgnorePngWarning(png_structp, png_const_charp) {}

class PngReader {
 public:
  explicit PngReader(Bytes bytes) : source_{bytes, 0} {
    png_ = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, IgnorePngWarning);
    if (png_ != nullptr) info_ = png_create_info_struct(png_);
  }
  ~PngReader() { png_destroy_read_struct(&png_, info_ != nullptr ? &info_ : nullptr, nullptr); }
  PngReader(const PngReader&) = delete;
  PngReader& operator=(const PngReader&) = delete;

  // Reads the header and asks for rows of red, green, blue and alpha, of 8 bits or, for a
  // 16-bit picture, of 16 bits in the host's order, each pass of an interlaced picture on its
  // own; false on any error. libpng leaves these functions by a long jump on error: nothing in
  // them has a destructor.
  bool Prepare() {
    if (png_ == nullptr || info_ == nullptr) return false;
    if (setjmp(png_jmpbuf(png_)) != 0) return false;
    png_set_read_fn(png_, &source_, ReadPngBytes);
    png_read_info(png_, info_);
    width_ = png_get_image_width(png_, info_);
    height_ = png_get_image_height(png_, info_);
    interlaced_ = png_get_interlace_type(png_, info_) != PNG_INTERLACE_NONE;
    sixteen_ = png_get_bit_depth(png_, info_) == 16;
    png_set_expand(png_);
    if (png_get_valid(png_, info_, PNG_INFO_tRNS) != 0) png_set_tRNS_to_alpha(png_);
    if ((png_get_color_type(png_, info_) & PNG_COLOR_MASK_COLOR) == 0) png_set_gray_to_rgb(png_);
    png_set_filler(png_, sixteen_ ? 0xFFFF : 0xFF, PNG_FILLER_AFTER);
    if (sixteen_) png_set_swap(png_);
    png_read_update_info(png_, info_);
    return png_get_rowbytes(png_, info_) == static_cast<png_size_t>(width_) * (sixteen_ ? 8 : 4);
  }
  bool ReadRow(std::uint8_t* row) {
    if (setjmp(png_jmpbuf(png_)) != 0) return false;
    png_read_row(png_, row, nullptr);
    return true;
  }
  bool Finish() {
    if (setjmp(png_jmpbuf(png_)) != 0) return false;
    png_read_end(png_, nullptr);
    return true;
  }

  png_uint_32 Width() const { return width_; }
  png_uint_32 Height() const { return height_; }
  bool Interlaced() const { return interlaced_; }
  bool Sixteen() const { return sixteen_; }

 private:
  PngSource source_;
  png_structp png_ = nullptr;
  png_infop info_ = nullptr;
  png_uint_32 width_ = 0;
  png_uint_32 height_ = 0;
  bool interlaced_ = false;
  bool sixteen_ = false;
};

std::optional<Pixels> DecodePng(Bytes bytes) {
  PngReader reader(bytes);
  if (!reader.Prepare() || !codecs::DecodableSize(reader.Width(), reader.Height())) {
    return std::nullopt;
  }
  const std::size_t width = reader.Width();
  const std::size_t height = reader.Height();
  const bool sixteen = reader.Sixteen();
  Pixels pixels = Sized(static_cast<std::int64_t>(width), static_cast<std::int64_t>(height), 0);
  std::vector<std::uint8_t> row(width * (sixteen ? 8 : 4));
  // A sample's 8 bits: for 16 bits, stored here low byte first, the high byte.
  const auto sample = [&](std::size_t k, std::size_t c) -> std::uint32_t {
    return sixteen ? row[8 * k + 2 * c + 1] : row[4 * k + c];
  };
  // The seven passes of an interlaced picture: where each starts and how far apart its pixels
  // lie; a pass with no row or no column is not stored.
  const std::size_t startX[7] = {0, 4, 0, 2, 0, 1, 0};
  const std::size_t startY[7] = {0, 0, 4, 0, 2, 0, 1};
  const std::size_t stepX[7] = {8, 8, 4, 4, 2, 2, 1};
  const std::size_t stepY[7] = {8, 8, 8, 4, 4, 2, 2};
  const bool interlaced = reader.Interlaced();
  for (std::size_t pass = 0; pass < (interlaced ? 7u : 1u); ++pass) {
    const std::size_t x0 = interlaced ? startX[pass] : 0;
    const std::size_t y0 = interlaced ? startY[pass] : 0;
    const std::size_t dx = interlaced ? stepX[pass] : 1;
    const std::size_t dy = interlaced ? stepY[pass] : 1;
    if (x0 >= width || y0 >= height) continue;
    const std::size_t columns = (width - x0 + dx - 1) / dx;
    for (std::size_t y = y0; y < height; y += dy) {
      if (!reader.ReadRow(row.data())) return std::nullopt;
      std::uint32_t* out = pixels.bgra.data() + y * width;
      for (std::size_t k = 0; k < columns; ++k) {
        out[x0 + k * dx] = (sample(k, 3) << 24) | (sample(k, 0) << 16) | (sample(k, 1) << 8) | sample(k, 2);
      }
    }
  }
  if (!reader.Finish()) return std::nullopt;
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
