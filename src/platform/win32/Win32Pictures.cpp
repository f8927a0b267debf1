#include "platform/win32/Win32Pictures.h"

#include <windows.h>
#include <ole2.h>
#include <olectl.h>
#include <wincodec.h>

#include <algorithm>
#include <cstring>
#include <optional>
#include <vector>

#include "core/Failure.h"
#include "platform/BitmapDecoder.h"
#include "platform/BitmapFile.h"
#include "platform/PictureFormats.h"
#include "platform/win32/GdiHandles.h"

namespace quorvane::platform::win32 {

namespace {

using Bytes = std::span<const std::uint8_t>;

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

std::vector<std::uint8_t> ReadWholeFile(const std::string& path) {
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
  std::vector<std::uint8_t> bytes(static_cast<std::size_t>(size.QuadPart));
  std::size_t done = 0;
  while (done < bytes.size()) {
    DWORD read = 0;
    if (!::ReadFile(file.Get(), bytes.data() + done, static_cast<DWORD>(bytes.size() - done),
                    &read, nullptr)) {
      RaiseAccess(path, ::GetLastError());
    }
    if (read == 0) break;
    done += read;
  }
  bytes.resize(done);
  return bytes;
}

// A stream over a copy of the bytes in movable global memory, as the loader wants it.
bool MakeStream(Bytes bytes, Com<IStream>& stream) {
  HGLOBAL memory = ::GlobalAlloc(GMEM_MOVEABLE, bytes.size());
  if (memory == nullptr) return false;
  void* p = ::GlobalLock(memory);
  if (p == nullptr) {
    ::GlobalFree(memory);
    return false;
  }
  std::memcpy(p, bytes.data(), bytes.size());
  ::GlobalUnlock(memory);
  if (FAILED(::CreateStreamOnHGlobal(memory, TRUE, stream.Out()))) {
    ::GlobalFree(memory);
    return false;
  }
  return true;
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
    ::GdiFlush();
    const auto* p = static_cast<const std::uint32_t*>(bits_);
    return std::vector<std::uint32_t>(p, p + Count());
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

// The pixels of a plain bitmap picture, exactly as it holds them.
std::optional<ui::Pixels> CopyBitmap(HBITMAP bitmap) {
  BITMAP description{};
  if (::GetObjectA(bitmap, sizeof description, &description) == 0) return std::nullopt;
  if (!DecodableSize(description.bmWidth, description.bmHeight)) return std::nullopt;
  ui::Pixels pixels;
  pixels.width = description.bmWidth;
  pixels.height = description.bmHeight;
  pixels.bgra.resize(static_cast<std::size_t>(pixels.width) *
                     static_cast<std::size_t>(pixels.height));
  BITMAPINFO info{};
  info.bmiHeader.biSize = sizeof info.bmiHeader;
  info.bmiHeader.biWidth = pixels.width;
  info.bmiHeader.biHeight = -pixels.height;
  info.bmiHeader.biPlanes = 1;
  info.bmiHeader.biBitCount = 32;
  info.bmiHeader.biCompression = BI_RGB;
  ScreenContext screen;
  const int rows = ::GetDIBits(screen.Get(), bitmap, 0, static_cast<UINT>(pixels.height),
                               pixels.bgra.data(), &info, DIB_RGB_COLORS);
  if (rows != pixels.height) return std::nullopt;
  for (std::uint32_t& p : pixels.bgra) p |= 0xFF000000u;
  return pixels;
}

// HIMETRIC (hundredths of a millimetre) to pixels at `dpi`, rounded as the platform rounds.
std::int32_t ToPixels(OLE_XSIZE_HIMETRIC himetric, int dpi) {
  return ::MulDiv(himetric, dpi, 2540);
}

// Draws the picture at its pixel size. A transparent one is drawn twice, on black and on white:
// where the two differ the picture lets the background through, and by how much tells its alpha.
std::optional<ui::Pixels> RenderPicture(IPicture* picture, bool transparent) {
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
  if (!DecodableSize(width, height)) return std::nullopt;

  Canvas canvas(screen.Get(), width, height);
  if (!canvas.Ready()) return std::nullopt;
  const auto draw = [&](std::uint32_t background) {
    canvas.Fill(background);
    return SUCCEEDED(picture->Render(canvas.Dc(), 0, 0, width, height, 0, hmHeight, hmWidth,
                                     -hmHeight, nullptr));
  };
  if (!draw(0x000000u)) return std::nullopt;
  ui::Pixels pixels;
  pixels.width = width;
  pixels.height = height;
  pixels.bgra = canvas.Take();
  if (!transparent) {
    for (std::uint32_t& p : pixels.bgra) p |= 0xFF000000u;
    return pixels;
  }
  if (!draw(0xFFFFFFu)) return std::nullopt;
  const std::vector<std::uint32_t> onWhite = canvas.Take();
  for (std::size_t i = 0; i < pixels.bgra.size(); ++i) {
    const std::uint32_t black = pixels.bgra[i];
    const std::uint32_t white = onWhite[i];
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

std::optional<ui::Pixels> LoadWithOle(Bytes bytes) {
  Com<IStream> stream;
  if (!MakeStream(bytes, stream)) return std::nullopt;
  Com<IPicture> picture;
  if (FAILED(::OleLoadPicture(stream.Get(), static_cast<LONG>(bytes.size()), FALSE, IID_IPicture,
                              picture.OutVoid())) ||
      picture.Get() == nullptr) {
    return std::nullopt;
  }
  DWORD attributes = 0;
  if (FAILED(picture->get_Attributes(&attributes))) attributes = 0;
  const bool transparent = (attributes & PICTURE_TRANSPARENT) != 0;
  short type = PICTYPE_UNINITIALIZED;
  if (FAILED(picture->get_Type(&type))) return std::nullopt;
  if (type == PICTYPE_BITMAP && !transparent) {
    OLE_HANDLE handle = 0;
    if (FAILED(picture->get_Handle(&handle))) return std::nullopt;
    return CopyBitmap(ToNative<HBITMAP>(static_cast<GdiHandle>(handle)));
  }
  return RenderPicture(picture.Get(), transparent);
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

std::optional<ui::Pixels> LoadWithImagingComponent(Bytes bytes) {
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
  if (FAILED(converted->GetSize(&width, &height)) || !DecodableSize(width, height)) {
    return std::nullopt;
  }
  ui::Pixels pixels;
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

ui::Pixels DecodeWithImagingComponent(std::span<const std::uint8_t> bytes) {
  std::optional<ui::Pixels> pixels = LoadWithImagingComponent(bytes);
  if (!pixels || pixels->Empty()) RaiseInvalidPicture();
  return std::move(*pixels);
}

ui::Pixels Win32Pictures::LoadPicture(const std::string& path) {
  std::vector<std::uint8_t> bytes = ReadWholeFile(path);
  PictureKind kind = KindOfPicture(bytes);
  if (kind == PictureKind::Bitmap && !DecodeBitmapFile(bytes)) RaiseInvalidPicture();
  if (kind == PictureKind::Icon) {
    const auto entries = ReadIconDirectory(bytes);
    if (!entries) RaiseInvalidPicture();
    const IconDirectoryEntry& largest = LargestIconEntry(*entries);
    if (!DecodableSize(largest.width, largest.height)) RaiseInvalidPicture();
    if (largest.png) {
      // The image is a PNG file of its own, alpha and all: it is decoded as one, which gives
      // its pixels exactly rather than drawn on a background.
      const std::vector<std::uint8_t> png(bytes.begin() + largest.offset,
                                          bytes.begin() + largest.offset + largest.size);
      bytes = png;
      kind = PictureKind::Png;
    } else if (Read16(bytes, 4) != 1) {
      bytes = SingleEntryIconFile(bytes, largest);
    }
  }
  std::optional<ui::Pixels> pixels;
  if (!bytes.empty()) pixels = LoadWithOle(bytes);
  if (!pixels && kind == PictureKind::Png) pixels = LoadWithImagingComponent(bytes);
  if (!pixels || pixels->Empty()) RaiseInvalidPicture();
  return std::move(*pixels);
}

void Win32Pictures::SavePicture(const ui::Pixels& picture, const std::string& path) {
  const std::vector<std::uint8_t> bytes = BitmapFileBytes(picture);
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
  const auto giveUp = [&](DWORD error) {
    ::DeleteFileA(scratch.c_str());
    RaiseAccess(path, error);
  };
  std::size_t done = 0;
  while (done < bytes.size()) {
    DWORD written = 0;
    const auto chunk = static_cast<DWORD>(std::min<std::size_t>(bytes.size() - done, 1u << 24));
    if (!::WriteFile(file.Get(), bytes.data() + done, chunk, &written, nullptr) || written == 0) {
      const DWORD error = ::GetLastError();
      file.Close();
      giveUp(error);
    }
    done += written;
  }
  if (!::FlushFileBuffers(file.Get())) {
    const DWORD error = ::GetLastError();
    file.Close();
    giveUp(error);
  }
  if (!file.Close()) giveUp(::GetLastError());
  if (!::MoveFileExA(scratch.c_str(), path.c_str(),
                     MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH)) {
    giveUp(::GetLastError());
  }
}

}  // namespace quorvane::platform::win32
