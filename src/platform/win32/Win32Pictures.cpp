#include "platform/win32/Win32Pictures.h"

#include <windows.h>
#include <ole2.h>
#include <olectl.h>
#include <wincodec.h>

#include <algorithm>
#include <cstring>
#include <optional>
#include <utility>
#include <vector>

#include "base/Failure.h"
#include "codecs/BitmapDecoder.h"
#include "codecs/BitmapFile.h"
#include "codecs/PictureFormats.h"
#include "platform/win32/GdiHandles.h"
#include "platform/win32/Handles.h"
#include "platform/win32/Win32FileSystem.h"

namespace quorvane::platform::win32 {

namespace {

using Bytes = std::span<const std::uint8_t>;

// The piece of a bitmap file made and written at a time when a picture is saved.
constexpr std::uint64_t kSaveBufferBytes = std::uint64_t{1} << 18;

[[noreturn]] void RaiseInvalidPicture() { Raise(FailureNumber::InvalidPicture, "Invalid picture"); }

[[noreturn]] void RaiseAccess(const std::string& path, DWORD error) {
  Raise(FailureNumber::PathFileAccessError,
        "Path/File access error: \"" + path + "\" (error " + std::to_string(error) + ")");
}

// Movable global memory, as the loader's streams want it, locked while this holds it.
class GlobalBlock {
 public:
  GlobalBlock() = default;
  explicit GlobalBlock(std::size_t size) {
    if (size == 0) return;
    memory_.Reset(::GlobalAlloc(GMEM_MOVEABLE, size));
    lock_ = GlobalLockScope(memory_.Get());
    if (lock_) size_ = size;
  }
  explicit GlobalBlock(Bytes bytes) : GlobalBlock(bytes.size()) {
    if (size_ != 0 && size_ == bytes.size()) std::memcpy(Data(), bytes.data(), size_);
  }
  GlobalBlock(GlobalBlock&& other) noexcept
      : memory_(std::move(other.memory_)),
        lock_(std::move(other.lock_)),
        size_(std::exchange(other.size_, 0)) {}
  // The lock goes before the memory it is on.
  GlobalBlock& operator=(GlobalBlock&& other) noexcept {
    if (this != &other) {
      lock_.Unlock();
      memory_ = std::move(other.memory_);
      lock_ = std::move(other.lock_);
      size_ = std::exchange(other.size_, 0);
    }
    return *this;
  }

  std::uint8_t* Data() const { return static_cast<std::uint8_t*>(lock_.Data()); }
  std::size_t Size() const { return size_; }
  Bytes View() const { return {Data(), size_}; }

  // A stream over the bytes themselves, not a copy; the block must outlive it.
  bool MakeStream(ComPtr<IStream>& stream) const {
    return size_ != 0 && SUCCEEDED(::CreateStreamOnHGlobal(memory_.Get(), FALSE, stream.Out()));
  }

 private:
  // Declared in this order so that the lock is undone before the memory is freed.
  UniqueGlobal memory_;
  GlobalLockScope lock_;
  std::size_t size_ = 0;
};

// The file's bytes, read straight into the memory the loader's stream is made over, so that the
// picture file is held once rather than once more as the stream's copy.
GlobalBlock ReadWholeFile(const std::string& path) {
  const UniqueFile file =
      OpenFile(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, OPEN_EXISTING);
  if (!file) {
    const DWORD error = ::GetLastError();
    if (error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND ||
        error == ERROR_INVALID_NAME || error == ERROR_BAD_PATHNAME || path.empty()) {
      Raise(FailureNumber::FileNotFound, "File not found: \"" + path + "\"");
    }
    RaiseAccess(path, error);
  }
  LARGE_INTEGER size{};
  if (!::GetFileSizeEx(file.Get(), &size)) RaiseAccess(path, ::GetLastError());
  // The loader reads from a stream whose length is a 32-bit count.
  if (size.QuadPart > 0x7FFFFFFF) RaiseInvalidPicture();
  const auto expected = static_cast<std::size_t>(size.QuadPart);
  GlobalBlock bytes(expected);
  if (bytes.Size() != expected) Raise(FailureNumber::OutOfMemory, "Out of memory");
  std::size_t done = 0;
  while (done < expected) {
    DWORD read = 0;
    if (!::ReadFile(file.Get(), bytes.Data() + done, static_cast<DWORD>(expected - done), &read,
                    nullptr)) {
      RaiseAccess(path, ::GetLastError());
    }
    if (read == 0) break;
    done += read;
  }
  // Cut short while it was read: the stream must end where the bytes do.
  if (done < expected) return GlobalBlock(bytes.View().first(done));
  return bytes;
}

// A 32-bit top-down DIB section selected into a memory context.
class Canvas {
 public:
  Canvas(HDC reference, std::int32_t width, std::int32_t height)
      : width_(width),
        height_(height),
        dc_(::CreateCompatibleDC(reference)),
        bitmap_(MakeSection(reference, width, height, bits_)),
        selected_(dc_.Get(), bitmap_.Get()) {}

