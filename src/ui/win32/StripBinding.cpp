// The binding's part for the thumbnail strip's kinds of control: the scroll bar, the progress
// bar and graphical option buttons, the windows of elements loaded and unloaded while the
// program runs, and the captions' widths measured for the model.
#include <windows.h>
#include <commctrl.h>

#include <algorithm>
#include <memory>

#include "ui/win32/FormWindow.h"
#include "ui/win32/PixelDrawing.h"

namespace quorvane::ui::win32 {

namespace {

// A checked graphical option button stands pressed in on a light blue.
constexpr COLORREF kCheckedFace = RGB(0xDD, 0xEB, 0xF7);

}  // namespace

void FormWindow::InstallCaptionMeasure() {
  InstallTextMeasure([](const std::string& text) -> std::int32_t {
    // The captions' face, made once for the life of the process.
    static const HFONT font = MakeVerdana(8, false, false);
    HDC dc = ::GetDC(nullptr);
    if (dc == nullptr) return 0;
    HGDIOBJ previous = ::SelectObject(dc, font);
    SIZE extent{};
    ::GetTextExtentPoint32A(dc, text.data(), static_cast<int>(text.size()), &extent);
    ::SelectObject(dc, previous);
    ::ReleaseDC(nullptr, dc);
    return static_cast<std::int32_t>(extent.cx) * kTwipsPerPixel;
  });
}

void FormWindow::MakeStripWindow(BoundControl& bound) {
  if (bound.kind == Kind::Scroll) {
    MakeChild(bound, {.className = "SCROLLBAR", .style = SBS_VERT});
  } else {
    MakeChild(bound, {.className = PROGRESS_CLASSA, .style = PBS_SMOOTH});
  }
}

void FormWindow::ApplyStripValue(BoundControl& bound) {
  switch (bound.kind) {
    case Kind::Scroll: {
      const auto& bar = static_cast<ScrollBar&>(*bound.control);
      SCROLLINFO info{};
      info.cbSize = sizeof info;
      info.fMask = SIF_RANGE | SIF_POS | SIF_PAGE | SIF_DISABLENOSCROLL;
      info.nMin = std::min(bar.Min(), bar.Max());
      info.nMax = std::max(bar.Min(), bar.Max());
      info.nPage = 0;
      info.nPos = bar.Value();
      ::SetScrollInfo(bound.window, SB_CTL, &info, TRUE);
      break;
    }
    case Kind::Progress: {
      const auto& bar = static_cast<ProgressBar&>(*bound.control);
      ::SendMessageA(bound.window, PBM_SETRANGE32, static_cast<WPARAM>(bar.Min()),
                     static_cast<LPARAM>(bar.Max()));
      ::SendMessageA(bound.window, PBM_SETPOS, static_cast<WPARAM>(bar.Value()), 0);
      break;
    }
    case Kind::PictureOption:
      Repaint(bound);
      break;
    default:
      break;
  }
}

void FormWindow::Scrolled(BoundControl& bound, WPARAM wParam) {
  auto& bar = static_cast<ScrollBar&>(*bound.control);
  SCROLLINFO info{};
  info.cbSize = sizeof info;
  info.fMask = SIF_ALL;
  ::GetScrollInfo(bound.window, SB_CTL, &info);
  std::int32_t value = bar.Value();
  switch (LOWORD(wParam)) {
    case SB_LINEUP: value -= bar.SmallChange; break;
    case SB_LINEDOWN: value += bar.SmallChange; break;
    case SB_PAGEUP: value -= bar.LargeChange; break;
    case SB_PAGEDOWN: value += bar.LargeChange; break;
    case SB_TOP: value = bar.Min(); break;
    case SB_BOTTOM: value = bar.Max(); break;
    case SB_THUMBTRACK: {
      // The thumb follows the pointer, and the sheet with it.
      const std::int32_t at = info.nTrackPos;
      Run([&] { bar.Track(at); });
      Applying applying(*this);
      ::SetScrollPos(bound.window, SB_CTL, at, TRUE);
      return;
    }
    case SB_THUMBPOSITION: value = info.nTrackPos; break;
    default: return;
  }
  value = std::clamp(value, std::min(bar.Min(), bar.Max()), std::max(bar.Min(), bar.Max()));
  Run([&] { bar.Value(value); });
}

void FormWindow::PaintPictureOption(BoundControl& bound, HDC dc) {
  const auto& option = static_cast<const OptionButton&>(*bound.control);
  RECT area{};
  ::GetClientRect(bound.window, &area);
  const bool checked = option.Value();
  const std::uint32_t back = checked ? kCheckedFace : (option.BackColor() & 0xFFFFFFu);
  ::FillRect(dc, &area, BrushOf(back));
  const Pixels& picture = option.Picture();
  const int shift = checked ? 1 : 0;
  const int top = 6;
  if (!picture.Empty()) {
    const int left = (area.right - picture.width) / 2;
    DrawPixels(dc, picture, left + shift, top + shift, back);
  }
  HGDIOBJ oldFont = ::SelectObject(dc, CaptionFont());
  ::SetBkMode(dc, TRANSPARENT);
  ::SetTextColor(dc, option.Enabled() ? RGB(0x20, 0x20, 0x20) : ::GetSysColor(COLOR_GRAYTEXT));
  // The caption was shortened to the button's width less a pixel: it has the whole width.
  RECT text{area.left + shift, top + 64 + 5 + shift, area.right + shift, area.bottom - 2 + shift};
  std::string caption = option.Caption();
  ::DrawTextA(dc, caption.data(), static_cast<int>(caption.size()), &text,
              DT_CENTER | DT_TOP | DT_SINGLELINE | DT_NOPREFIX);
  ::SelectObject(dc, oldFont);
  ::DrawEdge(dc, &area, checked ? EDGE_SUNKEN : BDR_RAISEDINNER, BF_RECT);
}

void FormWindow::ControlLoaded(Form& /*form*/, Control& control) {
  if (window_ == nullptr || RecordOf(control) != nullptr) return;
  Bind(control);
  control.Observe(this);
}

void FormWindow::ControlGoing(Form& /*form*/, Control& control) {
  // The control is being destroyed: only what the record knows of it is used.
  const auto found = byControl_.find(&control);
  if (found == byControl_.end()) return;
  BoundControl* bound = found->second;
  if (bound->window != nullptr) ::DestroyWindow(bound->window);
  byControl_.erase(found);
  for (auto it = byWindow_.begin(); it != byWindow_.end();) {
    it = it->second == bound ? byWindow_.erase(it) : std::next(it);
  }
  pendingStates_.erase(std::remove(pendingStates_.begin(), pendingStates_.end(), bound),
                       pendingStates_.end());
  records_.erase(std::remove_if(records_.begin(), records_.end(),
                                [&](const auto& record) { return record.get() == bound; }),
                 records_.end());
}

}  // namespace quorvane::ui::win32
