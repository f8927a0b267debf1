#include "platform/win32/Win32IconPicker.h"

#include <windows.h>
#include <commctrl.h>
#include <commdlg.h>
#include <shellapi.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "platform/win32/Handles.h"

namespace quorvane::platform::win32 {

namespace {

namespace ip = icon_picker;

// More icons than any file of icons holds; a count beyond it is taken for a broken file.
constexpr UINT kMostIcons = 65535;
// Room around an icon in its cell of the list, in pixels: the selection's frame and a gap.
constexpr int kCellMargin = 10;
constexpr UINT_PTR kPathFieldSubclass = 1;

// --- the dialog's template, built in memory -------------------------------------------------

// The predefined window classes of a dialog template, by their atoms.
constexpr WORD kButtonClass = 0x0080;
constexpr WORD kEditClass = 0x0081;
constexpr WORD kStaticClass = 0x0082;
constexpr WORD kListBoxClass = 0x0083;

class DialogTemplate {
 public:
  DialogTemplate(DWORD style, short width, short height, const wchar_t* title,
                 const wchar_t* font, WORD points) {
    PutDword(style | DS_SETFONT);
    PutDword(0);      // extended style
    countAt_ = words_.size();
    Put(0);           // number of controls, counted as they are added
    Put(0);           // x
    Put(0);           // y
    Put(static_cast<WORD>(width));
    Put(static_cast<WORD>(height));
    Put(0);           // no menu
    Put(0);           // the dialog class
    PutText(title);
    Put(points);
    PutText(font);
  }

  void Add(WORD windowClass, DWORD style, short x, short y, short width, short height, int id,
           const wchar_t* text) {
    if (words_.size() % 2 != 0) Put(0);  // each control starts on a 32-bit boundary
    PutDword(style | WS_CHILD | WS_VISIBLE);
    PutDword(0);
    Put(static_cast<WORD>(x));
    Put(static_cast<WORD>(y));
    Put(static_cast<WORD>(width));
    Put(static_cast<WORD>(height));
    Put(static_cast<WORD>(id));
    Put(0xFFFF);
    Put(windowClass);
    PutText(text);
    Put(0);  // no creation data
    ++words_[countAt_];
  }

  const DLGTEMPLATE* Get() const { return reinterpret_cast<const DLGTEMPLATE*>(words_.data()); }

 private:
  void Put(WORD word) { words_.push_back(word); }
  void PutDword(DWORD value) {
    Put(LOWORD(value));
    Put(HIWORD(value));
  }
  void PutText(const wchar_t* text) {
    for (; *text != L'\0'; ++text) Put(static_cast<WORD>(*text));
    Put(0);
  }