  bool Ready() const { return static_cast<bool>(selected_) && bits_ != nullptr; }
  HDC Dc() const { return dc_.Get(); }
  void Fill(std::uint32_t colour) {
    ::GdiFlush();
    std::fill_n(static_cast<std::uint32_t*>(bits_), Count(), colour);
  }
  std::vector<std::uint32_t> Take() const {
    const std::uint32_t* p = Bits();
    return std::vector<std::uint32_t>(p, p + Count());
  }
  // The pixels in place, valid until the next drawing.
  const std::uint32_t* Bits() const {
    ::GdiFlush();
    return static_cast<const std::uint32_t*>(bits_);
  }

 private:
  static HBITMAP MakeSection(HDC reference, std::int32_t width, std::int32_t height, void*& bits) {
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = -height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    info.bmiHeader.biCompression = BI_RGB;
    return ::CreateDIBSection(reference, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
  }
  std::size_t Count() const {
    return static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_);
  }
  std::int32_t width_;
  std::int32_t height_;
  void* bits_ = nullptr;
  // Declared in this order so that the section is selected out before it and the context go.
  UniqueMemoryDC dc_;
  UniqueBitmap bitmap_;
  SelectScope selected_;
};

// The pixels of a plain bitmap picture, exactly as it holds them, into `into`, whose memory
// is kept where the picture fits in it. False, and `into` as it was, when the bitmap can't be
// read; false and `into` empty when the copy fails half-way.
bool CopyBitmap(HBITMAP bitmap, Pixels& into) {
  BITMAP description{};
  if (::GetObjectA(bitmap, sizeof description, &description) == 0) return false;
  if (!codecs::DecodableSize(description.bmWidth, description.bmHeight)) return false;
  into.width = description.bmWidth;
  into.height = description.bmHeight;
  // Emptied first, so that growing copies nothing of the old picture.
  into.bgra.clear();
  into.bgra.resize(static_cast<std::size_t>(into.width) * static_cast<std::size_t>(into.height));
  BITMAPINFO info{};
  info.bmiHeader.biSize = sizeof info.bmiHeader;
  info.bmiHeader.biWidth = into.width;
  info.bmiHeader.biHeight = -into.height;
  info.bmiHeader.biPlanes = 1;
  info.bmiHeader.biBitCount = 32;
  info.bmiHeader.biCompression = BI_RGB;
  const WindowDC screen;
  const int rows = ::GetDIBits(screen.Get(), bitmap, 0, static_cast<UINT>(into.height),
                               into.bgra.data(), &info, DIB_RGB_COLORS);
  if (rows != into.height) {
    into = Pixels{};
    return false;
  }
  for (std::uint32_t& p : into.bgra) p |= 0xFF000000u;
  return true;
}

// HIMETRIC (hundredths of a millimetre) to pixels at `dpi`, rounded as the platform rounds.
std::int32_t ToPixels(OLE_XSIZE_HIMETRIC himetric, int dpi) {
  return ::MulDiv(himetric, dpi, 2540);
}

// Draws the picture at its pixel size. A transparent one is drawn twice, on black and on white:
// where the two differ the picture lets the background through, and by how much tells its alpha.
std::optional<Pixels> RenderPicture(IPicture* picture, bool transparent) {
  OLE_XSIZE_HIMETRIC hmWidth = 0;
  OLE_YSIZE_HIMETRIC hmHeight = 0;
  if (FAILED(picture->get_Width(&hmWidth)) || FAILED(picture->get_Height(&hmHeight))) {
    return std::nullopt;
  }
  const WindowDC screen;
  std::int32_t width = ToPixels(hmWidth, ::GetDeviceCaps(screen.Get(), LOGPIXELSX));
  std::int32_t height = ToPixels(hmHeight, ::GetDeviceCaps(screen.Get(), LOGPIXELSY));
  // A bitmap knows its own size in pixels; the HIMETRIC one may be a rounding away from it.
  short type = PICTYPE_UNINITIALIZED;
  OLE_HANDLE handle = 0;
  if (SUCCEEDED(picture->get_Type(&type)) && type == PICTYPE_BITMAP &&
      SUCCEEDED(picture->get_Handle(&handle))) {
    BITMAP description{};
    if (::GetObjectA(ToNative<HBITMAP>(static_cast<GdiHandle>(handle)), sizeof description,
                     &description) != 0) {
      width = description.bmWidth;
      height = description.bmHeight;
    }
  }
  if (!codecs::DecodableSize(width, height)) return std::nullopt;

  Canvas canvas(screen.Get(), width, height);
  if (!canvas.Ready()) return std::nullopt;
  const auto draw = [&](std::uint32_t background) {
    canvas.Fill(background);
    return SUCCEEDED(picture->Render(canvas.Dc(), 0, 0, width, height, 0, hmHeight, hmWidth,
                                     -hmHeight, nullptr));
  };
  if (!draw(0x000000u)) return std::nullopt;
  Pixels pixels;
  pixels.width = width;
  pixels.height = height;
  pixels.bgra = canvas.Take();
  if (!transparent) {
    for (std::uint32_t& p : pixels.bgra) p |= 0xFF000000u;
    return pixels;
  }
  if (!draw(0xFFFFFFu)) return std::nullopt;
  const std::uint32_t* onWhite = canvas.Bits();
  for (std::size_t i = 0; i < pixels.bgra.size(); ++i) {
    const std::uint32_t black = pixels.bgra[i];
    const std::uint32_t white = onWhite[i];
    if (((black ^ white) & 0xFFFFFFu) == 0) {  // nothing of the background shows
      pixels.bgra[i] = black | 0xFF000000u;
      continue;
    }
    std::uint32_t through = 0;  // how much of the background shows, 0 to 255
    for (int shift = 0; shift < 24; shift += 8) {
      const std::uint32_t b = (black >> shift) & 0xFFu;
      const std::uint32_t w = (white >> shift) & 0xFFu;
      through = std::max(through, w > b ? w - b : 0u);
    }
    const std::uint32_t alpha = 255u - through;
    if (alpha == 0) {
      pixels.bgra[i] = 0;
      continue;
    }
    std::uint32_t colour = alpha << 24;
    for (int shift = 0; shift < 24; shift += 8) {
      const std::uint32_t b = (black >> shift) & 0xFFu;
      colour |= std::min(255u, (b * 255u + alpha / 2) / alpha) << shift;
    }
    pixels.bgra[i] = colour;
  }
  return pixels;
}

// The picture the OLE loader makes of the bytes, into `into` (see CopyBitmap); false, and
// `into` as it was, when the loader makes none.
bool LoadWithOle(const GlobalBlock& bytes, Pixels& into) {
  ComPtr<IStream> stream;
  if (!bytes.MakeStream(stream)) return false;
  ComPtr<IPicture> picture;
  if (FAILED(::OleLoadPicture(stream.Get(), static_cast<LONG>(bytes.Size()), FALSE, IID_IPicture,
                              picture.OutVoid())) ||
      picture.Get() == nullptr) {
    return false;
  }
  DWORD attributes = 0;
  if (FAILED(picture->get_Attributes(&attributes))) attributes = 0;
  const bool transparent = (attributes & PICTURE_TRANSPARENT) != 0;
  short type = PICTYPE_UNINITIALIZED;
  if (FAILED(picture->get_Type(&type))) return false;
  if (type == PICTYPE_BITMAP && !transparent) {
    OLE_HANDLE handle = 0;
    if (FAILED(picture->get_Handle(&handle))) return false;
    return CopyBitmap(ToNative<HBITMAP>(static_cast<GdiHandle>(handle)), into);
  }
  std::optional<Pixels> drawn = RenderPicture(picture.Get(), transparent);
  if (!drawn) return false;
  into = std::move(*drawn);
  return true;
}

// The first frame of the picture in the bytes as the imaging component decodes it, with what it
// stands on. The calling thread's apartment must be open while it is used.
struct FirstFrame {
  ComPtr<IWICImagingFactory> factory;
  ComPtr<IWICStream> stream;
  ComPtr<IWICBitmapDecoder> decoder;
  ComPtr<IWICBitmapFrameDecode> frame;

