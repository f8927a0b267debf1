#include "driving/Program.h"

#include <shlobj.h>

#include <cstdint>
#include <cstdio>
#include <vector>

#include "driving/Controls.h"

namespace quorvane::driving {

HWND FindControl(HWND main, const std::string& systemName, DWORD milliseconds) {
  const UINT message = ::RegisterWindowMessageA(kFindControlMessage);
  if (message == 0 || main == nullptr) return nullptr;
  const ATOM atom = ::GlobalAddAtomA(systemName.c_str());
  if (atom == 0) return nullptr;
  DWORD_PTR answer = 0;
  const LRESULT sent = ::SendMessageTimeoutA(main, message, atom, 0, SMTO_ABORTIFHUNG,
                                             milliseconds, &answer);
  ::GlobalDeleteAtom(atom);
  if (sent == 0) return nullptr;
  return reinterpret_cast<HWND>(answer);
}

bool PostRegistered(HWND window, const char* name) {
  const UINT message = ::RegisterWindowMessageA(name);
  return message != 0 && ::PostMessageA(window, message, 0, 0) != 0;
}

std::string ClassNameOf(HWND window) {
  char name[256] = {};
  const int length = ::GetClassNameA(window, name, static_cast<int>(sizeof name));
  return std::string(name, length > 0 ? static_cast<std::size_t>(length) : 0U);
}

HWND FindShownWindow(DWORD processId, const char* className) {
  struct Search {
    DWORD processId;
    const char* className;
    HWND found;
  } search{processId, className, nullptr};
  ::EnumWindows(
      [](HWND window, LPARAM parameter) -> BOOL {
        auto* s = reinterpret_cast<Search*>(parameter);
        DWORD owner = 0;
        ::GetWindowThreadProcessId(window, &owner);
        if (owner == s->processId && ClassNameOf(window) == s->className &&
            ::IsWindowVisible(window) != 0) {
          s->found = window;
          return FALSE;
        }
        return TRUE;
      },
      reinterpret_cast<LPARAM>(&search));
  return search.found;
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

HWND WaitForMainWindow(const Child& child, DWORD milliseconds) {
  HWND window = nullptr;
  WaitUntil(milliseconds, [&] {
    window = FindTopLevelWindow(child.id, "QuorvaneMain", "Quorvane");
    return window != nullptr || !IsRunning(child);
  });
  return window;
}

HWND StartWithMainWindow(const std::string& program, const std::string& tail, bool shown,
                         Child& child, Verdict& verdict) {
  std::string error;
  if (!verdict.Check(StartProgram(program, tail, child, error), "not started: " + error)) {
    return nullptr;
  }
  HWND window = shown ? WaitForShownMainWindow(child, kAppearTimeout)
                      : WaitForMainWindow(child, kAppearTimeout);
  if (!verdict.Check(window != nullptr, std::string("the main window was not ") +
                                            (shown ? "shown" : "made") + " within " +
                                            std::to_string(kAppearTimeout / 1000) + " s" +
                                            (IsRunning(child) ? "" : " (the process ended)"))) {
    Terminate(child);
  }
  return window;
}

Verdict EndThroughExit(HWND window, const Child& child) {
  Verdict end;
  end.Check(PostRegistered(window, kExitMessage), "\"Quorvane.Exit\" could not be posted");
  DWORD exitCode = 0;
  if (!end.Check(WaitForEnd(child, kEndTimeout, exitCode),
                 "the process did not end within " + std::to_string(kEndTimeout / 1000) + " s")) {
    Terminate(child);
  }
  return end;
}

bool SaveScreen(const std::string& path, std::string& error) {
  const int width = ::GetSystemMetrics(SM_CXSCREEN);
  const int height = ::GetSystemMetrics(SM_CYSCREEN);
  if (width <= 0 || height <= 0) {
    error = "the screen has no size";
    return false;
  }
  // The screen once it holds still: two looks a tenth of a second apart that agree, so that a
  // window still painting is not taken half done. A blinking caret may keep it from agreeing;
  // then the last look is taken after two seconds.
  std::vector<std::uint32_t> pixels;
  if (!CaptureScreen(RECT{0, 0, width, height}, pixels, error)) return false;
  std::vector<std::uint32_t> again;
  for (int look = 0; look < 20; ++look) {
    ::Sleep(100);
    if (!CaptureScreen(RECT{0, 0, width, height}, again, error)) return false;
    const bool still = again == pixels;
    pixels.swap(again);
    if (still) break;
  }
  // Rows of three bytes a pixel (blue, green, red), padded to four bytes, from the bottom up.
  const std::uint32_t rowBytes = (static_cast<std::uint32_t>(width) * 3U + 3U) & ~3U;
  const std::uint32_t pixelBytes = rowBytes * static_cast<std::uint32_t>(height);
  std::vector<unsigned char> file;
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
  for (int y = height - 1; y >= 0; --y) {
    const std::size_t rowStart = file.size();
    for (int x = 0; x < width; ++x) {
      PutLittleEndian(file, pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                                   static_cast<std::size_t>(x)],
                      3);
    }
    file.resize(rowStart + rowBytes, 0);
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

bool SaveShot(Verdict& verdict, const std::string& folder, const std::string& name) {
  std::string error;
  return verdict.Check(SaveScreen(folder + "\\" + name + ".bmp", error),
                       "no screenshot " + name + ": " + error);
}

std::string DataFolder() {
  char appData[MAX_PATH] = {};
  if (FAILED(::SHGetFolderPathA(nullptr, CSIDL_APPDATA, nullptr, 0, appData))) return "";
  return std::string(appData) + "\\Talvenor\\Mirefold\\Quorvane\\";
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

}  // namespace quorvane::driving
