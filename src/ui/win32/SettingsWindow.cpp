#include "ui/win32/SettingsWindow.h"

#include <windows.h>
#include <commctrl.h>

#include <algorithm>
#include <climits>
#include <stdexcept>
#include <string>

#include "core/MainModule.h"
#include "platform/MessageBoxes.h"
#include "platform/Service.h"
#include "platform/win32/GdiHandles.h"
#include "ui/win32/PixelDrawing.h"
#include "wallpaper/FrmSettings.h"

namespace quorvane::ui::win32 {

enum class SettingsKind { Picture, Label, Frame, Check, Option, Command, Spin, Tree };

struct SettingsBound final : BoundWindow {
  explicit SettingsBound(SettingsKind what) : kind(what) {}
  const SettingsKind kind;
};

namespace {

const char* const kPartClass = "QuorvaneSettingsPart";
// Posted to the dialog after a click or a key on a tree's tick box, which the tree view turns
// over only once it has told its parent.
const char* const kPullChecksMessage = "Quorvane.SettingsChecks";

// State images of a tree with tick boxes: 1 unticked, 2 ticked.
constexpr UINT kUnticked = 1u << 12;
constexpr UINT kTicked = 2u << 12;

SettingsBound& Of(BoundWindow& bound) { return static_cast<SettingsBound&>(bound); }

SettingsKind KindOf(Control& control) {
  if (dynamic_cast<TreeView*>(&control) != nullptr) return SettingsKind::Tree;
  if (dynamic_cast<Label*>(&control) != nullptr) return SettingsKind::Label;
  if (dynamic_cast<Frame*>(&control) != nullptr) return SettingsKind::Frame;
  if (dynamic_cast<CheckBox*>(&control) != nullptr) return SettingsKind::Check;
  if (dynamic_cast<OptionButton*>(&control) != nullptr) return SettingsKind::Option;
  if (dynamic_cast<CommandButton*>(&control) != nullptr) return SettingsKind::Command;
  if (dynamic_cast<ValueControl*>(&control) != nullptr) return SettingsKind::Spin;
  return SettingsKind::Picture;
}

}  // namespace

SettingsWindow::SettingsWindow(FrmSettings& form, HINSTANCE instance)
    : ControlBinding(instance), form_(form) {}

SettingsWindow::~SettingsWindow() {
  Failed = nullptr;
  if (Handle() != nullptr) ::DestroyWindow(Handle());
  for (const auto& record : Records()) record->control->hWnd = 0;
}

void SettingsWindow::Ran() {
  // The modal loop looks at the form after each message; this one makes sure one comes.
  if (form_.Unloaded() && Handle() != nullptr) ::PostMessageA(Handle(), WM_NULL, 0, 0);
}

void SettingsWindow::RegisterClasses() {
  RegisterWindowClass(Instance(),
                      {.name = kSettingsWindowClass,
                       .procedure = &ControlBinding::TopProcedure,
                       .background = ::GetSysColorBrush(COLOR_BTNFACE)},
                      "The settings window's class was refused");
  RegisterWindowClass(Instance(), {.name = kPartClass, .procedure = &ControlBinding::PartProcedure},
                      "A control's class was refused");
}

void SettingsWindow::Create(HWND owner) {
  if (Handle() != nullptr) return;
  owner_ = owner;
  Prepare(ICC_TREEVIEW_CLASSES | ICC_UPDOWN_CLASS | ICC_STANDARD_CLASSES);
  RegisterClasses();
  pullMessage_ = ::RegisterWindowMessageA(kPullChecksMessage);

  const DWORD style = WS_POPUP | WS_CAPTION | WS_SYSMENU | WS_CLIPCHILDREN;
  const DWORD extended = WS_EX_DLGMODALFRAME | WS_EX_CONTROLPARENT;
  RECT frame{0, 0, ToPixels(form_.Width), ToPixels(form_.Height)};
  ::AdjustWindowRectEx(&frame, style, FALSE, extended);
  const int width = frame.right - frame.left;
  const int height = frame.bottom - frame.top;
  RECT over{0, 0, ::GetSystemMetrics(SM_CXSCREEN), ::GetSystemMetrics(SM_CYSCREEN)};
  if (owner != nullptr && ::IsWindowVisible(owner) != 0) ::GetWindowRect(owner, &over);
  const int left = std::max(0, static_cast<int>((over.left + over.right - width) / 2));
  const int top = std::max(0, static_cast<int>((over.top + over.bottom - height) / 2));
  HWND window = MakeTopWindow({.className = kSettingsWindowClass,
                               .caption = form_.Caption.c_str(),
                               .style = style,
                               .extendedStyle = extended,
                               .frame = {left, top, left + width, top + height},
                               .owner = owner},
                              "The settings window was refused");
  form_.hWnd = ToHandleValue(window);
  BindAll(form_.Controls());
}

std::unique_ptr<BoundWindow> SettingsWindow::NewBound(Control& control) {
  return std::make_unique<SettingsBound>(KindOf(control));
}

void SettingsWindow::MakeWindow(BoundWindow& record) {
  SettingsBound& bound = Of(record);
  switch (bound.kind) {
    case SettingsKind::Picture:
    case SettingsKind::Frame:
      // Their controls are their children, reached with the keyboard as the dialog's own.
      MakeChild(bound, {.className = kPartClass, .style = WS_CLIPCHILDREN,
                        .extendedStyle = WS_EX_CONTROLPARENT, .ownClass = true});
      break;
    case SettingsKind::Spin:
      MakeSpinEdit(bound, kPartClass);
      break;
    case SettingsKind::Label:
      MakeChild(bound, {.className = kPartClass, .ownClass = true});
      break;
    case SettingsKind::Check:
      MakeButton(bound, BS_3STATE);
      break;
    case SettingsKind::Option:
      MakeButton(bound, BS_RADIOBUTTON);
      break;
    case SettingsKind::Command:
      MakeButton(bound, BS_PUSHBUTTON);
      break;
    case SettingsKind::Tree:
      MakeChild(bound, {.className = WC_TREEVIEWA, .style = WS_TABSTOP | TVS_SHOWSELALWAYS,
                        .extendedStyle = WS_EX_CLIENTEDGE});
      // Tick boxes are asked for once the tree view exists, before it holds items.
      ::SetWindowLongPtrA(bound.window, GWL_STYLE,
                          ::GetWindowLongPtrA(bound.window, GWL_STYLE) | TVS_CHECKBOXES);
      UseCaptionFont(bound.window);
      ApplyNodes(bound);
      break;
  }
  ApplyValue(bound);
  EnableWindows(bound);
}

void SettingsWindow::Activated() {
  activated_ = true;
  Run([this] { form_.Form_Activate(); });
}

void SettingsWindow::ShowModal(HWND owner) {
  Create(owner);
  Run([this] { form_.Form_Load(); });
  const bool ownerWasEnabled = owner != nullptr && ::IsWindowEnabled(owner) != 0;
  if (owner != nullptr) ::EnableWindow(owner, FALSE);
  if (!form_.Unloaded()) {
    ::ShowWindow(Handle(), SW_SHOW);
    ::UpdateWindow(Handle());
    // Shown without taking the activation (another program is in front): the form is active in
    // the program all the same.
    if (!activated_) Activated();
  }
  MSG message{};
  while (!form_.Unloaded() && Handle() != nullptr) {
    const BOOL result = ::GetMessageA(&message, nullptr, 0, 0);
    if (result == 0) {
      ::PostQuitMessage(static_cast<int>(message.wParam));
      break;
    }
    if (result == -1) break;
    if (Handle() != nullptr && ::IsDialogMessageA(Handle(), &message) != 0) continue;
    ::TranslateMessage(&message);
    ::DispatchMessageA(&message);
  }
  // The owner comes back before the dialog goes, so that it takes the activation.
  if (ownerWasEnabled) ::EnableWindow(owner, TRUE);
  if (Handle() != nullptr) ::DestroyWindow(Handle());
  if (ownerWasEnabled && ::IsWindowVisible(owner) != 0) ::SetActiveWindow(owner);
}

// --- the model's changes ----------------------------------------------------------------------

void SettingsWindow::Repaint(BoundWindow& bound) {
  ::RedrawWindow(bound.window, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
}

void SettingsWindow::ApplyValue(BoundWindow& record) {
  SettingsBound& bound = Of(record);
  Applying applying(*this);
  switch (bound.kind) {
    case SettingsKind::Check: {
      const std::int16_t value = static_cast<CheckBox&>(*bound.control).Value();
      ::SendMessageA(bound.window, BM_SETCHECK,
                     value == 1   ? BST_CHECKED
                     : value == 0 ? BST_UNCHECKED
                                  : BST_INDETERMINATE,
                     0);
      break;
    }
    case SettingsKind::Option:
      ::SendMessageA(bound.window, BM_SETCHECK,
                     static_cast<OptionButton&>(*bound.control).Value() ? BST_CHECKED
                                                                        : BST_UNCHECKED,
                     0);
      break;
    case SettingsKind::Spin: {
      const auto& spin = static_cast<ValueControl&>(*bound.control);
      if (bound.upDown != nullptr) {
        // Both bounds 0: no bounds of its own.
        const bool bounded = spin.Min != 0 || spin.Max != 0;
        ::SendMessageA(bound.upDown, UDM_SETRANGE32,
                       static_cast<WPARAM>(bounded ? spin.Min : -INT_MAX),
                       bounded ? spin.Max : INT_MAX);
        ::SendMessageA(bound.upDown, UDM_SETPOS32, 0, spin.Value());
      }
      if (bound.edit != nullptr) {
        const std::string text = std::to_string(spin.Value());
        char shown[32] = {};
        ::GetWindowTextA(bound.edit, shown, static_cast<int>(sizeof shown));
        if (text != shown) ::SetWindowTextA(bound.edit, text.c_str());
      }
      break;
    }
    default:
      break;
  }
}

// --- painting ---------------------------------------------------------------------------------

std::uint32_t SettingsWindow::ColorBehind(const Control& control) const {
  const Control* container = control.Container;
  while (container != nullptr) {
    if (const auto* box = dynamic_cast<const PictureBox*>(container)) {
      return box->BackColor & 0xFFFFFFu;
    }
    container = container->Container;
  }
  return ::GetSysColor(COLOR_BTNFACE);
}

void SettingsWindow::Paint(SettingsBound& bound, HWND window, HDC dc) {
  RECT area{};
  ::GetClientRect(window, &area);
  const Control& control = *bound.control;
  if (bound.kind == SettingsKind::Picture) {
    PaintPicture(control, dc, area);
    return;
  }
  ::FillRect(dc, &area, BrushOf(ColorBehind(control)));
  if (bound.kind == SettingsKind::Label) {
    DrawLabelCaption(dc, static_cast<const Label&>(control), CaptionFont(), area);
  } else if (bound.kind == SettingsKind::Frame) {
    PaintFrame(static_cast<const Frame&>(control), dc, area);
  }
}

void SettingsWindow::PaintPicture(const Control& control, HDC dc, const RECT& area) {
  const auto* box = dynamic_cast<const PictureBox*>(&control);
  const std::uint32_t back = box != nullptr ? box->BackColor & 0xFFFFFFu
                                            : ::GetSysColor(COLOR_BTNFACE);
  ::FillRect(dc, &area, BrushOf(back));
  if (box != nullptr) DrawPixels(dc, box->Picture(), 0, 0, back);
}

void SettingsWindow::PaintFrame(const Frame& frame, HDC dc, const RECT& area) {
  HGDIOBJ oldFont = ::SelectObject(dc, CaptionFont());
  ::SetBkMode(dc, TRANSPARENT);
  std::string caption = frame.Caption();
  // The border runs through the middle of the caption's line; the caption stands on the
  // background, in a gap of the border.
  TEXTMETRICA metrics{};
  ::GetTextMetricsA(dc, &metrics);
  RECT border = area;
  border.top += metrics.tmHeight / 2;
  ::DrawEdge(dc, &border, EDGE_ETCHED, BF_RECT);
  SIZE extent{};
  ::GetTextExtentPoint32A(dc, caption.data(), static_cast<int>(caption.size()), &extent);
  RECT gap{6, 0, std::min<LONG>(area.right - 6, 6 + extent.cx + 4), metrics.tmHeight};
  ::FillRect(dc, &gap, BrushOf(ColorBehind(frame)));
  ::SetTextColor(dc, frame.Enabled() ? 0x000000 : ::GetSysColor(COLOR_GRAYTEXT));
  ::TextOutA(dc, 8, 0, caption.data(), static_cast<int>(caption.size()));
  ::SelectObject(dc, oldFont);
}

// --- events of the controls ---------------------------------------------------------------------

void SettingsWindow::Command(BoundWindow& sender, UINT code) {
  SettingsBound& bound = Of(sender);
  if (code == BN_CLICKED) {
    Clicked(bound);
  } else if (bound.kind == SettingsKind::Spin && code == EN_CHANGE) {
    SpinEdited(bound);
  }
}

bool SettingsWindow::ControlMessage(BoundWindow& sender, UINT message, WPARAM wParam,
                                    LRESULT& result) {
  if (message != WM_CTLCOLORSTATIC && message != WM_CTLCOLORBTN) return false;
  // An option button stands on its own back colour, the other buttons on what is behind them.
  const Control& control = *sender.control;
  const auto* option = dynamic_cast<const OptionButton*>(&control);
  const std::uint32_t color =
      option != nullptr ? option->BackColor() & 0xFFFFFFu : ColorBehind(control);
  ::SetBkColor(reinterpret_cast<HDC>(wParam), color);
  result = reinterpret_cast<LRESULT>(BrushOf(color));
  return true;
}

void SettingsWindow::Clicked(SettingsBound& bound) {
  // What the user ticked in the trees counts before any routine runs.
  PullAllChecks();
  if (bound.kind == SettingsKind::Check) {
    auto& check = static_cast<CheckBox&>(*bound.control);
    Run([&] { check.Value(static_cast<std::int16_t>(check.Value() == 1 ? 0 : 1)); });
  } else if (bound.kind == SettingsKind::Option) {
    auto& option = static_cast<OptionButton&>(*bound.control);
    Run([&] { option.Value(true); });
  } else if (bound.kind == SettingsKind::Command) {
    Run(bound.control->Click);
  }
}

void SettingsWindow::SpinEdited(SettingsBound& bound) {
  std::int32_t value = 0;
  // Text that is no number yet ("" or "-"), or a number out of bounds, waits for the user to
  // finish typing.
  if (!ReadSpinNumber(bound, value)) return;
  auto& spin = static_cast<ValueControl&>(*bound.control);
  const bool bounded = spin.Min != 0 || spin.Max != 0;
  if (bounded && (value < spin.Min || value > spin.Max)) return;
  if (value != spin.Value()) Run([&] { spin.Value(value); });
}

// --- tree views -------------------------------------------------------------------------------

void SettingsWindow::ApplyNodes(BoundWindow& record) {
  SettingsBound& bound = Of(record);
  auto& tree = static_cast<TreeView&>(*bound.control);
  const auto count = static_cast<std::size_t>(tree.Count());
  Applying applying(*this);
  if (count < bound.items.size()) ClearTree(bound);
  while (bound.items.size() < count) {
    const Node& node = tree.Item(static_cast<std::int32_t>(bound.items.size()) + 1);
    AddTreeItem(bound, node, TVITEMA{});
  }
  ApplyNodeStates(bound);
}

void SettingsWindow::ApplyNodeStates(BoundWindow& record) {
  SettingsBound& bound = Of(record);
  auto& tree = static_cast<TreeView&>(*bound.control);
  Applying applying(*this);
  const std::size_t count = NodesShown(bound, tree);
  for (std::size_t i = 0; i < count; ++i) {
    const Node& node = tree.Item(static_cast<std::int32_t>(i) + 1);
    std::string text = node.Text;
    TVITEMA change{};
    change.mask = TVIF_HANDLE | TVIF_TEXT | TVIF_STATE;
    change.hItem = bound.items[i];
    change.pszText = text.data();
    change.state = (node.Checked ? kTicked : kUnticked) | (node.Bold ? TVIS_BOLD : 0u);
    change.stateMask = TVIS_STATEIMAGEMASK | TVIS_BOLD;
    ::SendMessageA(bound.window, TVM_SETITEMA, 0, reinterpret_cast<LPARAM>(&change));
  }
  ShowSelectedNode(bound, tree.SelectedItem());
}

void SettingsWindow::PullChecks(SettingsBound& bound) {
  if (bound.window == nullptr) return;
  auto& tree = static_cast<TreeView&>(*bound.control);
  const std::size_t count = NodesShown(bound, tree);
  for (std::size_t i = 0; i < count; ++i) {
    const auto state = static_cast<UINT>(
        ::SendMessageA(bound.window, TVM_GETITEMSTATE, reinterpret_cast<WPARAM>(bound.items[i]),
                       TVIS_STATEIMAGEMASK));
    tree.Item(static_cast<std::int32_t>(i) + 1).Checked = (state & TVIS_STATEIMAGEMASK) == kTicked;
  }
}

void SettingsWindow::PullAllChecks() {
  for (const auto& record : Records()) {
    if (Of(*record).kind == SettingsKind::Tree) PullChecks(Of(*record));
  }
}

void SettingsWindow::TreeNotification(BoundWindow& record, const NMHDR& header,
                                      LPARAM lParam) {
  SettingsBound& bound = Of(record);
  auto& tree = static_cast<TreeView&>(*bound.control);
  const UINT pull = pullMessage_;
  switch (header.code) {
    case NM_CLICK: {
      const TVHITTESTINFO hit = HitTestTree(bound.window, MessagePointIn(bound.window));
      if ((hit.flags & TVHT_ONITEMSTATEICON) != 0) {
        // The tree view turns the tick over after this notification.
        if (pull != 0) ::PostMessageA(Handle(), pull, 0, 0);
        break;
      }
      SelectNodeHit(bound, hit);
      Run(tree.Click);
      break;
    }
    case TVN_KEYDOWN: {
      const auto& key = *reinterpret_cast<const NMTVKEYDOWN*>(lParam);
      if (key.wVKey == VK_SPACE && pull != 0) ::PostMessageA(Handle(), pull, 0, 0);
      break;
    }
    case TVN_SELCHANGEDA:
    case TVN_SELCHANGEDW:
      FollowTreeSelection(bound, lParam);
      break;
    default:
      break;
  }
}

// --- window procedures ------------------------------------------------------------------------

LRESULT SettingsWindow::TopMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == pullMessage_ && pullMessage_ != 0) {
    PullAllChecks();
    return 0;
  }
  switch (message) {
    case WM_ACTIVATE: {
      // The form is activated when it is first shown, and again when it takes over from
      // another form of the program (its owner).
      const HWND previous = reinterpret_cast<HWND>(lParam);
      const bool fromOwnForm = previous != nullptr && previous == owner_;
      if (LOWORD(wParam) != WA_INACTIVE && (!activated_ || fromOwnForm)) Activated();
      return ::DefWindowProcA(window, message, wParam, lParam);
    }
    case WM_CLOSE:
      // The title bar's close: nothing is saved.
      Run([this] { form_.Unload(); });
      return 0;
    case WM_DESTROY:
      form_.hWnd = 0;
      return 0;
    default:
      return ::DefWindowProcA(window, message, wParam, lParam);
  }
}