  // False when the component can't be had or refuses the bytes.
  bool Open(Bytes bytes) {
    return SUCCEEDED(::CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER,
                                        IID_IWICImagingFactory, factory.OutVoid())) &&
           SUCCEEDED(factory->CreateStream(stream.Out())) &&
           SUCCEEDED(stream->InitializeFromMemory(const_cast<BYTE*>(bytes.data()),
                                                  static_cast<DWORD>(bytes.size()))) &&
           SUCCEEDED(factory->CreateDecoderFromStream(stream.Get(), nullptr,
                                                      WICDecodeMetadataCacheOnDemand,
                                                      decoder.Out())) &&
           SUCCEEDED(decoder->GetFrame(0, frame.Out()));
  }
};

std::optional<Pixels> LoadWithImagingComponent(Bytes bytes) {
  if (bytes.size() > 0xFFFFFFFFu) return std::nullopt;
  ComApartment apartment;
  FirstFrame opened;
  if (!opened.Open(bytes)) return std::nullopt;
  ComPtr<IWICBitmapFrameDecode>& frame = opened.frame;
  // Palette pictures convert to 32 bits with alpha; straight to 24 they may fail.
  ComPtr<IWICBitmapSource> converted;
  if (FAILED(::WICConvertBitmapSource(GUID_WICPixelFormat32bppBGRA, frame.Get(),
                                      converted.Out()))) {
    return std::nullopt;
  }
  UINT width = 0;
  UINT height = 0;
  if (FAILED(converted->GetSize(&width, &height)) || !codecs::DecodableSize(width, height)) {
    return std::nullopt;
  }
  Pixels pixels;
  pixels.width = static_cast<std::int32_t>(width);
  pixels.height = static_cast<std::int32_t>(height);
  pixels.bgra.resize(static_cast<std::size_t>(width) * height);
  if (FAILED(converted->CopyPixels(nullptr, width * 4,
                                   static_cast<UINT>(pixels.bgra.size() * 4),
                                   reinterpret_cast<BYTE*>(pixels.bgra.data())))) {
    return std::nullopt;
  }
  return pixels;
}

// What the imaging component makes of a picture decoded straight into the caller's memory.
enum class Straight {
  Decoded,   // the picture is in `into`
  Refused,   // the component can't decode it; `into` is as it was
  Unfit,     // decoded with pixels that are not opaque, which the OLE loader would draw
             // through a mask instead; `into` has been written over
  Failed,    // the component failed half-way; `into` is empty
};

// True when the bytes are a GIF file whose first image has a transparent colour: the OLE loader
// gives those with a mask, drawn on a background, which the component's pixels are not.
bool GifHasTransparentColour(Bytes bytes) {
  constexpr std::size_t kScreenEnd = 13;  // the signature and the logical screen descriptor
  if (bytes.size() < kScreenEnd) return true;
  std::size_t at = kScreenEnd;
  if ((bytes[10] & 0x80u) != 0) at += std::size_t{3} << ((bytes[10] & 0x07u) + 1);
  while (at < bytes.size()) {
    const std::uint8_t block = bytes[at];
    if (block == 0x2C || block == 0x3B) return false;  // the first image, or the file's end
    if (block != 0x21 || at + 1 >= bytes.size()) return true;
    const std::uint8_t label = bytes[at + 1];
    at += 2;
    if (label == 0xF9 && at + 1 < bytes.size() && bytes[at] >= 1 && (bytes[at + 1] & 0x01u) != 0) {
      return true;
    }
    // The extension's sub-blocks, up to the empty one.
    while (at < bytes.size() && bytes[at] != 0) at += std::size_t{bytes[at]} + 1;
    ++at;
  }
  return true;
}

// The kinds the imaging component decodes as the OLE loader does. The loader decodes JPEG and
// GIF through the component itself and then only copies the pixels, twice, into fresh memory;
// a bitmap's pixels it copies through a device bitmap, which gives what the component gives.
// Transparent pictures are the loader's: it draws them through a mask, which the component's
// pixels don't match.
bool DecodedAlike(codecs::PictureKind kind, Bytes bytes) {
  switch (kind) {
    case codecs::PictureKind::Jpeg:
    case codecs::PictureKind::Bitmap:
      return true;
    case codecs::PictureKind::Gif:
      return !GifHasTransparentColour(bytes);
    default:
      return false;
  }
}

// Rows copied at a time: a band of the picture small enough to stay in the cache while its
// 24-bit pixels are widened in place, and to keep a converter's own buffer small.
constexpr std::size_t kBandBytes = std::size_t{1} << 17;

// The imaging component's decoding of the bytes, opaque 32-bit pixels, straight into `into`,
// whose memory is kept where the picture fits. Its first row is decoded before `into` is
// touched, so that a picture the component can't read leaves `into` as it was.
Straight DecodeStraight(Bytes bytes, Pixels& into) {
  if (bytes.empty() || bytes.size() > 0xFFFFFFFFu) return Straight::Refused;
  ComApartment apartment;
  FirstFrame opened;
  if (!opened.Open(bytes)) return Straight::Refused;
  ComPtr<IWICBitmapFrameDecode>& frame = opened.frame;
  UINT width = 0;
  UINT height = 0;
  WICPixelFormatGUID format{};
  if (FAILED(frame->GetSize(&width, &height)) || !codecs::DecodableSize(width, height) ||
      FAILED(frame->GetPixelFormat(&format))) {
    return Straight::Refused;
  }
  // Three bytes a pixel are copied into the end of each band's memory and widened in place;
  // any other format goes through the component's converter, a band at a time.
  const bool threeBytes = IsEqualGUID(format, GUID_WICPixelFormat24bppBGR) != FALSE;
  ComPtr<IWICBitmapSource> source;
  if (threeBytes) {
    if (FAILED(frame->QueryInterface(IID_IWICBitmapSource, source.OutVoid()))) {
      return Straight::Refused;
    }
  } else if (FAILED(::WICConvertBitmapSource(GUID_WICPixelFormat32bppBGRA, frame.Get(),
                                             source.Out()))) {
    return Straight::Refused;
  }
  const UINT rowBytes = width * (threeBytes ? 3u : 4u);
  // The first row, into memory of its own: a decoder that decodes the whole picture at its first
  // copy (Wine's do) does it here, so that a damaged picture is refused before `into` changes.
  {
    std::vector<BYTE> row(rowBytes);
    const WICRect first{0, 0, static_cast<INT>(width), 1};
    if (FAILED(source->CopyPixels(&first, rowBytes, rowBytes, row.data()))) {
      return Straight::Refused;
    }
  }
  into.width = static_cast<std::int32_t>(width);
  into.height = static_cast<std::int32_t>(height);
  // Emptied first, so that growing copies nothing of the old picture.
  into.bgra.clear();
  into.bgra.resize(static_cast<std::size_t>(width) * height);
  const UINT bandRows = std::max<UINT>(
      1, static_cast<UINT>(std::min<std::size_t>(height, kBandBytes / (std::size_t{width} * 4))));
  bool opaque = true;
  for (UINT top = 0; top < height; top += bandRows) {
    const UINT rows = std::min(bandRows, height - top);
    std::uint32_t* band = into.bgra.data() + static_cast<std::size_t>(top) * width;
    const std::size_t count = static_cast<std::size_t>(rows) * width;
    const WICRect rect{0, static_cast<INT>(top), static_cast<INT>(width), static_cast<INT>(rows)};
    if (threeBytes) {
      // The band's 3 * count bytes at its end: pixel i is widened from byte count + 3i to byte
      // 4i, which never reaches a byte not yet read, since count + 3j > 4i + 3 for every j > i.
      BYTE* packed = reinterpret_cast<BYTE*>(band) + count;
      if (FAILED(source->CopyPixels(&rect, rowBytes, static_cast<UINT>(count * 3), packed))) {
        into = Pixels{};
        return Straight::Failed;
      }
      for (std::size_t i = 0; i < count; ++i) {
        const BYTE* p = packed + 3 * i;
        const std::uint32_t pixel = 0xFF000000u | static_cast<std::uint32_t>(p[0]) |
                                    (static_cast<std::uint32_t>(p[1]) << 8) |
                                    (static_cast<std::uint32_t>(p[2]) << 16);
        band[i] = pixel;
      }
      continue;
    }
    if (FAILED(source->CopyPixels(&rect, rowBytes, static_cast<UINT>(count * 4),
                                  reinterpret_cast<BYTE*>(band)))) {
      into = Pixels{};
      return Straight::Failed;
    }
    for (std::size_t i = 0; i < count; ++i) opaque = opaque && (band[i] >> 24) == 0xFFu;
  }
  return opaque ? Straight::Decoded : Straight::Unfit;
}

}  // namespace

