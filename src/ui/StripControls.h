#pragma once
// Control kinds of the wallpaper page's thumbnail strip: a scroll bar, a progress bar, a file
// list box that lists a folder through a pattern, graphical option buttons, and arrays whose
// elements are made and unloaded while the program runs. Each is a control of the model like
// the others (Controls.h): headless it is the whole control, and a binding mirrors it.
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "base/Failure.h"
#include "ui/Controls.h"
#include "ui/Form.h"

namespace quorvane::ui {

// A vertical scroll bar: a value between Min and Max, moved a small step by the arrows and a
// large one by a click beside the thumb.
class ScrollBar : public Control {
 public:
  using Control::Control;
  std::int32_t Value() const { return value_; }
  // Sets the value, kept within Min and Max; Change runs when it changed.
  void Value(std::int32_t value);
  std::int32_t Min() const { return min_; }
  std::int32_t Max() const { return max_; }
  void Min(std::int32_t value);
  void Max(std::int32_t value);
  std::int32_t SmallChange = 1;
  std::int32_t LargeChange = 1;
  // Runs when the value changed (an arrow, the track, the thumb let go, or code).
  std::function<void()> Change;
  // Runs while the thumb is dragged, with the value at the thumb.
  std::function<void()> Scroll;
  // The thumb dragged to `value`: the value follows and Scroll runs, not Change.
  void Track(std::int32_t value);

 private:
  std::int32_t value_ = 0;
  std::int32_t min_ = 0;
  std::int32_t max_ = 32767;
};

// A progress bar from Min to Max.
class ProgressBar : public Control {
 public:
  using Control::Control;
  double Value() const { return value_; }
  // A value outside Min..Max is the invalid-property-value failure (380).
  void Value(double value);
  double Min() const { return min_; }
  double Max() const { return max_; }
  void Min(double value);
  void Max(double value);

 private:
  double value_ = 0;
  double min_ = 0;
  double max_ = 100;
};

// A file list box: the files of a folder whose names match its pattern, in alphabetical order
// (case-insensitive). The folder is listed when Path is set and on Refresh, through the lister
// that the form gives it (the model has no file system of its own).
class FileListBox : public Control {
 public:
  using Control::Control;
  // Every name in the folder (files only), in any order; false when it can't be listed.
  std::function<bool(const std::string& folder, std::vector<std::string>& names)> Lister;
  // Patterns separated by ";", with "*" and "?" as wildcards, matched without regard to case.
  std::string Pattern = "*.*";
  const std::string& Path() const { return path_; }
  // Sets the folder and lists it. A folder that can't be listed is the path-not-found failure
  // (76), and the list stays as it was.
  void Path(const std::string& folder);
  // Lists the folder again.
  void Refresh();
  std::int32_t ListCount() const { return static_cast<std::int32_t>(names_.size()); }
  // The name at `position` from 0; outside the list, an empty text.
  std::string List(std::int32_t position) const;

 private:
  void Fill(const std::string& folder);
  std::string path_;
  std::vector<std::string> names_;
};

// Whether `name` matches one of the patterns ("*.bmp;*.jpg"), without regard to case.
bool MatchesPattern(std::string_view name, std::string_view patterns);

// A graphical option button: a picture above its caption, drawn pressed in while it is the
// checked one of its group.
class GraphicalOptionButton : public OptionButton {
 public:
  using OptionButton::OptionButton;
};

// The width of a caption in the captions' type, in twips. The binding measures with the real
// font; headless the installed measure is used, and none measures 0.
using TextMeasure = std::function<std::int32_t(const std::string& text)>;
void InstallTextMeasure(TextMeasure measure);
std::int32_t CaptionTextWidth(const std::string& text);

// A control array of option buttons whose element 0 exists with the form and whose further
// elements are loaded and unloaded while the program runs, up to index 32767. The elements are
// one group: checking one clears the others. A loaded element copies element 0's container,
// place, size, enablement, caption, picture and back colour; it starts hidden and unchecked, and
// the form's Connect routine gives it its handlers.
template <class T>
class LoadedOptionArray {
 public:
  LoadedOptionArray(Form& owner, std::string name) : owner_(owner), name_(std::move(name)) {
    elements_.push_back(std::make_unique<T>(owner_, name_, 0));
    Regroup();
  }
  T& operator[](std::size_t index) {
    if (index >= elements_.size()) RaiseSubscriptOutOfRange();
    return *elements_[index];
  }
  std::size_t size() const { return elements_.size(); }
  std::int32_t UBound() const { return static_cast<std::int32_t>(elements_.size()) - 1; }

  // Gives an element its handlers; run for element 0 when set, and for every element loaded.
  void OnConnect(std::function<void(T& element, std::int16_t index)> connect) {
    connect_ = std::move(connect);
    for (std::size_t i = 0; i < elements_.size(); ++i) {
      connect_(*elements_[i], static_cast<std::int16_t>(i));
    }
  }

  // Loads element `index`, the next one after the last. An index past 32767 is the overflow
  // failure; one that exists, or leaves a gap, the invalid-procedure-call failure.
  T& Load(std::int32_t index) {
    if (index > 32767 || index < 0) RaiseOverflow();
    if (index != static_cast<std::int32_t>(elements_.size())) RaiseInvalidProcedureCall();
    const T& first = *elements_[0];
    auto element = std::make_unique<T>(owner_, name_, index);
    element->Container = first.Container;
    element->Visible(false);
    element->Left(first.Left());
    element->Top(first.Top());
    element->Width(first.Width());
    element->Height(first.Height());
    element->Enabled(first.Enabled());
    element->Caption(first.Caption());
    element->Picture(first.Picture());
    element->BackColor(first.BackColor());
    T& made = *element;
    elements_.push_back(std::move(element));
    Regroup();
    if (connect_) connect_(made, static_cast<std::int16_t>(index));
    owner_.ControlLoaded(made);
    return made;
  }

  // Unloads the last element; element 0 can't be unloaded (invalid procedure call).
  void UnloadLast() {
    if (elements_.size() <= 1) RaiseInvalidProcedureCall();
    std::unique_ptr<T> last = std::move(elements_.back());
    elements_.pop_back();
    Regroup();
    // The control leaves the form, and the binding lets its window go, as it is destroyed.
    last.reset();
  }

 private:
  void Regroup() {
    std::vector<OptionButton*> group;
    for (auto& element : elements_) group.push_back(element.get());
    OptionButton::Group(group);
  }

  Form& owner_;
  std::string name_;
  std::vector<std::unique_ptr<T>> elements_;
  std::function<void(T&, std::int16_t)> connect_;
};

}  // namespace quorvane::ui
