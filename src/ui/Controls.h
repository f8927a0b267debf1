#pragma once
// The retained control model the forms are written against. Each control holds exactly the
// properties the system reads and sets; headless, the model is the whole control, and tests click
// it and read it. A binding (the Windows one in src/ui/win32) watches a control through its
// observer and mirrors every change onto a real window, and turns the window's events into the
// control's handlers.
//
// Positions and sizes are in twips, 15 to the pixel. Image numbers count from 1.
#include <array>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "base/Pixels.h"

namespace quorvane::ui {

inline constexpr std::int32_t kTwipsPerPixel = 15;

// The model shows pictures as the platform decodes them.
using quorvane::Pixels;

// What a binding is told when a property of its control changes.
enum class Property {
  Visible, Enabled, Tag, Position, Caption, Picture, Image, Value, Nodes, NodeState, Images,
  // Asked of the control's window: to stand in front of the others of its container, to take
  // the keyboard focus (SetFocus).
  ZOrder, Focus,
};

class Control;
class Form;

class ControlObserver {
 public:
  virtual ~ControlObserver() = default;
  virtual void Changed(Control& control, Property property) = 0;
};

// A value held in a Tag: nothing, a number or a text.
using TagValue = std::variant<std::monostate, std::int32_t, std::string>;

class Control {
 public:
  // `index` is the element's index in a control array, -1 for a control that is none. A control
  // made without a form stands alone (tests of one control); one made with its form is among
  // the form's controls from then on, until it goes.
  explicit Control(std::string name, std::int32_t index = -1);
  Control(Form& owner, std::string name, std::int32_t index = -1);
  virtual ~Control();
  Control(const Control&) = delete;
  Control& operator=(const Control&) = delete;

  // The system's name of the control ("TvDesktop"), and of an element its index.
  const std::string& Name() const { return name_; }
  std::int32_t Index() const { return index_; }
  // The form the control belongs to; null for a control that stands alone.
  Form* Owner() const { return owner_; }

  bool Visible() const { return visible_; }
  void Visible(bool value);
  bool Enabled() const { return enabled_; }
  void Enabled(bool value);
  const std::string& Tag() const { return tag_; }
  void Tag(const std::string& value);
  // Gives the control the keyboard focus: it becomes its form's ActiveControl, and the binding
  // moves the real focus to its window.
  void SetFocus();

  std::int32_t Left() const { return left_; }
  std::int32_t Top() const { return top_; }
  std::int32_t Width() const { return width_; }
  std::int32_t Height() const { return height_; }
  void Left(std::int32_t value);
  void Top(std::int32_t value);
  void Width(std::int32_t value);
  void Height(std::int32_t value);

  // Puts the control in front of the other controls of its container.
  void ZOrder();

  // Handlers: the form's routines, connected by the form.
  std::function<void()> Click;
  std::function<void()> DblClick;
  std::function<void(std::int16_t button, std::int16_t shift, float x, float y)> MouseMove;
  std::function<void(std::int16_t button, std::int16_t shift, float x, float y)> MouseDown;

  void Observe(ControlObserver* observer) { observer_ = observer; }

  // The control this one stands in (a picture box used as a page), or none for the form's own
  // surface. Positions are relative to it.
  Control* Container = nullptr;
  // The tip shown while the pointer rests on the control; empty for none.
  std::string ToolTipText;
  // The real window of the control, once a binding made one; 0 headless.
  std::uint32_t hWnd = 0;

 protected:
  void Notify(Property property);

 private:
  std::string name_;
  std::int32_t index_;
  Form* owner_ = nullptr;
  bool visible_ = true;
  bool enabled_ = true;
  std::string tag_;
  std::int32_t left_ = 0, top_ = 0, width_ = 0, height_ = 0;
  ControlObserver* observer_ = nullptr;
};

// A control that shows a caption: a label, a check box, an option button, a command button, a
// frame.
class CaptionedControl : public Control {
 public:
  using Control::Control;
  const std::string& Caption() const { return caption_; }
  void Caption(const std::string& value);

 private:
  std::string caption_;
};

class Label : public CaptionedControl {
 public:
  using CaptionedControl::CaptionedControl;
  // The text's colour (0xBBGGRR) and underline, the two marks of a highlighted label.
  std::uint32_t ForeColor() const { return foreColor_; }
  void ForeColor(std::uint32_t value);
  bool FontUnderline() const { return underline_; }
  void FontUnderline(bool value);
  // The design's type: every caption is "Verdana", 8 points unless the design says more.
  std::int16_t FontSize() const { return fontSize_; }
  void FontSize(std::int16_t points);
  bool FontBold() const { return bold_; }
  void FontBold(bool value);

