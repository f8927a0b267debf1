#pragma once
// A form's design as data: the form's caption, size and border, and for each control where it
// stands, its size, caption, type and first visibility. A form keeps its table beside it (the
// form's name + "Layout.cpp") and applies it once, when it is made; the routines behind the
// controls' events are connected by the form itself.
//
// A table reads as a dialog template: one row a control, by its system name ("Label4", or
// "CmdMenu(2)" for an element of a control array), in the control it stands in (its system name;
// none for the form's own surface), at left, top, width and height in twips.
#include <cstdint>
#include <span>

#include "ui/Form.h"

namespace quorvane::ui {

struct ControlLayout {
  const char* name = "";
  const char* container = nullptr;  // null: the form's own surface
  std::int32_t left = 0;
  std::int32_t top = 0;
  std::int32_t width = 0;
  std::int32_t height = 0;
  const char* caption = nullptr;  // null: none; only for a control that shows a caption
  bool visible = true;
  // A label's type: 0 leaves the design's 8 points.
  std::int16_t fontSize = 0;
  bool fontBold = false;
  // Colours, 0xBBGGRR; -1 leaves the control's own. The fore colour is a label's; the back
  // colour a picture box's or an option button's.
  std::int32_t foreColor = -1;
  std::int32_t backColor = -1;
};

struct FormLayout {
  const char* caption = "";
  std::int32_t width = 0;  // the inside of the window, in twips
  std::int32_t height = 0;
  BorderStyle border = BorderStyle::None;
  std::span<const ControlLayout> controls = {};
  // The form's surface (kButtonFace or 0xBBGGRR), and how its window stands on the screen.
  std::uint32_t backColor = kButtonFace;
  std::int16_t windowState = kNormalWindow;
};

// Gives the form and every control of the table what the table says. A row that names no
// control of the form, a container that is none of its controls, or a caption or colour for a
// control that has none is a failure: the table and the form disagree.
void ApplyLayout(Form& form, const FormLayout& layout);

}  // namespace quorvane::ui