Pixels DecodeWithImagingComponent(std::span<const std::uint8_t> bytes) {
  std::optional<Pixels> pixels = LoadWithImagingComponent(bytes);
  if (!pixels || pixels->Empty()) RaiseInvalidPicture();
  return std::move(*pixels);
}

bool DecodeStraightInto(std::span<const std::uint8_t> bytes, Pixels& picture) {
  if (!DecodedAlike(codecs::KindOfPicture(bytes), bytes)) return false;
  const Straight straight = DecodeStraight(bytes, picture);
  if (straight == Straight::Unfit) picture = Pixels{};
  return straight == Straight::Decoded;
}

void Win32Pictures::LoadPictureInto(const std::string& path, Pixels& picture) {
  LoadIconSized(path, 0, picture);
}

void Win32Pictures::LoadPictureSizedInto(const std::string& path, std::int32_t size,
                                         std::int32_t /*depth*/, Pixels& picture) {
  LoadIconSized(path, size == kLargeShellSize ? ::GetSystemMetrics(SM_CXICON) : 0, picture);
}

void Win32Pictures::LoadIconSized(const std::string& path, std::int32_t iconSize,
                                  Pixels& picture) {
  GlobalBlock file = ReadWholeFile(path);
  Bytes bytes = file.View();
  codecs::PictureKind kind = codecs::KindOfPicture(bytes);
  if (kind == codecs::PictureKind::Bitmap && !codecs::DecodeBitmapFile(bytes)) RaiseInvalidPicture();
  if (kind == codecs::PictureKind::Icon) {
    const auto entries = codecs::ReadIconDirectory(bytes);
    if (!entries) RaiseInvalidPicture();
    // The largest image, or the one nearest the size asked for, alone in the file.
    const codecs::IconDirectoryEntry& largest = iconSize > 0
                                                    ? codecs::IconEntryForSize(*entries, iconSize)
                                                    : codecs::LargestIconEntry(*entries);
    if (!codecs::DecodableSize(largest.width, largest.height)) RaiseInvalidPicture();
    if (largest.png) {
      // The image is a PNG file of its own, alpha and all: it is decoded as one, which gives
      // its pixels exactly rather than drawn on a background.
      file = GlobalBlock(bytes.subspan(largest.offset, largest.size));
      kind = codecs::PictureKind::Png;
    } else if (codecs::Read16(bytes, 4) != 1 || iconSize > 0) {
      file = GlobalBlock(Bytes(codecs::SingleEntryIconFile(bytes, largest)));
    }
    bytes = file.View();
  }
  // Whatever the imaging component refuses goes to the OLE loader, which has the last word.
  bool writtenOver = false;
  if (decoding_ == PictureDecoding::Fastest && DecodedAlike(kind, bytes)) {
    const Straight straight = DecodeStraight(bytes, picture);
    if (straight == Straight::Decoded) return;
    writtenOver = straight != Straight::Refused;
  }
  if (!bytes.empty() && LoadWithOle(file, picture) && !picture.Empty()) return;
  if (kind == codecs::PictureKind::Png) {
    std::optional<Pixels> pixels = LoadWithImagingComponent(bytes);
    if (pixels && !pixels->Empty()) {
      picture = std::move(*pixels);
      return;
    }
  }
  // A failure after the picture's memory was begun on leaves it empty.
  if (writtenOver) picture = Pixels{};
  RaiseInvalidPicture();
}