 private:
  std::uint32_t foreColor_ = 0;
  bool underline_ = false;
  std::int16_t fontSize_ = 8;
  bool bold_ = false;
};

// A periodic timer of a form: while Enabled, Tick runs every Interval milliseconds. It has no
// window of its own; the form's binding runs it, from the form's window on, and starts it anew
// at each setting of Enabled with the Interval it has then: a new interval is set before
// Enabled.
class Timer : public Control {
 public:
  using Control::Control;
  std::int32_t Interval = 0;
  std::function<void()> Tick;
};

class CheckBox : public CaptionedControl {
 public:
  using CaptionedControl::CaptionedControl;
  // 0 unticked, 1 ticked; setting a new value runs Click, as the platform's check box does.
  std::int16_t Value() const { return value_; }
  void Value(std::int16_t value);

 private:
  std::int16_t value_ = 0;
};

// An option button. Buttons of one group (those of one frame) clear each other: setting one to
// true sets the others to false, and then runs its Click, as the platform's option buttons do.
class OptionButton : public CaptionedControl {
 public:
  using CaptionedControl::CaptionedControl;
  bool Value() const { return value_; }
  void Value(bool value);
  // The colour behind the caption, 0xBBGGRR.
  std::uint32_t BackColor() const { return backColor_; }
  void BackColor(std::uint32_t value);
  // A graphical button shows a picture above its caption; empty for a plain one.
  const Pixels& Picture() const { return picture_; }
  void Picture(Pixels value);
  // Makes the buttons one group; each button belongs to one group at most.
  static void Group(std::initializer_list<OptionButton*> buttons);
  static void Group(const std::vector<OptionButton*>& buttons);

 private:
  bool value_ = false;
  std::uint32_t backColor_ = 0xF0F0F0;
  Pixels picture_;
  std::vector<OptionButton*> group_;
};

// A drop-down list to choose one entry from. Entries count from 0; ListIndex is the chosen
// one, -1 for none.
class ComboBox : public Control {
 public:
  using Control::Control;
  void AddItem(const std::string& item);
  void Clear();
  std::int32_t ListCount() const { return static_cast<std::int32_t>(items_.size()); }
  // Entry `index`; an index outside the list is a failure.
  const std::string& List(std::int32_t index) const;
  std::int32_t ListIndex() const { return listIndex_; }
  // Chooses an entry, -1 for none; an index outside the list is a failure. Choosing another
  // entry than the chosen one runs Click, as the platform's list does when the user chooses.
  void ListIndex(std::int32_t index);

 private:
  std::vector<std::string> items_;
  std::int32_t listIndex_ = -1;
};

// A push button with a caption; Click runs when it is pressed.
class CommandButton : public CaptionedControl {
 public:
  using CaptionedControl::CaptionedControl;
};

// A frame: a border with a caption round the controls that stand in it (their Container).
class Frame : public CaptionedControl {
 public:
  using CaptionedControl::CaptionedControl;
};

// A slider, or a spin edit: a number between bounds.
class ValueControl : public Control {
 public:
  using Control::Control;
  std::int32_t Value() const { return value_; }
  void Value(std::int32_t value);
  std::int32_t Min = 0;
  std::int32_t Max = 10;
  // Runs when the value changes.
  std::function<void()> Change;

 private:
  std::int32_t value_ = 0;
};

class ImageList {
 public:
  explicit ImageList(std::string name) : name_(std::move(name)) {}
  const std::string& Name() const { return name_; }

  struct ListImage {
    std::string key;
    Pixels picture;
  };

  // Adds an image at the end and gives its number. The first image sets the size of all when
  // the list has none yet; a later image of another size is fitted to it.
  std::int16_t Add(const std::string& key, const Pixels& picture);
  std::int16_t Count() const { return static_cast<std::int16_t>(images_.size()); }
  // Image `number`, from 1; a number outside the list is a failure.
  const ListImage& Item(std::int32_t number) const;
  void Clear();

  std::int32_t ImageWidth = 0;
  std::int32_t ImageHeight = 0;

  void Observe(std::function<void()> changed) { changed_ = std::move(changed); }

 private:
  std::string name_;
  std::vector<ListImage> images_;
  std::function<void()> changed_;
};

class TreeView;

// A node of a tree view. Nodes are reached by position from 1, in the order they were added.
struct Node {
  std::string Text;
  std::string Key;
  std::int16_t Image = 0;
  std::int16_t SelectedImage = 0;
  TagValue Tag;
  bool Bold = false;
  bool Checked = false;  // the tick box of a tree with tick boxes
  bool Expanded = false;
  std::int32_t Parent = 0;  // position of the parent node, 0 at top level
  // The node's children show in the order of their texts, not in the order they were added.
  bool Sorted = false;
};

class TreeView : public Control {
 public:
  using Control::Control;

  // Adds a node at top level (or under `parent`, a position from 1) and gives its position.
  std::int32_t Add(const std::string& text, std::int16_t image, std::int16_t selectedImage,
                   const std::string& key = std::string(), std::int32_t parent = 0);
  std::int32_t Count() const { return static_cast<std::int32_t>(nodes_.size()); }
  // Node `position`, from 1; a position outside the tree is a failure.
  Node& Item(std::int32_t position);
  const Node& Item(std::int32_t position) const;
  void Clear();

  // The selected node's position, 0 when none is.
  std::int32_t SelectedItem() const { return selected_; }
  // Selects a node (and no other), or none with 0. Selecting from code runs no handler.
  void Select(std::int32_t position);
  // Tells the binding that a node's text, image, bold mark or tag changed.
  void NodeChanged(std::int32_t position);

