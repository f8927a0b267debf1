#include "ui/Layout.h"

#include <string>

#include "base/Failure.h"
#include "ui/Controls.h"

namespace quorvane::ui {

namespace {

[[noreturn]] void Disagree(const Form& form, const std::string& what) {
  Raise(FailureNumber::InvalidProcedureCall, form.Name() + "'s layout: " + what);
}

Control& ControlNamed(const Form& form, const char* systemName) {
  std::string name;
  std::int32_t index = -1;
  if (systemName == nullptr || !ParseSystemName(systemName, name, index)) {
    Disagree(form, std::string("\"") + (systemName != nullptr ? systemName : "") +
                       "\" is no system name");
  }
  Control* control = form.FindControl(name, index);
  if (control == nullptr) Disagree(form, std::string("no control ") + systemName);
  return *control;
}

void Apply(Form& form, const ControlLayout& row) {
  Control& control = ControlNamed(form, row.name);
  control.Container = row.container != nullptr ? &ControlNamed(form, row.container) : nullptr;
  control.Left(row.left);
  control.Top(row.top);
  control.Width(row.width);
  control.Height(row.height);
  if (!row.visible) control.Visible(false);
  if (row.caption != nullptr) {
    auto* captioned = dynamic_cast<CaptionedControl*>(&control);
    if (captioned == nullptr) Disagree(form, std::string(row.name) + " shows no caption");
    captioned->Caption(row.caption);
  }
  if (row.fontSize != 0 || row.fontBold || row.foreColor >= 0) {
    auto* label = dynamic_cast<Label*>(&control);
    if (label == nullptr) Disagree(form, std::string(row.name) + " is no label");
    if (row.fontSize != 0) label->FontSize(row.fontSize);
    if (row.fontBold) label->FontBold(true);
    if (row.foreColor >= 0) label->ForeColor(static_cast<std::uint32_t>(row.foreColor));
  }
  if (row.backColor >= 0) {
    const auto color = static_cast<std::uint32_t>(row.backColor);
    if (auto* box = dynamic_cast<PictureBox*>(&control)) {
      box->BackColor = color;
    } else if (auto* option = dynamic_cast<OptionButton*>(&control)) {
      option->BackColor(color);
    } else {
      Disagree(form, std::string(row.name) + " has no back colour");
    }
  }
}

}  // namespace

void ApplyLayout(Form& form, const FormLayout& layout) {
  form.Caption = layout.caption;
  form.Width = layout.width;
  form.Height = layout.height;
  form.Border = layout.border;
  form.BackColor = layout.backColor;
  form.WindowState = layout.windowState;
  for (const ControlLayout& row : layout.controls) Apply(form, row);
}

}  // namespace quorvane::ui
