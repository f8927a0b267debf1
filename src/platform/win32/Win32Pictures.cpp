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

// One reference to a COM object, given back at the end of its scope.
template <class T>
class Com {
 public:
  Com() = default;
  ~Com() {
    if (p_ != nullptr) p_->Release();
  }
  Com(const Com&) = delete;
  Com& operator=(const Com&) = delete;
  T* operator->() const { return p_; }
  T* Get() const { return p_; }
  T** Out() { return &p_; }
  void** OutVoid() { return reinterpret_cast<void**>(&p_); }

 private:
  T* p_ = nullptr;
};

class FileHandle {
 public:
  explicit FileHandle(HANDLE h) : h_(h) {}
  ~FileHandle() {
    if (h_ != INVALID_HANDLE_VALUE) ::CloseHandle(h_);
  }
  FileHandle(const FileHandle&) = delete;
  FileHandle& operator=(const FileHandle&) = delete;
  HANDLE Get() const { return h_; }
  bool Close() {
    if (h_ == INVALID_HANDLE_VALUE) return true;
    const HANDLE h = h_;
    h_ = INVALID_HANDLE_VALUE;
    return ::CloseHandle(h) != FALSE;
  }

 private:
  HANDLE h_;
};

class ScreenContext {
 public:
  ScreenContext() : dc_(::GetDC(nullptr)) {}
  ~ScreenContext() {
    if (dc_ != nullptr) ::ReleaseDC(nullptr, dc_);
  }
  ScreenContext(const ScreenContext&) = delete;
  ScreenContext& operator=(const ScreenContext&) = delete;
  HDC Get() const { return dc_; }

 private:
  HDC dc_;
};

// Movable global memory, as the loader's streams want it, locked while this holds it.
class GlobalBlock {
 public:
  GlobalBlock() = default;
  explicit GlobalBlock(std::size_t size) {
    if (size == 0) return;
    memory_ = ::GlobalAlloc(GMEM_MOVEABLE, size);
    if (memory_ == nullptr) return;
    data_ = static_cast<std::uint8_t*>(::GlobalLock(memory_));
    if (data_ != nullptr) size_ = size;
  }
  explicit GlobalBlock(Bytes bytes) : GlobalBlock(bytes.size()) {
    if (size_ != 0 && size_ == bytes.size()) std::memcpy(data_, bytes.data(), size_);
  }
  ~GlobalBlock() { Free(); }
  GlobalBlock(GlobalBlock&& other) noexcept
      : memory_(std::exchange(other.memory_, nullptr)),
        data_(std::exchange(other.data_, nullptr)),
        size_(std::exchange(other.size_, 0)) {}
  GlobalBlock& operator=(GlobalBlock&& other) noexcept {
    if (this != &other) {
      Free();
      memory_ = std::exchange(other.memory_, nullptr);
      data_ = std::exchange(other.data_, nullptr);
      size_ = std::exchange(other.size_, 0);
    }
    return *this;
  }
  GlobalBlock(const GlobalBlock&) = delete;
  GlobalBlock& operator=(const GlobalBlock&) = delete;

  std::uint8_t* Data() const { return data_; }
  std::size_t Size() const { return size_; }
  Bytes View() const { return {data_, size_}; }

  // A stream over the bytes themselves, not a copy; the block must outlive it.
  bool MakeStream(Com<IStream>& stream) const {
    return size_ != 0 && SUCCEEDED(::CreateStreamOnHGlobal(memory_, FALSE, stream.Out()));
  }

 private:
  void Free() {
    if (data_ != nullptr) ::GlobalUnlock(memory_);
    if (memory_ != nullptr) ::GlobalFree(memory_);
    memory_ = nullptr;
    data_ = nullptr;
    size_ = 0;
  }

  HGLOBAL memory_ = nullptr;
  std::uint8_t* data_ = nullptr;
  std::size_t size_ = 0;
};

// The file's bytes, read straight into the memory the loader's stream is made over, so that the
// picture file is held once rather than once more as the stream's copy.
GlobalBlock ReadWholeFile(const std::string& path) {
  FileHandle file(::CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
  if (file.Get() == INVALID_HANDLE_VALUE) {
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
      : width_(width), height_(height) {
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = -height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    info.bmiHeader.biCompression = BI_RGB;
    dc_ = ::CreateCompatibleDC(reference);
    bitmap_ = ::CreateDIBSection(reference, &info, DIB_RGB_COLORS, &bits_, nullptr, 0);
    if (dc_ != nullptr && bitmap_ != nullptr) old_ = ::SelectObject(dc_, bitmap_);
  }
  ~Canvas() {
    if (old_ != nullptr) ::SelectObject(dc_, old_);
    if (bitmap_ != nullptr) ::DeleteObject(bitmap_);
    if (dc_ != nullptr) ::DeleteDC(dc_);
  }
  Canvas(const Canvas&) = delete;
  Canvas& operator=(const Canvas&) = delete;

  bool Ready() const { return old_ != nullptr && bits_ != nullptr; }
  HDC Dc() const { return dc_; }
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
  std::size_t Count() const {
    return static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_);
  }
  std::int32_t width_;
  std::int32_t height_;
  HDC dc_ = nullptr;
  HBITMAP bitmap_ = nullptr;
  HGDIOBJ old_ = nullptr;
  void* bits_ = nullptr;
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
  ScreenContext screen;
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
  ScreenContext screen;
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
  Com<IStream> stream;
  if (!bytes.MakeStream(stream)) return false;
  Com<IPicture> picture;
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

// COM for this thread for the life of a scope, where it wasn't started already.
class ComApartment {
 public:
  ComApartment() : result_(::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)) {}
  ~ComApartment() {
    if (SUCCEEDED(result_)) ::CoUninitialize();
  }
  ComApartment(const ComApartment&) = delete;
  ComApartment& operator=(const ComApartment&) = delete;

 private:
  HRESULT result_;
};

std::optional<Pixels> LoadWithImagingComponent(Bytes bytes) {
  if (bytes.size() > 0xFFFFFFFFu) return std::nullopt;
  ComApartment apartment;
  Com<IWICImagingFactory> factory;
  if (FAILED(::CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER,
                                IID_IWICImagingFactory, factory.OutVoid()))) {
    return std::nullopt;
  }
  Com<IWICStream> stream;
  if (FAILED(factory->CreateStream(stream.Out())) ||
      FAILED(stream->InitializeFromMemory(const_cast<BYTE*>(bytes.data()),
                                          static_cast<DWORD>(bytes.size())))) {
    return std::nullopt;
  }
  Com<IWICBitmapDecoder> decoder;
  if (FAILED(factory->CreateDecoderFromStream(stream.Get(), nullptr,
                                              WICDecodeMetadataCacheOnDemand, decoder.Out()))) {
    return std::nullopt;
  }
  Com<IWICBitmapFrameDecode> frame;
  if (FAILED(decoder->GetFrame(0, frame.Out()))) return std::nullopt;
  // Palette pictures convert to 32 bits with alpha; straight to 24 they may fail.
  Com<IWICBitmapSource> converted;
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

}  // namespace