LRESULT SettingsWindow::PartMessage(BoundWindow& record, HWND window, UINT message,
                                    WPARAM wParam, LPARAM lParam) {
  SettingsBound& bound = Of(record);
  switch (message) {
    case WM_PAINT: {
      PAINTSTRUCT ps{};
      HDC dc = ::BeginPaint(window, &ps);
      Paint(bound, window, dc);
      ::EndPaint(window, &ps);
      return 0;
    }
    case WM_PRINTCLIENT:
      Paint(bound, window, reinterpret_cast<HDC>(wParam));
      return 0;
    case WM_LBUTTONUP:
      if (bound.kind == SettingsKind::Label || bound.kind == SettingsKind::Picture) {
        Run(bound.control->Click);
      }
      return 0;
    default:
      return ::DefWindowProcA(window, message, wParam, lParam);
  }
}

// --- the port -----------------------------------------------------------------------------------

void Win32ModalForms::InitCommonControls() { ::InitCommonControls(); }

void Win32ModalForms::ShowSettings(FrmSettings& form, std::uint32_t owner) {
  SettingsWindow window(form, ::GetModuleHandleA(nullptr));
  // A failure that reaches the top of one of the dialog's events: the user is told, a line goes
  // to the log in the data folder, and the dialog goes on.
  window.Failed = [](const std::exception& failure) {
    core::ReportError("FrmSettings", "event");
    platform::Use<platform::MessageBoxes>().MsgBox(
        failure.what(), platform::msgbox::kOkOnly | platform::msgbox::kExclamation);
  };
  window.ShowModal(platform::win32::ToNative<HWND>(owner));
}

}  // namespace quorvane::ui::win32
