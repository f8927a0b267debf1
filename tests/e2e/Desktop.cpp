#include "Desktop.h"

#include <cstdint>
#include <cstdio>
#include <utility>
#include <vector>

#include "Verdict.h"

namespace quorvane::e2e {

OwnedHandle::~OwnedHandle() {
  if (handle_ != nullptr) {
    ::CloseHandle(handle_);
  }
}

OwnedHandle::OwnedHandle(OwnedHandle&& other) noexcept
    : handle_(std::exchange(other.handle_, nullptr)) {}

OwnedHandle& OwnedHandle::operator=(OwnedHandle&& other) noexcept {
  if (this != &other) {
    if (handle_ != nullptr) {
      ::CloseHandle(handle_);
    }
    handle_ = std::exchange(other.handle_, nullptr);
  }
  return *this;
}

bool StartProgram(const std::string& program, const std::string& tail, Child& child,
                  std::string& error) {
  std::string commandLine = "\"" + program + "\"" + tail;
  std::vector<char> writable(commandLine.begin(), commandLine.end());
  writable.push_back('\0');
  STARTUPINFOA startup{};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION started{};
  if (::CreateProcessA(program.c_str(), writable.data(), nullptr, nullptr, FALSE, 0, nullptr,
                       nullptr, &startup, &started) == 0) {
    error = "CreateProcessA failed with system error " + std::to_string(::GetLastError());
    return false;
  }
  ::CloseHandle(started.hThread);
  child.process = OwnedHandle(started.hProcess);
  child.id = started.dwProcessId;
  return true;
}

bool IsRunning(const Child& child) {
  return child.process && ::WaitForSingleObject(child.process.Get(), 0) == WAIT_TIMEOUT;
}

bool WaitForEnd(const Child& child, DWORD milliseconds, DWORD& exitCode) {
  if (!child.process || ::WaitForSingleObject(child.process.Get(), milliseconds) != WAIT_OBJECT_0) {
    return false;
  }
  exitCode = 0;
  ::GetExitCodeProcess(child.process.Get(), &exitCode);
  return true;
}

void Terminate(const Child& child) {
  if (IsRunning(child)) {
    ::TerminateProcess(child.process.Get(), 99);
    ::WaitForSingleObject(child.process.Get(), 5000);
  }
}

std::string ClassNameOf(HWND window) {
  char name[256] = {};
  const int length = ::GetClassNameA(window, name, static_cast<int>(sizeof name));
  return std::string(name, length > 0 ? static_cast<std::size_t>(length) : 0U);
}

std::string TextOf(HWND window) {
  char text[256] = {};
  const int length = ::GetWindowTextA(window, text, static_cast<int>(sizeof text));
  return std::string(text, length > 0 ? static_cast<std::size_t>(length) : 0U);
}

namespace {

struct WindowSearch {
  DWORD processId;
  const std::string* className;
  const std::string* text;
  HWND found;
};

BOOL CALLBACK VisitTopLevelWindow(HWND window, LPARAM parameter) {
  auto* search = reinterpret_cast<WindowSearch*>(parameter);
  DWORD owner = 0;
  ::GetWindowThreadProcessId(window, &owner);
  if (owner == search->processId && ClassNameOf(window) == *search->className &&
      TextOf(window) == *search->text) {
    search->found = window;
    return FALSE;
  }
  return TRUE;
}

void PutLittleEndian(std::vector<unsigned char>& bytes, std::uint32_t value, int size) {
  for (int i = 0; i < size; ++i) {
    bytes.push_back(static_cast<unsigned char>((value >> (8 * i)) & 0xFFU));
  }
}

}  // namespace

HWND FindTopLevelWindow(DWORD processId, const std::string& className, const std::string& text) {
  WindowSearch search{processId, &className, &text, nullptr};
  ::EnumWindows(&VisitTopLevelWindow, reinterpret_cast<LPARAM>(&search));
  return search.found;
}

HWND WaitForShownMainWindow(const Child& child, DWORD milliseconds) {
  HWND window = nullptr;
  const auto shown = [&] { return window != nullptr && ::IsWindowVisible(window) != 0; };
  WaitUntil(milliseconds, [&] {
    window = FindTopLevelWindow(child.id, "QuorvaneMain", "Quorvane");
    return shown() || !IsRunning(child);
  });
  return shown() ? window : nullptr;
}

bool SaveScreen(const std::string& path, std::string& error) {
  const int width = ::GetSystemMetrics(SM_CXSCREEN);
  const int height = ::GetSystemMetrics(SM_CYSCREEN);
  if (width <= 0 || height <= 0) {
    error = "the screen has no size";
    return false;
  }
  HDC screen = ::GetDC(nullptr);
  if (screen == nullptr) {
    error = "GetDC of the screen failed";
    return false;
  }
  BITMAPINFO info{};
  info.bmiHeader.biSize = sizeof info.bmiHeader;
  info.bmiHeader.biWidth = width;
  info.bmiHeader.biHeight = height;  // bottom-up rows, as a BMP file keeps them
  info.bmiHeader.biPlanes = 1;
  info.bmiHeader.biBitCount = 24;
  info.bmiHeader.biCompression = BI_RGB;
  void* bits = nullptr;
  HDC memory = ::CreateCompatibleDC(screen);
  HBITMAP picture = ::CreateDIBSection(screen, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
  bool copied = false;
  if (memory != nullptr && picture != nullptr) {
    HGDIOBJ previous = ::SelectObject(memory, picture);
    copied = ::BitBlt(memory, 0, 0, width, height, screen, 0, 0, SRCCOPY) != 0;
    ::GdiFlush();
    ::SelectObject(memory, previous);
  }
  const std::uint32_t rowBytes = (static_cast<std::uint32_t>(width) * 3U + 3U) & ~3U;
  const std::uint32_t pixelBytes = rowBytes * static_cast<std::uint32_t>(height);
  std::vector<unsigned char> file;
  if (copied) {
    file.reserve(54 + pixelBytes);
    file.push_back('B');
    file.push_back('M');
    PutLittleEndian(file, 54U + pixelBytes, 4);
    PutLittleEndian(file, 0, 4);
    PutLittleEndian(file, 54, 4);
    PutLittleEndian(file, 40, 4);
    PutLittleEndian(file, static_cast<std::uint32_t>(width), 4);
    PutLittleEndian(file, static_cast<std::uint32_t>(height), 4);
    PutLittleEndian(file, 1, 2);
    PutLittleEndian(file, 24, 2);
    PutLittleEndian(file, 0, 4);
    PutLittleEndian(file, pixelBytes, 4);
    PutLittleEndian(file, 2835, 4);
    PutLittleEndian(file, 2835, 4);
    PutLittleEndian(file, 0, 4);
    PutLittleEndian(file, 0, 4);
    const auto* first = static_cast<const unsigned char*>(bits);
    file.insert(file.end(), first, first + pixelBytes);
  }
  if (picture != nullptr) {
    ::DeleteObject(picture);
  }
  if (memory != nullptr) {
    ::DeleteDC(memory);
  }
  ::ReleaseDC(nullptr, screen);
  if (!copied) {
    error = "the screen could not be copied";
    return false;
  }
  std::FILE* out = std::fopen(path.c_str(), "wb");
  if (out == nullptr) {
    error = "cannot write " + path;
    return false;
  }
  const bool written = std::fwrite(file.data(), 1, file.size(), out) == file.size();
  const bool closed = std::fclose(out) == 0;
  if (!written || !closed) {
    error = "writing " + path + " failed";
    return false;
  }
  return true;
}

std::string OwnFolder() {
  char path[MAX_PATH] = {};
  const DWORD length = ::GetModuleFileNameA(nullptr, path, MAX_PATH);
  std::string folder(path, length);
  const std::size_t slash = folder.find_last_of("\\/");
  return slash == std::string::npos ? std::string() : folder.substr(0, slash + 1);
}

bool TakesItselfForVista() {
  OSVERSIONINFOA version{};
  version.dwOSVersionInfoSize = sizeof version;
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
  const BOOL known = ::GetVersionExA(&version);
#pragma GCC diagnostic pop
  return known != 0 && version.dwPlatformId == VER_PLATFORM_WIN32_NT &&
         version.dwMajorVersion == 6;
}

}  // namespace quorvane::e2e
