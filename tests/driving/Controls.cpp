#include "driving/Controls.h"

#include <commctrl.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <initializer_list>

#include "driving/Processes.h"
#include "driving/Program.h"

namespace quorvane::driving {

namespace {

constexpr std::size_t kTextRoom = 520;

// Memory inside another process, freed with its owner.
class RemoteBuffer {
 public:
  RemoteBuffer(HANDLE process, std::size_t size)
      : process_(process),
        address_(::VirtualAllocEx(process, nullptr, size, MEM_COMMIT | MEM_RESERVE,
                                  PAGE_READWRITE)) {}
  ~RemoteBuffer() {
    if (address_ != nullptr) ::VirtualFreeEx(process_, address_, 0, MEM_RELEASE);
  }
  RemoteBuffer(const RemoteBuffer&) = delete;
  RemoteBuffer& operator=(const RemoteBuffer&) = delete;

  void* Address() const { return address_; }
  char* Bytes() const { return static_cast<char*>(address_); }

 private:
  HANDLE process_;
  void* address_;
};

bool RectOfItem(HWND tree, HTREEITEM item, RECT& area, std::string& error,
                const std::string& position);

HTREEITEM Next(HWND tree, UINT relation, HTREEITEM item) {
  return reinterpret_cast<HTREEITEM>(
      ::SendMessageA(tree, TVM_GETNEXTITEM, relation, reinterpret_cast<LPARAM>(item)));
}

}  // namespace

bool ReadTreeView(HWND tree, std::vector<RemoteItem>& items, int& count, std::string& error) {
  items.clear();
  count = static_cast<int>(::SendMessageA(tree, TVM_GETCOUNT, 0, 0));
  DWORD processId = 0;
  ::GetWindowThreadProcessId(tree, &processId);
  OwnedHandle process(::OpenProcess(
      PROCESS_VM_OPERATION | PROCESS_VM_READ | PROCESS_VM_WRITE | PROCESS_QUERY_INFORMATION,
      FALSE, processId));
  if (!process) {
    error = "OpenProcess failed with system error " + std::to_string(::GetLastError());
    return false;
  }
  RemoteBuffer buffer(process.Get(), sizeof(TVITEMA) + kTextRoom);
  if (buffer.Address() == nullptr) {
    error = "VirtualAllocEx failed with system error " + std::to_string(::GetLastError());
    return false;
  }
  const HTREEITEM selected = Next(tree, TVGN_CARET, nullptr);
  // Depth first: an item, its children, then its next sibling.
  std::vector<HTREEITEM> roots;
  for (HTREEITEM root = Next(tree, TVGN_ROOT, nullptr); root != nullptr;
       root = Next(tree, TVGN_NEXT, root)) {
    roots.push_back(root);
  }
  std::vector<std::pair<HTREEITEM, int>> stack;
  for (std::size_t i = roots.size(); i-- > 0;) stack.emplace_back(roots[i], 0);
  while (!stack.empty() && items.size() <= static_cast<std::size_t>(count) + 1) {
    const auto [item, level] = stack.back();
    stack.pop_back();
    TVITEMA query{};
    query.mask = TVIF_HANDLE | TVIF_TEXT | TVIF_IMAGE | TVIF_SELECTEDIMAGE | TVIF_STATE;
    query.hItem = item;
    query.stateMask = TVIS_BOLD;
    query.pszText = buffer.Bytes() + sizeof(TVITEMA);
    query.cchTextMax = static_cast<int>(kTextRoom);
    SIZE_T moved = 0;
    if (::WriteProcessMemory(process.Get(), buffer.Address(), &query, sizeof query, &moved) == 0 ||
        ::SendMessageA(tree, TVM_GETITEMA, 0, reinterpret_cast<LPARAM>(buffer.Address())) == 0) {
      error = "TVM_GETITEMA failed for item " + std::to_string(items.size() + 1);
      return false;
    }
    TVITEMA answer{};
    char text[kTextRoom + 1] = {};
    if (::ReadProcessMemory(process.Get(), buffer.Address(), &answer, sizeof answer, &moved) == 0 ||
        ::ReadProcessMemory(process.Get(), buffer.Bytes() + sizeof(TVITEMA), text, kTextRoom,
                            &moved) == 0) {
      error = "ReadProcessMemory failed with system error " + std::to_string(::GetLastError());
      return false;
    }
    RemoteItem read;
    read.text = text;
    read.image = answer.iImage;
    read.selectedImage = answer.iSelectedImage;
    read.bold = (answer.state & TVIS_BOLD) != 0;
    read.selected = item == selected;
    read.level = level;
    read.handle = item;
    items.push_back(std::move(read));
    std::vector<HTREEITEM> children;
    for (HTREEITEM child = Next(tree, TVGN_CHILD, item); child != nullptr;
         child = Next(tree, TVGN_NEXT, child)) {
      children.push_back(child);
    }
    for (std::size_t i = children.size(); i-- > 0;) stack.emplace_back(children[i], level + 1);
  }
  return true;
}

bool TreeItemRect(HWND tree, int position, RECT& area, std::string& error) {
  HTREEITEM item = Next(tree, TVGN_ROOT, nullptr);
  for (int i = 1; i < position && item != nullptr; ++i) item = Next(tree, TVGN_NEXT, item);
  if (item == nullptr) {
    error = "no item " + std::to_string(position);
    return false;
  }
  return RectOfItem(tree, item, area, error, std::to_string(position));
}

bool TreeItemRectOf(HWND tree, HTREEITEM item, RECT& area, std::string& error) {
  return RectOfItem(tree, item, area, error, "of the tree");
}

namespace {

bool RectOfItem(HWND tree, HTREEITEM item, RECT& area, std::string& error,
                const std::string& position) {
  DWORD processId = 0;
  ::GetWindowThreadProcessId(tree, &processId);
  OwnedHandle process(::OpenProcess(PROCESS_VM_OPERATION | PROCESS_VM_READ | PROCESS_VM_WRITE,
                                    FALSE, processId));
  if (!process) {
    error = "OpenProcess failed with system error " + std::to_string(::GetLastError());
    return false;
  }
  RemoteBuffer buffer(process.Get(), sizeof(RECT));
  // TVM_GETITEMRECT takes the item in the first bytes of the rectangle it fills.
  RECT query{};
  static_assert(sizeof(HTREEITEM) <= sizeof(RECT));
  std::memcpy(&query, &item, sizeof item);
  SIZE_T moved = 0;
  if (buffer.Address() == nullptr ||
      ::WriteProcessMemory(process.Get(), buffer.Address(), &query, sizeof query, &moved) == 0 ||
      ::SendMessageA(tree, TVM_GETITEMRECT, TRUE, reinterpret_cast<LPARAM>(buffer.Address())) ==
          0 ||
      ::ReadProcessMemory(process.Get(), buffer.Address(), &area, sizeof area, &moved) == 0) {
    error = "TVM_GETITEMRECT failed for item " + position;
    return false;
  }
  ::MapWindowPoints(tree, nullptr, reinterpret_cast<POINT*>(&area), 2);
  return true;
}

}  // namespace

bool ListBoxItemRect(HWND list, int index, RECT& area, std::string& error) {
  const LRESULT count = ::SendMessageA(list, LB_GETCOUNT, 0, 0);
  if (count == LB_ERR || index < 0 || index >= count) {
    error = "the list box has no item " + std::to_string(index) + " (it has " +
            std::to_string(count) + ")";
    return false;
  }
  RECT item{};
  if (::SendMessageA(list, LB_GETITEMRECT, static_cast<WPARAM>(index),
                     reinterpret_cast<LPARAM>(&item)) == LB_ERR ||
      item.right <= item.left || item.bottom <= item.top) {
    error = "LB_GETITEMRECT gave no rectangle for item " + std::to_string(index);
    return false;
  }
  area = item;
  ::MapWindowPoints(list, nullptr, reinterpret_cast<POINT*>(&area), 2);
  return true;
}

namespace {

// Mouse events at a point of the screen: each carries the point, in the 0 to 65535 units of the
// whole screen, so it lands there whatever the pointer's position was.
std::vector<INPUT> MouseEvents(POINT point, std::initializer_list<DWORD> flags) {
  const int width = std::max(1, ::GetSystemMetrics(SM_CXSCREEN) - 1);
  const int height = std::max(1, ::GetSystemMetrics(SM_CYSCREEN) - 1);
  const LONG x = static_cast<LONG>((static_cast<long long>(point.x) * 65535 + width / 2) / width);
  const LONG y = static_cast<LONG>((static_cast<long long>(point.y) * 65535 + height / 2) / height);
  std::vector<INPUT> events;
  for (DWORD flag : flags) {
    INPUT input{};
    input.type = INPUT_MOUSE;
    input.mi.dx = x;
    input.mi.dy = y;
    input.mi.dwFlags = flag | MOUSEEVENTF_MOVE | MOUSEEVENTF_ABSOLUTE;
    events.push_back(input);
  }
  return events;
}

// The events one at a time, each given 80 ms to be taken in, as a user's hand is slower.
void SendMouse(POINT point, std::initializer_list<DWORD> flags) {
  for (INPUT& input : MouseEvents(point, flags)) {
    ::SendInput(1, &input, sizeof input);
    ::Sleep(80);
  }
}

}  // namespace

void ClickAt(POINT point) {
  SendMouse(point, {MOUSEEVENTF_MOVE, MOUSEEVENTF_LEFTDOWN, MOUSEEVENTF_LEFTUP});
}

void ClickAtOnce(POINT point) {
  std::vector<INPUT> events = MouseEvents(point, {MOUSEEVENTF_LEFTDOWN, MOUSEEVENTF_LEFTUP});
  ::SendInput(static_cast<UINT>(events.size()), events.data(), sizeof(INPUT));
}

void DoubleClickAt(POINT point) {
  SendMouse(point, {MOUSEEVENTF_MOVE, MOUSEEVENTF_LEFTDOWN, MOUSEEVENTF_LEFTUP,
                    MOUSEEVENTF_LEFTDOWN, MOUSEEVENTF_LEFTUP});
}

void MoveTo(POINT point) { SendMouse(point, {MOUSEEVENTF_MOVE}); }

void DragFromTo(POINT from, POINT to) {
  SendMouse(from, {MOUSEEVENTF_MOVE, MOUSEEVENTF_LEFTDOWN});
  constexpr int kSteps = 4;
  for (int step = 1; step <= kSteps; ++step) {
    const POINT between{from.x + (to.x - from.x) * step / kSteps,
                        from.y + (to.y - from.y) * step / kSteps};
    SendMouse(between, {MOUSEEVENTF_MOVE});
  }
  SendMouse(to, {MOUSEEVENTF_LEFTUP});
}

RECT ScreenRect(HWND window) {
  RECT area{};
  ::GetWindowRect(window, &area);
  return area;
}

POINT Centre(const RECT& area) {
  return POINT{(area.left + area.right) / 2, (area.top + area.bottom) / 2};
}

HWND DialogOf(DWORD processId) {
  struct Search {
    DWORD processId;
    HWND found;
  } search{processId, nullptr};
  ::EnumWindows(
      [](HWND window, LPARAM data) -> BOOL {
        auto& s = *reinterpret_cast<Search*>(data);
        DWORD owner = 0;
        ::GetWindowThreadProcessId(window, &owner);
        if (owner == s.processId && ::IsWindowVisible(window) != 0 &&
            ClassNameOf(window) == "#32770") {
          s.found = window;
          return FALSE;
        }
        return TRUE;
      },
      reinterpret_cast<LPARAM>(&search));
  return search.found;
}

std::string DialogText(HWND dialog) {
  std::string text;
  ::EnumChildWindows(
      dialog,
      [](HWND child, LPARAM data) -> BOOL {
        auto& t = *reinterpret_cast<std::string*>(data);
        const std::string shown = TextOf(child);
        if (ClassNameOf(child) == "Static" && !shown.empty()) t += (t.empty() ? "" : " | ") + shown;
        return TRUE;
      },
      reinterpret_cast<LPARAM>(&text));
  return text;
}

bool ClickDialogButton(Verdict& verdict, HWND dialog, int id, const std::string& name,
                       DWORD milliseconds) {
  const HWND button = ::GetDlgItem(dialog, id);
  if (!verdict.Check(button != nullptr && ::IsWindowVisible(button) != 0 &&
                         ::IsWindowEnabled(button) != 0,
                     "the dialog's " + name + " button is missing or disabled")) {
    ::PostMessageA(dialog, WM_COMMAND, IDCANCEL, 0);
    return false;
  }
  ClickAt(Centre(ScreenRect(button)));
  return verdict.Check(
      WaitUntil(milliseconds,
                [&] { return ::IsWindow(dialog) == 0 || ::IsWindowVisible(dialog) == 0; }),
      "the dialog is still shown after a click on " + name);
}

bool LoadResourceBitmap(const std::string& path, int number, Picture& picture,
                        std::string& error) {
  HMODULE module = ::LoadLibraryExA(path.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
  if (module == nullptr) {
    error = "LoadLibraryExA of " + path + " failed with system error " +
            std::to_string(::GetLastError());
    return false;
  }
  HANDLE image = ::LoadImageA(module, MAKEINTRESOURCEA(number), IMAGE_BITMAP, 0, 0,
                              LR_CREATEDIBSECTION);
  bool read = false;
  if (image == nullptr) {
    error = "no bitmap " + std::to_string(number) + " in " + path;
  } else {
    auto* bitmap = static_cast<HBITMAP>(image);
    BITMAP facts{};
    ::GetObjectA(bitmap, sizeof facts, &facts);
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = facts.bmWidth;
    info.bmiHeader.biHeight = -facts.bmHeight;  // top-down
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    info.bmiHeader.biCompression = BI_RGB;
    std::vector<std::uint32_t> pixels(static_cast<std::size_t>(facts.bmWidth) *
                                      static_cast<std::size_t>(std::max(0L, facts.bmHeight)));
    HDC screen = ::GetDC(nullptr);
    read = !pixels.empty() && ::GetDIBits(screen, bitmap, 0, static_cast<UINT>(facts.bmHeight),
                                          pixels.data(), &info, DIB_RGB_COLORS) == facts.bmHeight;
    ::ReleaseDC(nullptr, screen);
    ::DeleteObject(bitmap);
    if (read) {
      for (std::uint32_t& p : pixels) p &= 0x00FFFFFFu;
      picture.width = facts.bmWidth;
      picture.height = facts.bmHeight;
      picture.pixels = std::move(pixels);
    } else {
      error = "bitmap " + std::to_string(number) + " of " + path + " could not be read";
    }
  }
  ::FreeLibrary(module);
  return read;
}

bool CaptureScreen(const RECT& area, std::vector<std::uint32_t>& pixels, std::string& error) {
  const int width = area.right - area.left;
  const int height = area.bottom - area.top;
  if (width <= 0 || height <= 0) {
    error = "the area is empty";
    return false;
  }
  HDC screen = ::GetDC(nullptr);
  if (screen == nullptr) {
    error = "GetDC of the screen failed";
    return false;
  }
  bool copied = false;
  {
    DrawingSurface surface(width, height);
    copied = surface.Ready() && ::BitBlt(surface.Context(), 0, 0, width, height, screen,
                                         area.left, area.top, SRCCOPY) != 0;
    if (copied) pixels = surface.Pixels();
  }
  ::ReleaseDC(nullptr, screen);
  if (!copied) error = "the screen could not be copied";
  return copied;
}

bool CloseColours(std::uint32_t a, std::uint32_t b, int tolerance) {
  for (int shift = 0; shift <= 16; shift += 8) {
    const int x = static_cast<int>((a >> shift) & 0xFF);
    const int y = static_cast<int>((b >> shift) & 0xFF);
    if (std::abs(x - y) > tolerance) return false;
  }
  return true;
}

DrawingSurface::DrawingSurface(int width, int height) : width_(width), height_(height) {
  if (width <= 0 || height <= 0) return;
  HDC screen = ::GetDC(nullptr);
  BITMAPINFO info{};
  info.bmiHeader.biSize = sizeof info.bmiHeader;
  info.bmiHeader.biWidth = width;
  info.bmiHeader.biHeight = -height;  // top-down
  info.bmiHeader.biPlanes = 1;
  info.bmiHeader.biBitCount = 32;
  info.bmiHeader.biCompression = BI_RGB;
  memory_ = ::CreateCompatibleDC(screen);
  picture_ = ::CreateDIBSection(screen, &info, DIB_RGB_COLORS, &bits_, nullptr, 0);
  if (screen != nullptr) ::ReleaseDC(nullptr, screen);
  if (Ready()) previous_ = ::SelectObject(memory_, picture_);
}

DrawingSurface::~DrawingSurface() {
  if (previous_ != nullptr) ::SelectObject(memory_, previous_);
  if (picture_ != nullptr) ::DeleteObject(picture_);
  if (memory_ != nullptr) ::DeleteDC(memory_);
}

void DrawingSurface::Fill(std::uint32_t colour) const {
  if (!Ready()) return;
  RECT all{0, 0, width_, height_};
  HBRUSH brush = ::CreateSolidBrush(RGB((colour >> 16) & 0xFF, (colour >> 8) & 0xFF, colour & 0xFF));
  ::FillRect(memory_, &all, brush);
  ::DeleteObject(brush);
}

std::vector<std::uint32_t> DrawingSurface::Pixels() const {
  std::vector<std::uint32_t> pixels;
  if (!Ready() || bits_ == nullptr) return pixels;
  ::GdiFlush();
  const auto* first = static_cast<const std::uint32_t*>(bits_);
  pixels.assign(first, first + static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_));
  for (std::uint32_t& p : pixels) p &= 0x00FFFFFFu;
  return pixels;
}

}  // namespace quorvane::driving