Pixels Win32Pictures::LoadPicture(const std::string& path) {
  Pixels picture;
  LoadPictureInto(path, picture);
  return picture;
}

void Win32Pictures::SavePicture(const Pixels& picture, const std::string& path) {
  // Checks the picture before anything is made on disk.
  codecs::BitmapFileEncoder encoder(picture);
  // The file goes out a piece at a time through one small buffer: a whole wallpaper's bytes
  // would be tens of megabytes of fresh memory, and touching that costs more than the writes.
  std::vector<std::uint8_t> buffer(
      static_cast<std::size_t>(std::min<std::uint64_t>(encoder.Size(), kSaveBufferBytes)));
  // Into a new file beside the old one, which takes the old one's place at the end; whatever
  // goes wrong, the old file stays as it was.
  const Replacement saved = Win32FileSystem().ReplaceWhole(path, [&](FileWriter& file) {
    while (!encoder.Done()) {
      const std::size_t length = encoder.Next(buffer);
      if (!file.Write(buffer.data(), length)) return false;
    }
    return true;
  });
  if (saved) return;
  if (saved.noFolder) Raise(FailureNumber::PathNotFound, "Path not found: \"" + path + "\"");
  RaiseAccess(path, saved.error);
}

}  // namespace quorvane::platform::win32