Pixels DecodeWithImagingComponent(std::span<const std::uint8_t> bytes) {
  std::optional<Pixels> pixels = LoadWithImagingComponent(bytes);
  if (!pixels || pixels->Empty()) RaiseInvalidPicture();
  return std::move(*pixels);
}

void Win32Pictures::LoadPictureInto(const std::string& path, Pixels& picture) {
  GlobalBlock file = ReadWholeFile(path);
  Bytes bytes = file.View();
  codecs::PictureKind kind = codecs::KindOfPicture(bytes);
  if (kind == codecs::PictureKind::Bitmap && !codecs::DecodeBitmapFile(bytes)) RaiseInvalidPicture();
  if (kind == codecs::PictureKind::Icon) {
    const auto entries = codecs::ReadIconDirectory(bytes);
    if (!entries) RaiseInvalidPicture();
    const codecs::IconDirectoryEntry& largest = codecs::LargestIconEntry(*entries);
    if (!codecs::DecodableSize(largest.width, largest.height)) RaiseInvalidPicture();
    if (largest.png) {
      // The image is a PNG file of its own, alpha and all: it is decoded as one, which gives
      // its pixels exactly rather than drawn on a background.
      file = GlobalBlock(bytes.subspan(largest.offset, largest.size));
      kind = codecs::PictureKind::Png;
    } else if (codecs::Read16(bytes, 4) != 1) {
      file = GlobalBlock(Bytes(codecs::SingleEntryIconFile(bytes, largest)));
    }
    bytes = file.View();
  }
  if (!bytes.empty() && LoadWithOle(file, picture) && !picture.Empty()) return;
  if (kind == codecs::PictureKind::Png) {
    std::optional<Pixels> pixels = LoadWithImagingComponent(bytes);
    if (pixels && !pixels->Empty()) {
      picture = std::move(*pixels);
      return;
    }
  }
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
  // A new file beside the old one, named for this process, takes the old one's place at the end.
  const std::string scratch = path + "." + std::to_string(::GetCurrentProcessId()) + ".saving";
  FileHandle file(::CreateFileA(scratch.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                FILE_ATTRIBUTE_NORMAL, nullptr));
  if (file.Get() == INVALID_HANDLE_VALUE) {
    const DWORD error = ::GetLastError();
    if (error == ERROR_PATH_NOT_FOUND || error == ERROR_INVALID_NAME ||
        error == ERROR_BAD_PATHNAME) {
      Raise(FailureNumber::PathNotFound, "Path not found: \"" + path + "\"");
    }
    RaiseAccess(path, error);
  }
  // Whatever went wrong, the scratch file goes and the old file stays as it was.
  const auto giveUp = [&](DWORD error) {
    file.Close();
    ::DeleteFileA(scratch.c_str());
    RaiseAccess(path, error);
  };
  // The file goes out a piece at a time through one small buffer: a whole wallpaper's bytes
  // would be tens of megabytes of fresh memory, and touching that costs more than the writes.
  std::vector<std::uint8_t> buffer(
      static_cast<std::size_t>(std::min<std::uint64_t>(encoder.Size(), kSaveBufferBytes)));
  while (!encoder.Done()) {
    const std::size_t length = encoder.Next(buffer);
    std::size_t done = 0;
    while (done < length) {
      DWORD written = 0;
      if (!::WriteFile(file.Get(), buffer.data() + done, static_cast<DWORD>(length - done),
                       &written, nullptr) ||
          written == 0) {
        giveUp(::GetLastError());
      }
      done += written;
    }
  }
  // On the disk before it replaces the old file, so that no crash can leave a part of it there.
  if (!::FlushFileBuffers(file.Get())) giveUp(::GetLastError());
  if (!file.Close()) giveUp(::GetLastError());
  if (!::MoveFileExA(scratch.c_str(), path.c_str(),
                     MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH)) {
    giveUp(::GetLastError());
  }
}

}  // namespace quorvane::platform::win32