  // The allocation is aligned for any type, so the template starts on a 32-bit boundary.
  std::vector<WORD> words_;
  std::size_t countAt_ = 0;
};

DialogTemplate PickerTemplate() {
  DialogTemplate dialog(DS_MODALFRAME | DS_CENTER | DS_3DLOOK | WS_POPUP | WS_CAPTION |
                            WS_SYSMENU,
                        262, 176, ip::kTitle, L"MS Shell Dlg", 8);
  dialog.Add(kStaticClass, SS_LEFT | SS_NOPREFIX, 7, 7, 248, 8, ip::kFileLabelId,
             L"Look for icons in this file:");
  dialog.Add(kEditClass, ES_LEFT | ES_AUTOHSCROLL | WS_BORDER | WS_TABSTOP, 7, 18, 186, 14,
             ip::kPathId, L"");
  dialog.Add(kButtonClass, BS_PUSHBUTTON | WS_TABSTOP, 198, 18, 57, 14, ip::kBrowseId,
             L"Browse...");
  dialog.Add(kStaticClass, SS_LEFT | SS_NOPREFIX, 7, 39, 248, 8, ip::kListLabelId,
             L"Select an icon from the list below:");
  dialog.Add(kListBoxClass,
             LBS_OWNERDRAWFIXED | LBS_MULTICOLUMN | LBS_NOTIFY | LBS_NOINTEGRALHEIGHT |
                 LBS_DISABLENOSCROLL | WS_HSCROLL | WS_BORDER | WS_TABSTOP,
             7, 50, 248, 96, ip::kIconListId, L"Icons");
  dialog.Add(kStaticClass, SS_LEFT | SS_NOPREFIX, 7, 158, 130, 8, ip::kMessageId, L"");
  dialog.Add(kButtonClass, BS_DEFPUSHBUTTON | WS_TABSTOP, 144, 155, 54, 14, IDOK, L"OK");
  dialog.Add(kButtonClass, BS_PUSHBUTTON | WS_TABSTOP, 201, 155, 54, 14, IDCANCEL, L"Cancel");
  return dialog;
}

// --- the file dialog, from comdlg32 ---------------------------------------------------------

using OpenFileProc = BOOL(WINAPI*)(LPOPENFILENAMEW);

// The wide form of the file dialog: the path goes to it and comes back in the picker's own wide
// characters, with no code page between.
OpenFileProc OpenFileDialog() {
  static const OpenFileProc proc = [] {
    // Kept loaded for the process's lifetime, as the shell's own modules are.
    HMODULE dialogs = ::LoadLibraryA("comdlg32.dll");
    if (dialogs == nullptr) return OpenFileProc{nullptr};
    const FARPROC found = ::GetProcAddress(dialogs, "GetOpenFileNameW");
    // Through a function type without arguments, which may be cast to any other.
    return reinterpret_cast<OpenFileProc>(reinterpret_cast<void (*)()>(found));
  }();
  return proc;
}

// --- the files of icons ---------------------------------------------------------------------

// The path as the file system reads it: environment strings such as %SystemRoot% expanded. The
// path shown and given back stays as it was typed.
std::wstring Expanded(const std::wstring& path) {
  const DWORD needed = ::ExpandEnvironmentStringsW(path.c_str(), nullptr, 0);
  if (needed == 0) return path;
  std::wstring out(needed, L'\0');
  const DWORD written = ::ExpandEnvironmentStringsW(path.c_str(), out.data(), needed);
  if (written == 0 || written > needed) return path;
  out.resize(written - 1);
  return out;
}

// The position among a file's icons of the icon whose resource identifier is `identifier`;
// -1 when the file is no module or has no such icon. Icons are counted in the order of the
// module's directory of icon groups, the order in which they are extracted.
int PositionOfResource(const std::wstring& file, int identifier) {
  UniqueModule module(::LoadLibraryExW(
      file.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE | LOAD_LIBRARY_AS_IMAGE_RESOURCE));
  if (!module) return -1;
  struct Search {
    int identifier;
    int seen = 0;
    int found = -1;
  } search{identifier};
  ::EnumResourceNamesW(
      module.Get(), MAKEINTRESOURCEW(14) /* icon groups */,
      [](HMODULE, LPCWSTR, LPWSTR name, LONG_PTR data) -> BOOL {
        auto& s = *reinterpret_cast<Search*>(data);
        if (IS_INTRESOURCE(name) &&
            static_cast<int>(reinterpret_cast<ULONG_PTR>(name)) == s.identifier) {
          s.found = s.seen;
          return FALSE;
        }
        ++s.seen;
        return TRUE;
      },
      reinterpret_cast<LONG_PTR>(&search));
  return search.found;
}

// --- the dialog -----------------------------------------------------------------------------

class Picker {
 public:
  Picker(char16_t* path, std::uint32_t size, std::int32_t& index)
      : path_(path), size_(size), index_(index) {}