  // Removes node `position` and the nodes below it; the later nodes move up to fill the gap.
  void Remove(std::int32_t position);
  // The positions, as they were, of the nodes the last Remove took away, in order; empty after
  // Clear.
  const std::vector<std::int32_t>& Removed() const { return removed_; }
  // The children of node `position` (0: the top level) in the order shown: by text, without
  // regard to case, under a Sorted node, else as they were added.
  std::vector<std::int32_t> Children(std::int32_t position) const;
  // The first child shown of node `position`; 0 when it has none.
  std::int32_t FirstChild(std::int32_t position) const;
  // The texts from the top-level node down to node `position`, joined by a backslash.
  std::string FullPath(std::int32_t position) const;

  // Runs when the user opens a node, before its children show, with the node's position.
  std::function<void(std::int32_t position)> Expand;

  // The image list the nodes' image numbers refer to.
  ImageList* Images = nullptr;
  // A tree with tick boxes: each node shows its Checked.
  bool Checkboxes = false;

 private:
  std::vector<Node> nodes_;
  std::int32_t selected_ = 0;
  std::vector<std::int32_t> removed_;
};

class PictureBox;

// The drawing surface behind a picture box: the binding (or, headless, a plain memory surface)
// gives it. Kept apart so that the model needs no platform.
class Surface {
 public:
  virtual ~Surface() = default;
  // A device context that drawing calls may use, of the box's size; 0 when none can be had.
  virtual std::uint32_t hDC(PictureBox& box) = 0;
  // Fills the persistent image with the back colour.
  virtual void Cls(PictureBox& box) = 0;
  // The persistent image as it is now.
  virtual Pixels Image(PictureBox& box) = 0;
};

class PictureBox : public Control {
 public:
  explicit PictureBox(std::string name, std::int32_t index = -1);
  PictureBox(Form& owner, std::string name, std::int32_t index = -1);

  // The picture shown, as pixels; empty for none.
  const Pixels& Picture() const { return picture_; }
  void Picture(const Pixels& value);
  // Takes a picture over without copying it (a wallpaper's is tens of megabytes).
  void Picture(Pixels&& value);
  // Hands the picture over, memory and all, and shows none.
  Pixels TakePicture();

  // Persistent drawing: what is drawn on the box's context stays in its image.
  bool AutoRedraw() const { return autoRedraw_; }
  void AutoRedraw(bool value) { autoRedraw_ = value; }
  std::uint32_t BackColor = 0xFFFFFF;  // 0xBBGGRR
  std::int32_t ScaleWidth = 0;
  std::int32_t ScaleHeight = 0;

  std::uint32_t hDC();
  void Cls();
  Pixels Image();
  void Refresh();

  // The surface the box draws on; the form's binding sets it, tests may set their own.
  void UseSurface(std::shared_ptr<Surface> surface) { surface_ = std::move(surface); }

  // Runs when the box's window is drawn anew; what it draws on hDC() is what then shows.
  std::function<void()> Paint;

 private:
  Pixels picture_;
  bool autoRedraw_ = false;
  std::shared_ptr<Surface> surface_;
};

// An image: a picture that stands over whatever is behind it, which shows through the
// picture's transparent parts. Stretched, the picture fills the image's bounds; otherwise it
// stands at the top left at its own size.
class Image : public PictureBox {
 public:
  using PictureBox::PictureBox;
  bool Stretch() const { return stretch_; }
  void Stretch(bool value);

 private:
  bool stretch_ = false;
};

// The control of that name and index (-1 for a control that is no element) among a form's
// controls; null if there is none.
Control* FindControl(const std::vector<Control*>& controls, const std::string& name,
                     std::int32_t index);

// The system name of a control as drivers from outside know it: "TvDesktop" for a control,
// "CmdMenu(2)" for an element of a control array.
std::string SystemNameOf(const Control& control);
// Splits a system name into the control's name and the element's index, -1 for a control that
// is no element. False for a text that is not a system name.
bool ParseSystemName(std::string_view text, std::string& name, std::int32_t& index);

// A control array: elements of one name, counted from 0.
template <class T, std::size_t N>
class ControlArray {
 public:
  explicit ControlArray(const std::string& name) {
    for (std::size_t i = 0; i < N; ++i) {
      elements_[i] = std::make_unique<T>(name, static_cast<std::int32_t>(i));
    }
  }
  // The elements belong to `owner`, in the order of their indexes.
  ControlArray(Form& owner, const std::string& name) {
    for (std::size_t i = 0; i < N; ++i) {
      elements_[i] = std::make_unique<T>(owner, name, static_cast<std::int32_t>(i));
    }
  }
  T& operator[](std::size_t index) { return *elements_.at(index); }
  const T& operator[](std::size_t index) const { return *elements_.at(index); }
  static constexpr std::size_t size() { return N; }

 private:
  std::array<std::unique_ptr<T>, N> elements_;
};

}  // namespace quorvane::ui
