// The records of the form's binding: one for each control and the windows that show it, made
// in the window of its container at its place and found by the control's system name; how a
// change of the model reaches the windows; what the windows tell the binding; and what a tree
// view and a spin edit do with their parts.
#include "ui/win32/FormWindow.h"

#include <windows.h>
#include <commctrl.h>
#include <windowsx.h>

#include <algorithm>
#include <charconv>

namespace quorvane::ui::win32 {

namespace {

// A control's place in its container's window, in pixels; never a negative size.
struct PixelPlace {
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;
};

// The height of a drop-down list's entries when dropped, in pixels.
constexpr int kDroppedList = 160;

PixelPlace PlaceOf(const Control& control) {
  return PixelPlace{ToPixels(control.Left()), ToPixels(control.Top()),
                    std::max(0, ToPixels(control.Width())),
                    std::max(0, ToPixels(control.Height()))};
}

// The object a window of the program's own classes was made for: the creation data, kept in the
// window's user data from WM_NCCREATE until ReleaseOwner. Null for messages before WM_NCCREATE.
template <class Owner>
Owner* OwnerOf(HWND window, UINT message, LPARAM lParam) {
  if (message == WM_NCCREATE) {
    const auto* creation = reinterpret_cast<const CREATESTRUCTA*>(lParam);
    ::SetWindowLongPtrA(window, GWLP_USERDATA,
                        reinterpret_cast<LONG_PTR>(creation->lpCreateParams));
  }
  return reinterpret_cast<Owner*>(::GetWindowLongPtrA(window, GWLP_USERDATA));
}

// The window no longer leads to its object: what comes after WM_NCDESTROY goes to the system.
void ReleaseOwner(HWND window) { ::SetWindowLongPtrA(window, GWLP_USERDATA, 0); }

// The caption of a label, frame, check box, option button or command button; empty for another
// control.
const std::string& CaptionOf(const Control& control) {
  static const std::string none;
  const auto* captioned = dynamic_cast<const CaptionedControl*>(&control);
  return captioned != nullptr ? captioned->Caption() : none;
}

}  // namespace

std::size_t FormWindow::NodesShown(const BoundControl& bound, const TreeView& tree) {
  return std::min(bound.items.size(), static_cast<std::size_t>(std::max(0, tree.Count())));
}

// --- the records --------------------------------------------------------------------------------

void FormWindow::Prepare(DWORD commonControlClasses) {
  INITCOMMONCONTROLSEX controls{};
  controls.dwSize = sizeof controls;
  controls.dwICC = commonControlClasses;
  ::InitCommonControlsEx(&controls);
  findMessage_ = ::RegisterWindowMessageA(kFindControlMessage);
  accessibleNames_.Connect();
  font_.Reset(MakeVerdana(8, false, false));
  InstallCaptionMeasure();
}

void FormWindow::BindAll(const std::vector<Control*>& controls) {
  for (Control* control : controls) Bind(*control);
  for (auto& record : records_) record->control->Observe(this);
}

BoundControl& FormWindow::Bind(Control& control) {
  if (BoundControl* known = RecordOf(control)) return *known;
  if (control.Container != nullptr && control.Container != &control) Bind(*control.Container);
  auto record = std::make_unique<BoundControl>(KindOf(control));
  record->binding = this;
  record->control = &control;
  BoundControl& bound = *record;
  records_.push_back(std::move(record));
  byControl_[&control] = &bound;
  MakeWindow(bound);
  return bound;
}

BoundControl* FormWindow::RecordOf(const Control& control) const {
  const auto found = byControl_.find(&control);
  return found == byControl_.end() ? nullptr : found->second;
}

BoundControl* FormWindow::RecordAt(HWND window) const {
  if (window == nullptr) return nullptr;
  const auto found = byWindow_.find(window);
  return found == byWindow_.end() ? nullptr : found->second;
}

HWND FormWindow::WindowOf(const Control& control) const {
  const BoundControl* bound = RecordOf(control);
  return bound == nullptr ? nullptr : bound->window;
}

HWND FormWindow::Find(std::string_view systemName) const {
  std::string name;
  std::int32_t index = -1;
  if (!ParseSystemName(systemName, name, index)) return nullptr;
  for (const auto& record : records_) {
    const Control& control = *record->control;
    if (control.Name() == name && control.Index() == index) return record->window;
  }
  return nullptr;
}

void FormWindow::Changed(Control& control, Property property) {
  if (const auto* timer = dynamic_cast<const Timer*>(&control)) {
    if (property == Property::Enabled) ApplyTimer(*timer);
    return;
  }
  BoundControl* found = RecordOf(control);
  if (found == nullptr || found->window == nullptr) return;
  BoundControl& bound = *found;
  const bool tree = dynamic_cast<TreeView*>(&control) != nullptr;
  switch (property) {
    case Property::Visible:
      ApplyVisible(bound);
      break;
    case Property::Enabled:
      ApplyEnabled(bound);
      break;
    case Property::Position:
      Place(bound);
      break;
    case Property::Caption:
      ApplyCaption(bound);
      break;
    case Property::Picture:
    case Property::Image:
      ApplyPicture(bound, property);
      break;
    case Property::Value:
      ApplyValue(bound);
      break;
    case Property::Nodes:
      if (tree) ApplyNodes(bound);
      if (bound.kind == Kind::List) ApplyListItems(bound);
      break;
    case Property::NodeState:
      if (tree) ApplyNodeStates(bound);
      if (bound.kind == Kind::List) ApplyListStates(bound);
      break;
    case Property::Images:
      if (tree) ApplyImages(bound);
      break;
    case Property::ZOrder:
      ::SetWindowPos(bound.window, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
      break;
    case Property::Focus:
      ApplyFocus(bound);
      break;
    case Property::Tag:
      break;
  }
}

void FormWindow::Run(const std::function<void()>& handler) {
  if (!handler) return;
  RunEvent(form_, handler);
}

// --- the windows --------------------------------------------------------------------------------

HWND FormWindow::ParentOf(const Control& control) const {
  if (control.Container != nullptr) {
    if (HWND container = WindowOf(*control.Container); container != nullptr) return container;
  }
  return window_;
}

HWND FormWindow::MakeTopWindow(const TopWindow& wanted, const char* refusal) {
  const RECT& frame = wanted.frame;
  HWND window = ::CreateWindowExA(wanted.extendedStyle, wanted.className, wanted.caption,
                                  wanted.style, frame.left, frame.top, frame.right - frame.left,
                                  frame.bottom - frame.top, wanted.owner, nullptr, instance_,
                                  this);
  if (window == nullptr) throw SystemFailure(refusal);
  window_ = window;
  return window;
}

HWND FormWindow::MakeChild(BoundControl& bound, const ChildWindow& wanted) {
  Control& control = *bound.control;
  const std::string name = SystemNameOf(control);
  const PixelPlace place = PlaceOf(control);
  const DWORD style =
      WS_CHILD | WS_CLIPSIBLINGS | (control.Visible() ? WS_VISIBLE : 0) | wanted.style;
  const std::string& text = wanted.showsCaption ? CaptionOf(control) : name;
  HWND window = ::CreateWindowExA(wanted.extendedStyle, wanted.className, text.c_str(), style,
                                  place.x, place.y, place.width, place.height, ParentOf(control),
                                  nullptr, instance_,
                                  wanted.ownClass ? static_cast<BoundControl*>(&bound) : nullptr);
  if (window == nullptr) throw SystemFailure("The window of " + name + " was refused");
  bound.window = window;
  bound.showsCaption = wanted.showsCaption;
  byWindow_[window] = &bound;
  control.hWnd = ToHandleValue(window);
  accessibleNames_.Give(window, name);
  return window;
}

void FormWindow::MakeButton(BoundControl& bound, DWORD buttonStyle) {
  MakeChild(bound, {.className = "BUTTON", .style = WS_TABSTOP | buttonStyle,
                    .showsCaption = true});
  UseCaptionFont(bound.window);
}

void FormWindow::MakeSpinEdit(BoundControl& bound, const char* className) {
  // Its parts are its children, reached with the keyboard as the form's own.
  MakeChild(bound, {.className = className, .style = WS_CLIPCHILDREN,
                    .extendedStyle = WS_EX_CONTROLPARENT, .ownClass = true});
  MakeSpinParts(bound);
}

void FormWindow::MakeSpinParts(BoundControl& bound) {
  const PixelPlace place = PlaceOf(*bound.control);
  const int arrows = ::GetSystemMetrics(SM_CXVSCROLL);
  bound.edit = ::CreateWindowExA(WS_EX_CLIENTEDGE, "EDIT", "",
                                 WS_CHILD | WS_VISIBLE | WS_TABSTOP | ES_AUTOHSCROLL, 0, 0,
                                 std::max(0, place.width - arrows), place.height, bound.window,
                                 nullptr, instance_, nullptr);
  bound.upDown = ::CreateWindowExA(
      0, UPDOWN_CLASSA, "", WS_CHILD | WS_VISIBLE | UDS_SETBUDDYINT | UDS_ARROWKEYS |
                                UDS_NOTHOUSANDS,
      std::max(0, place.width - arrows), 0, arrows, place.height, bound.window, nullptr,
      instance_, nullptr);
  if (bound.edit == nullptr || bound.upDown == nullptr) {
    throw SystemFailure("The parts of " + SystemNameOf(*bound.control) + " were refused");
  }
  byWindow_[bound.edit] = &bound;
  byWindow_[bound.upDown] = &bound;
  UseCaptionFont(bound.edit);
  ::SendMessageA(bound.upDown, UDM_SETBUDDY, reinterpret_cast<WPARAM>(bound.edit), 0);
}

void FormWindow::Forget(HWND window) {
  auto found = byWindow_.find(window);
  if (found == byWindow_.end()) return;
  BoundControl& bound = *found->second;
  byWindow_.erase(found);
  if (bound.window == window) {
    accessibleNames_.Take(window);
    bound.window = nullptr;
    bound.items.clear();
    bound.mirror.clear();
    bound.control->hWnd = 0;
  } else if (bound.edit == window) {
    bound.edit = nullptr;
  } else if (bound.upDown == window) {
    bound.upDown = nullptr;
  }
}

void FormWindow::Place(BoundControl& bound) {
  HWND parent = ParentOf(*bound.control);
  if (::GetParent(bound.window) != parent) ::SetParent(bound.window, parent);
  const PixelPlace place = PlaceOf(*bound.control);
  // A drop-down list's window holds its list too, dropped below the place. An image shows what
  // is behind it: moved or resized, it is drawn whole again, never copied.
  const int dropped = bound.kind == Kind::Combo ? kDroppedList : 0;
  const UINT copying = dynamic_cast<const Image*>(bound.control) != nullptr ? SWP_NOCOPYBITS : 0;
  ::SetWindowPos(bound.window, nullptr, place.x, place.y, place.width, place.height + dropped,
                 SWP_NOZORDER | SWP_NOACTIVATE | copying);
  PlaceSpinParts(bound, place.width, place.height);
}

void FormWindow::PlaceSpinParts(BoundControl& bound, int width, int height) {
  if (bound.edit == nullptr || bound.upDown == nullptr) return;
  const int arrows = ::GetSystemMetrics(SM_CXVSCROLL);
  ::MoveWindow(bound.edit, 0, 0, std::max(0, width - arrows), height, TRUE);
  ::MoveWindow(bound.upDown, std::max(0, width - arrows), 0, arrows, height, TRUE);
}

void FormWindow::ApplyVisible(const BoundControl& bound) {
  const bool visible = bound.control->Visible();
  if ((::IsWindowVisible(bound.window) != 0) == visible &&
      ((::GetWindowLongPtrA(bound.window, GWL_STYLE) & WS_VISIBLE) != 0) == visible) {
    return;
  }
  ::ShowWindow(bound.window, visible ? SW_SHOWNA : SW_HIDE);
}

void FormWindow::ApplyCaption(BoundControl& bound) {
  if (bound.kind == Kind::Text) return ApplyText(bound);
  if (bound.showsCaption) ::SetWindowTextA(bound.window, CaptionOf(*bound.control).c_str());
  Repaint(bound);
}

void FormWindow::EnableWindows(const BoundControl& bound) {
  const BOOL enabled = bound.control->Enabled() ? TRUE : FALSE;
  // A picture box stays enabled as a window: a disabled one still follows the mouse (a picture
  // button shows its hover picture all the same), and Mouse lets the model's Enabled decide
  // that it takes no click.
  ::EnableWindow(bound.window, bound.kind == Kind::Picture ? TRUE : enabled);
  if (bound.edit != nullptr) ::EnableWindow(bound.edit, enabled);
  if (bound.upDown != nullptr) ::EnableWindow(bound.upDown, enabled);
}

void FormWindow::ApplyFocus(const BoundControl& bound) {
  // A spin edit's focus is its edit's; a window that can't take it (hidden or disabled) keeps
  // the focus where it is, as the system does.
  HWND target = bound.edit != nullptr ? bound.edit : bound.window;
  if (::IsWindowVisible(target) == 0 || ::IsWindowEnabled(target) == 0) return;
  ::SetFocus(target);
}

void FormWindow::UseCaptionFont(HWND window) const {
  ::SendMessageA(window, WM_SETFONT, reinterpret_cast<WPARAM>(font_.Get()), FALSE);
}

HBRUSH FormWindow::BrushOf(std::uint32_t color) {
  auto found = brushes_.find(color);
  if (found == brushes_.end()) {
    found = brushes_.emplace(color, UniqueBrush(::CreateSolidBrush(color & 0xFFFFFFu))).first;
  }
  return found->second.Get();
}

// --- messages -----------------------------------------------------------------------------------

LRESULT CALLBACK FormWindow::TopProcedure(HWND window, UINT message, WPARAM wParam,
                                              LPARAM lParam) {
  auto* self = OwnerOf<FormWindow>(window, message, lParam);
  if (self == nullptr) return ::DefWindowProcA(window, message, wParam, lParam);
  return self->CommonTopMessage(window, message, wParam, lParam);
}

LRESULT CALLBACK FormWindow::PartProcedure(HWND window, UINT message, WPARAM wParam,
                                               LPARAM lParam) {
  auto* bound = OwnerOf<BoundControl>(window, message, lParam);
  if (bound == nullptr) return ::DefWindowProcA(window, message, wParam, lParam);
  return bound->binding->CommonPartMessage(*bound, window, message, wParam, lParam);
}

LRESULT FormWindow::CommonTopMessage(HWND window, UINT message, WPARAM wParam,
                                         LPARAM lParam) {
  if (findMessage_ != 0 && message == findMessage_) {
    Flush();
    return AnswerFind(wParam);
  }
  LRESULT result = 0;
  if (ControlNotification(message, wParam, lParam, result)) return result;
  if (message == WM_NCDESTROY) {
    ReleaseOwner(window);
    window_ = nullptr;
    return ::DefWindowProcA(window, message, wParam, lParam);
  }
  return TopMessage(window, message, wParam, lParam);
}

LRESULT FormWindow::CommonPartMessage(BoundControl& bound, HWND window, UINT message,
                                          WPARAM wParam, LPARAM lParam) {
  LRESULT result = 0;
  if (ControlNotification(message, wParam, lParam, result)) return result;
  switch (message) {
    case WM_ERASEBKGND:
      return 1;  // painting covers the whole window
    case WM_SETFOCUS:
      if (bound.edit != nullptr) ::SetFocus(bound.edit);
      return 0;
    case WM_NCDESTROY:
      Forget(window);
      ReleaseOwner(window);
      return ::DefWindowProcA(window, message, wParam, lParam);
    default:
      return PartMessage(bound, window, message, wParam, lParam);
  }
}

bool FormWindow::ControlNotification(UINT message, WPARAM wParam, LPARAM lParam,
                                         LRESULT& result) {
  switch (message) {
    case WM_NOTIFY: {
      const auto* header = reinterpret_cast<const NMHDR*>(lParam);
      BoundControl* sender = header != nullptr ? RecordAt(header->hwndFrom) : nullptr;
      if (sender != nullptr && sender->kind == Kind::List) {
        ListNotification(*sender, *header, lParam);
        result = 0;
        return true;
      }
      if (sender == nullptr || dynamic_cast<TreeView*>(sender->control) == nullptr) return false;
      TreeNotification(*sender, *header, lParam);
      result = 0;
      return true;
    }
    case WM_COMMAND: {
      BoundControl* sender = RecordAt(reinterpret_cast<HWND>(lParam));
      if (sender == nullptr) return false;
      if (!IsApplying()) Command(*sender, HIWORD(wParam));
      result = 0;
      return true;
    }
    case WM_HSCROLL:
    case WM_VSCROLL:
    case WM_CTLCOLORSTATIC:
    case WM_CTLCOLORBTN: {
      // These name the control's window in lParam.
      BoundControl* sender = RecordAt(reinterpret_cast<HWND>(lParam));
      return sender != nullptr && ControlMessage(*sender, message, wParam, result);
    }
    default:
      return false;
  }
}

LRESULT FormWindow::AnswerFind(WPARAM atom) const {
  char name[256] = {};
  const UINT length =
      ::GlobalGetAtomNameA(static_cast<ATOM>(atom), name, static_cast<int>(sizeof name));
  if (length == 0) return 0;
  return reinterpret_cast<LRESULT>(Find(std::string_view(name, length)));
}

// --- tree views ---------------------------------------------------------------------------------

void FormWindow::ClearTree(BoundControl& bound) {
  ::SendMessageA(bound.window, TVM_DELETEITEM, 0, reinterpret_cast<LPARAM>(TVI_ROOT));
  bound.items.clear();
}

void FormWindow::AddTreeItem(BoundControl& bound, const Node& node, TVITEMA item) {
  TVINSERTSTRUCTA insert{};
  insert.hParent = TVI_ROOT;
  if (node.Parent > 0 && static_cast<std::size_t>(node.Parent) <= bound.items.size()) {
    insert.hParent = bound.items[static_cast<std::size_t>(node.Parent) - 1];
  }
  insert.hInsertAfter = TVI_LAST;
  // Under a sorted node the tree view puts the child in its place by text.
  const auto& tree = static_cast<const TreeView&>(*bound.control);
  if (node.Parent > 0 && node.Parent <= tree.Count() && tree.Item(node.Parent).Sorted) {
    insert.hInsertAfter = TVI_SORT;
  }
  std::string text = node.Text;
  insert.item = item;
  insert.item.mask |= TVIF_TEXT | TVIF_PARAM;
  insert.item.pszText = text.data();
  insert.item.lParam = static_cast<LPARAM>(bound.items.size()) + 1;  // the node's position
  bound.items.push_back(reinterpret_cast<HTREEITEM>(
      ::SendMessageA(bound.window, TVM_INSERTITEMA, 0, reinterpret_cast<LPARAM>(&insert))));
}

bool FormWindow::RemoveTreeItems(BoundControl& bound) {
  const auto& tree = static_cast<const TreeView&>(*bound.control);
  const std::vector<std::int32_t>& removed = tree.Removed();
  if (removed.empty() || bound.items.size() != static_cast<std::size_t>(tree.Count()) + removed.size() ||
      static_cast<std::size_t>(removed.back()) > bound.items.size()) {
    return false;
  }
  // The first node removed takes the nodes below it out of the tree view with it.
  ::SendMessageA(bound.window, TVM_DELETEITEM, 0,
                 reinterpret_cast<LPARAM>(bound.items[static_cast<std::size_t>(removed.front()) - 1]));
  for (auto it = removed.rbegin(); it != removed.rend(); ++it) {
    const auto at = static_cast<std::ptrdiff_t>(*it) - 1;
    bound.items.erase(bound.items.begin() + at);
    if (static_cast<std::size_t>(at) < bound.mirror.size()) bound.mirror.erase(bound.mirror.begin() + at);
  }
  // The items after the gap learn their new positions.
  for (std::size_t i = static_cast<std::size_t>(removed.front()) - 1; i < bound.items.size(); ++i) {
    TVITEMA change{};
    change.mask = TVIF_HANDLE | TVIF_PARAM;
    change.hItem = bound.items[i];
    change.lParam = static_cast<LPARAM>(i) + 1;
    ::SendMessageA(bound.window, TVM_SETITEMA, 0, reinterpret_cast<LPARAM>(&change));
  }
  return true;
}

void FormWindow::ShowSelectedNode(const BoundControl& bound, std::int32_t selected) {
  HTREEITEM wanted = nullptr;
  if (selected >= 1 && static_cast<std::size_t>(selected) <= bound.items.size()) {
    wanted = bound.items[static_cast<std::size_t>(selected) - 1];
  }
  const auto current = reinterpret_cast<HTREEITEM>(
      ::SendMessageA(bound.window, TVM_GETNEXTITEM, TVGN_CARET, 0));
  if (current != wanted) {
    ::SendMessageA(bound.window, TVM_SELECTITEM, TVGN_CARET, reinterpret_cast<LPARAM>(wanted));
  }
}

std::int32_t FormWindow::PositionOfItem(const BoundControl& bound, HTREEITEM item) const {
  if (item == nullptr) return 0;
  TVITEMA query{};
  query.mask = TVIF_HANDLE | TVIF_PARAM;
  query.hItem = item;
  if (::SendMessageA(bound.window, TVM_GETITEMA, 0, reinterpret_cast<LPARAM>(&query)) == 0) {
    return 0;
  }
  const auto position = static_cast<std::int32_t>(query.lParam);
  const bool known = position >= 1 && static_cast<std::size_t>(position) <= bound.items.size() &&
                     bound.items[static_cast<std::size_t>(position) - 1] == item;
  return known ? position : 0;
}

void FormWindow::SelectNodeHit(BoundControl& bound, const TVHITTESTINFO& hit) {
  if (hit.hItem == nullptr || (hit.flags & TVHT_ONITEM) == 0) return;
  auto& tree = static_cast<TreeView&>(*bound.control);
  const std::int32_t position = PositionOfItem(bound, hit.hItem);
  if (position != 0 && position != tree.SelectedItem()) Run([&] { tree.Select(position); });
}

UINT FormWindow::FollowTreeSelection(BoundControl& bound, LPARAM lParam) {
  if (IsApplying()) return TVC_UNKNOWN;
  const auto& change = *reinterpret_cast<const NMTREEVIEWA*>(lParam);
  if (change.action != TVC_BYMOUSE && change.action != TVC_BYKEYBOARD) return TVC_UNKNOWN;
  auto& tree = static_cast<TreeView&>(*bound.control);
  const std::int32_t position = PositionOfItem(bound, change.itemNew.hItem);
  if (position != 0 && position != tree.SelectedItem()) Run([&] { tree.Select(position); });
  return change.action;
}

// --- spin edits ---------------------------------------------------------------------------------

bool FormWindow::ReadSpinNumber(const BoundControl& bound, std::int32_t& value) {
  if (bound.edit == nullptr) return false;
  char text[32] = {};
  const int length = ::GetWindowTextA(bound.edit, text, static_cast<int>(sizeof text));
  const char* end = text + std::max(0, length);
  const auto [stop, error] = std::from_chars(text, end, value);
  return error == std::errc() && stop == end;
}

}  // namespace quorvane::ui::win32