  static INT_PTR CALLBACK DialogProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) {
      ::SetWindowLongPtrW(dialog, DWLP_USER, lParam);
      return reinterpret_cast<Picker*>(lParam)->Init(dialog);
    }
    auto* self = reinterpret_cast<Picker*>(::GetWindowLongPtrW(dialog, DWLP_USER));
    if (message == WM_MEASUREITEM) {
      // Sent while the list is made, before WM_INITDIALOG.
      auto& measure = *reinterpret_cast<MEASUREITEMSTRUCT*>(lParam);
      if (measure.CtlID != static_cast<UINT>(ip::kIconListId)) return FALSE;
      measure.itemHeight = static_cast<UINT>(CellSize());
      measure.itemWidth = static_cast<UINT>(CellSize());
      ::SetWindowLongPtrW(dialog, DWLP_MSGRESULT, TRUE);
      return TRUE;
    }
    if (self == nullptr) return FALSE;
    return self->Handle(message, wParam, lParam);
  }

 private:
  static int CellSize() {
    return std::max(::GetSystemMetrics(SM_CXICON), ::GetSystemMetrics(SM_CYICON)) + kCellMargin;
  }

  static LRESULT CALLBACK PathFieldProc(HWND field, UINT message, WPARAM wParam, LPARAM lParam,
                                        UINT_PTR, DWORD_PTR data) {
    auto* self = reinterpret_cast<Picker*>(data);
    switch (message) {
      case WM_GETDLGCODE:
        // Enter belongs to the field, so that it reloads even while OK is disabled.
        if (lParam != 0) {
          const auto* pending = reinterpret_cast<const MSG*>(lParam);
          if (pending->message == WM_KEYDOWN && pending->wParam == VK_RETURN) {
            return ::DefSubclassProc(field, message, wParam, lParam) | DLGC_WANTALLKEYS;
          }
        }
        break;
      case WM_KEYDOWN:
        if (wParam == VK_RETURN) {
          self->EnterInPathField();
          return 0;
        }
        break;
      case WM_CHAR:
        if (wParam == L'\r') return 0;
        break;
      case WM_NCDESTROY:
        ::RemoveWindowSubclass(field, &PathFieldProc, kPathFieldSubclass);
        break;
      default:
        break;
    }
    return ::DefSubclassProc(field, message, wParam, lParam);
  }

  HWND Item(int id) const { return ::GetDlgItem(dialog_, id); }

  INT_PTR Init(HWND dialog) {
    dialog_ = dialog;
    const HWND list = Item(ip::kIconListId);
    ::SendMessageW(list, LB_SETCOLUMNWIDTH, static_cast<WPARAM>(CellSize()), 0);
    ::SendMessageW(list, LB_SETITEMHEIGHT, 0, CellSize());
    ::SetWindowSubclass(Item(ip::kPathId), &PathFieldProc, kPathFieldSubclass,
                        reinterpret_cast<DWORD_PTR>(this));
    // The file given: up to its first NUL, or the whole buffer when it has none.
    const std::u16string_view given(path_, std::find(path_, path_ + size_, u'\0') - path_);
    const std::wstring path(given.begin(), given.end());
    ::SetWindowTextW(Item(ip::kPathId), path.c_str());
    Load(path, index_);
    ::SetFocus(::SendMessageW(list, LB_GETCOUNT, 0, 0) > 0 ? list : Item(ip::kPathId));
    return FALSE;  // the focus is set
  }

  INT_PTR Handle(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
      case WM_DRAWITEM: {
        const auto& draw = *reinterpret_cast<const DRAWITEMSTRUCT*>(lParam);
        if (draw.CtlID != static_cast<UINT>(ip::kIconListId)) return FALSE;
        Draw(draw);
        ::SetWindowLongPtrW(dialog_, DWLP_MSGRESULT, TRUE);
        return TRUE;
      }
      case WM_COMMAND: {
        const int id = LOWORD(wParam);
        const int code = HIWORD(wParam);
        if (id == IDOK) {
          if (::GetFocus() == Item(ip::kPathId) && FieldText() != loaded_) {
            Reload();
          } else {
            Confirm();
          }
        } else if (id == IDCANCEL) {
          ::EndDialog(dialog_, 0);
        } else if (id == ip::kBrowseId && code == BN_CLICKED) {
          Browse();
        } else if (id == ip::kPathId && code == EN_KILLFOCUS) {
          if (FieldText() != loaded_) Reload();
        } else if (id == ip::kIconListId && code == LBN_SELCHANGE) {
          UpdateOk();
        } else if (id == ip::kIconListId && code == LBN_DBLCLK) {
          Confirm();
        } else {
          return FALSE;
        }
        return TRUE;
      }
      case WM_DESTROY:
        // The list draws no icon once they are gone.
        ::SendMessageW(Item(ip::kIconListId), LB_RESETCONTENT, 0, 0);
        icons_.clear();
        return FALSE;
      default:
        return FALSE;
    }
  }

  std::wstring FieldText() const {
    const HWND field = Item(ip::kPathId);
    const int length = ::GetWindowTextLengthW(field);
    if (length <= 0) return std::wstring();
    std::wstring text(static_cast<std::size_t>(length) + 1, L'\0');
    const int read = ::GetWindowTextW(field, text.data(), length + 1);
    text.resize(static_cast<std::size_t>(std::clamp(read, 0, length)));
    return text;
  }

  // Fills the list with the icons of `path` and selects the icon `wanted` (its position, or for
  // a negative number its resource identifier), or the first.
  void Load(const std::wstring& path, int wanted) {
    const HWND list = Item(ip::kIconListId);
    ::SendMessageW(list, WM_SETREDRAW, FALSE, 0);
    ::SendMessageW(list, LB_RESETCONTENT, 0, 0);
    icons_.clear();
    loaded_ = path;
    const wchar_t* message = nullptr;
    if (path.size() >= size_) {
      // The chosen path and its NUL would not fit the caller's buffer.
      message = ip::kTooLongMessage;
    } else {
      const std::wstring file = Expanded(path);
      const UINT count = ::ExtractIconExW(file.c_str(), -1, nullptr, nullptr, 0);
      if (count > 0 && count <= kMostIcons) {
        std::vector<HICON> large(count, nullptr);
        const UINT made = ::ExtractIconExW(file.c_str(), 0, large.data(), nullptr, count);
        if (made > 0 && made <= count) {
          for (UINT i = 0; i < count; ++i) {
            // Wine fills only the first handle of a request for several: the others are asked
            // for one by one.
            if (large[i] == nullptr) {
              ::ExtractIconExW(file.c_str(), static_cast<int>(i), &large[i], nullptr, 1);
            }
            icons_.emplace_back(large[i]);
          }
        } else {
          // A result beyond the count is no count of handles; any handle made is freed.
          for (HICON icon : large) {
            const UniqueIcon discarded(icon);
          }
        }
      }
      if (icons_.empty()) {
        message = ip::kNoIconsMessage;
      } else {
        for (std::size_t i = 0; i < icons_.size(); ++i) {
          ::SendMessageW(list, LB_ADDSTRING, 0, static_cast<LPARAM>(i));
        }
        int position = wanted;
        if (wanted < 0) position = PositionOfResource(file, -wanted);
        if (position < 0 || static_cast<std::size_t>(position) >= icons_.size()) position = 0;
        ::SendMessageW(list, LB_SETCURSEL, static_cast<WPARAM>(position), 0);
      }
    }
    ::SetDlgItemTextW(dialog_, ip::kMessageId, message != nullptr ? message : L"");
    ::SendMessageW(list, WM_SETREDRAW, TRUE, 0);
    ::InvalidateRect(list, nullptr, TRUE);
    UpdateOk();
  }

  void Reload() { Load(FieldText(), 0); }

  void EnterInPathField() {
    if (FieldText() != loaded_) {
      Reload();
    } else if (::IsWindowEnabled(Item(IDOK)) != FALSE) {
      Confirm();
    }
  }

  int Selected() const {
    const LRESULT selected = ::SendMessageW(Item(ip::kIconListId), LB_GETCURSEL, 0, 0);
    if (selected == LB_ERR || selected < 0 || static_cast<std::size_t>(selected) >= icons_.size()) {
      return -1;
    }
    return static_cast<int>(selected);
  }

  void UpdateOk() {
    const HWND ok = Item(IDOK);
    const bool enable = Selected() >= 0;
    if (!enable && ::GetFocus() == ok) ::SetFocus(Item(ip::kPathId));
    ::EnableWindow(ok, enable ? TRUE : FALSE);
  }

  // OK: the loaded file and the selected icon go back to the caller.
  void Confirm() {
    const int selected = Selected();
    if (selected < 0 || loaded_.size() >= size_) return;
    std::fill(std::copy(loaded_.begin(), loaded_.end(), path_), path_ + size_, u'\0');
    index_ = selected;
    ::EndDialog(dialog_, 1);
  }

  void Browse() {
    const OpenFileProc open = OpenFileDialog();
    if (open == nullptr) return;
    std::wstring file = FieldText();
    constexpr std::size_t kRoom = 4096;
    if (file.size() >= kRoom) file.clear();
    file.resize(kRoom, L'\0');
    static const wchar_t kFilter[] =
        L"Icon files (*.ico;*.exe;*.dll;*.icl)\0*.ico;*.exe;*.dll;*.icl\0"
        L"All files (*.*)\0*.*\0";
    OPENFILENAMEW request{};
    request.lStructSize = sizeof request;
    request.hwndOwner = dialog_;
    request.lpstrFilter = kFilter;
    request.nFilterIndex = 1;
    request.lpstrFile = file.data();
    request.nMaxFile = static_cast<DWORD>(kRoom);
    request.Flags = OFN_EXPLORER | OFN_FILEMUSTEXIST | OFN_PATHMUSTEXIST | OFN_HIDEREADONLY |
                    OFN_NOCHANGEDIR;
    if (open(&request) == FALSE) return;
    file.resize(file.find(L'\0'));
    ::SetWindowTextW(Item(ip::kPathId), file.c_str());
    Load(file, 0);
    if (Selected() >= 0) ::SetFocus(Item(ip::kIconListId));
  }

  void Draw(const DRAWITEMSTRUCT& draw) const {
    RECT cell = draw.rcItem;
    ::FillRect(draw.hDC, &cell, ::GetSysColorBrush(COLOR_WINDOW));
    if (draw.itemID == static_cast<UINT>(-1) || draw.itemID >= icons_.size()) {
      if ((draw.itemState & ODS_FOCUS) != 0) ::DrawFocusRect(draw.hDC, &cell);
      return;
    }
    RECT frame = cell;
    ::InflateRect(&frame, -2, -2);
    if ((draw.itemState & ODS_SELECTED) != 0) {
      ::FillRect(draw.hDC, &frame, ::GetSysColorBrush(COLOR_HIGHLIGHT));
    }
    const int width = ::GetSystemMetrics(SM_CXICON);
    const int height = ::GetSystemMetrics(SM_CYICON);
    const int x = (cell.left + cell.right - width) / 2;
    const int y = (cell.top + cell.bottom - height) / 2;
    const HICON icon = icons_[draw.itemID].Get();
    if (icon != nullptr) ::DrawIconEx(draw.hDC, x, y, icon, width, height, 0, nullptr, DI_NORMAL);
    if ((draw.itemState & ODS_FOCUS) != 0) ::DrawFocusRect(draw.hDC, &frame);
  }

  char16_t* path_;
  std::uint32_t size_;
  std::int32_t& index_;
  HWND dialog_ = nullptr;
  std::wstring loaded_;
  std::vector<UniqueIcon> icons_;
};

}  // namespace

std::int32_t ShowIconPicker(HWND owner, char16_t* path, std::uint32_t size, std::int32_t& index) {
  if (path == nullptr || size == 0) return 0;
  const DialogTemplate dialog = PickerTemplate();
  Picker picker(path, size, index);
  const INT_PTR result =
      ::DialogBoxIndirectParamW(::GetModuleHandleW(nullptr), dialog.Get(), owner,
                                &Picker::DialogProc, reinterpret_cast<LPARAM>(&picker));
  return result == 1 ? 1 : 0;
}

}  // namespace quorvane::platform::win32
