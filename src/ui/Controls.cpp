#include "ui/Controls.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <utility>

#include "base/Failure.h"
#include "ui/Form.h"

namespace quorvane::ui {

Control::Control(std::string name, std::int32_t index) : name_(std::move(name)), index_(index) {}

Control::Control(Form& owner, std::string name, std::int32_t index)
    : name_(std::move(name)), index_(index), owner_(&owner) {
  owner.Register(*this);
}

Control::~Control() {
  if (owner_ != nullptr) owner_->Forget(*this);
}

void Control::Notify(Property property) {
  if (observer_ != nullptr) observer_->Changed(*this, property);
}

void Control::Visible(bool value) {
  visible_ = value;
  Notify(Property::Visible);
}

void Control::Enabled(bool value) {
  enabled_ = value;
  Notify(Property::Enabled);
}

void Control::Tag(const std::string& value) {
  tag_ = value;
  Notify(Property::Tag);
}

void Control::SetFocus() {
  if (owner_ != nullptr) owner_->activeControl_ = this;
  Notify(Property::Focus);
}

void Control::Left(std::int32_t value) {
  left_ = value;
  Notify(Property::Position);
}

void Control::Top(std::int32_t value) {
  top_ = value;
  Notify(Property::Position);
}

void Control::Width(std::int32_t value) {
  width_ = value;
  Notify(Property::Position);
}

void Control::Height(std::int32_t value) {
  height_ = value;
  Notify(Property::Position);
}

void Control::ZOrder() { Notify(Property::ZOrder); }

void CaptionedControl::Caption(const std::string& value) {
  caption_ = value;
  Notify(Property::Caption);
}

void Label::ForeColor(std::uint32_t value) {
  foreColor_ = value;
  Notify(Property::Caption);
}

void Label::FontUnderline(bool value) {
  underline_ = value;
  Notify(Property::Caption);
}

void Label::FontSize(std::int16_t points) {
  fontSize_ = points;
  Notify(Property::Caption);
}

void Label::FontBold(bool value) {
  bold_ = value;
  Notify(Property::Caption);
}

void CheckBox::Value(std::int16_t value) {
  const bool changed = value != value_;
  value_ = value;
  Notify(Property::Value);
  if (changed && Click) Click();
}

void OptionButton::Value(bool value) {
  const bool changed = value != value_;
  value_ = value;
  if (value) {
    for (OptionButton* other : group_) {
      if (other != this && other->value_) {
        other->value_ = false;
        other->Notify(Property::Value);
      }
    }
  }
  Notify(Property::Value);
  if (changed && value && Click) Click();
}

void OptionButton::BackColor(std::uint32_t value) {
  backColor_ = value;
  Notify(Property::Caption);
}

void OptionButton::Picture(Pixels value) {
  picture_ = std::move(value);
  Notify(Property::Picture);
}

void OptionButton::Group(std::initializer_list<OptionButton*> buttons) {
  for (OptionButton* button : buttons) button->group_.assign(buttons.begin(), buttons.end());
}

void ComboBox::AddItem(const std::string& item) {
  items_.push_back(item);
  Notify(Property::Value);
}

void ComboBox::Clear() {
  items_.clear();
  listIndex_ = -1;
  Notify(Property::Value);
}

const std::string& ComboBox::List(std::int32_t index) const {
  if (index < 0 || index >= ListCount()) RaiseInvalidProcedureCall();
  return items_[static_cast<std::size_t>(index)];
}

void ComboBox::ListIndex(std::int32_t index) {
  if (index < -1 || index >= ListCount()) RaiseInvalidProcedureCall();
  const bool changed = index != listIndex_;
  listIndex_ = index;
  Notify(Property::Value);
  if (changed && Click) Click();
}

void OptionButton::Group(const std::vector<OptionButton*>& buttons) {
  for (OptionButton* button : buttons) button->group_ = buttons;
}

void ValueControl::Value(std::int32_t value) {
  const bool changed = value != value_;
  value_ = value;
  Notify(Property::Value);
  if (changed && Change) Change();
}

std::int16_t ImageList::Add(const std::string& key, const Pixels& picture) {
  if (images_.size() >= 32767) RaiseOverflow();
  if (images_.empty() && ImageWidth == 0 && ImageHeight == 0) {
    ImageWidth = picture.width;
    ImageHeight = picture.height;
  }
  images_.push_back({key, picture});
  if (changed_) changed_();
  return Count();
}

const ImageList::ListImage& ImageList::Item(std::int32_t number) const {
  if (number < 1 || number > static_cast<std::int32_t>(images_.size())) {
    Raise(FailureNumber::InvalidProcedureCall, "Index out of bounds");
  }
  return images_[static_cast<std::size_t>(number - 1)];
}

void ImageList::Clear() {
  images_.clear();
  if (changed_) changed_();
}

std::int32_t TreeView::Add(const std::string& text, std::int16_t image,
                           std::int16_t selectedImage, const std::string& key,
                           std::int32_t parent) {
  if (parent < 0 || parent > Count()) {
    Raise(FailureNumber::InvalidProcedureCall, "Element not found");
  }
  if (!key.empty()) {
    for (const Node& n : nodes_) {
      if (n.Key == key) Raise(FailureNumber::InvalidProcedureCall, "Key is not unique in collection");
    }
  }
  Node node;
  node.Text = text;
  node.Key = key;
  node.Image = image;
  node.SelectedImage = selectedImage;
  node.Parent = parent;
  nodes_.push_back(std::move(node));
  Notify(Property::Nodes);
  return Count();
}

Node& TreeView::Item(std::int32_t position) {
  if (position < 1 || position > Count()) {
    Raise(FailureNumber::InvalidProcedureCall, "Index out of bounds");
  }
  return nodes_[static_cast<std::size_t>(position - 1)];
}

const Node& TreeView::Item(std::int32_t position) const {
  return const_cast<TreeView*>(this)->Item(position);
}

void TreeView::Clear() {
  nodes_.clear();
  selected_ = 0;
  removed_.clear();
  Notify(Property::Nodes);
}

void TreeView::Select(std::int32_t position) {
  if (position != 0) Item(position);  // a position outside the tree is a failure
  selected_ = position;
  Notify(Property::NodeState);
}

void TreeView::NodeChanged(std::int32_t position) {
  Item(position);
  Notify(Property::NodeState);
}

void TreeView::Remove(std::int32_t position) {
  Item(position);  // a position outside the tree is a failure
  // A node goes when it is the one removed or its parent goes; parents come before children.
  std::vector<std::int32_t> newPosition(nodes_.size() + 1, 0);
  std::vector<bool> gone(nodes_.size() + 1, false);
  std::vector<Node> kept;
  kept.reserve(nodes_.size());
  removed_.clear();
  for (std::int32_t p = 1; p <= Count(); ++p) {
    Node& node = nodes_[static_cast<std::size_t>(p - 1)];
    if (p == position || (node.Parent > 0 && gone[static_cast<std::size_t>(node.Parent)])) {
      gone[static_cast<std::size_t>(p)] = true;
      removed_.push_back(p);
      continue;
    }
    node.Parent = node.Parent > 0 ? newPosition[static_cast<std::size_t>(node.Parent)] : 0;
    kept.push_back(std::move(node));
    newPosition[static_cast<std::size_t>(p)] = static_cast<std::int32_t>(kept.size());
  }
  nodes_ = std::move(kept);
  selected_ = selected_ > 0 ? newPosition[static_cast<std::size_t>(selected_)] : 0;
  Notify(Property::Nodes);
}

std::vector<std::int32_t> TreeView::Children(std::int32_t position) const {
  if (position != 0) Item(position);
  std::vector<std::int32_t> children;
  for (std::int32_t p = 1; p <= Count(); ++p) {
    if (nodes_[static_cast<std::size_t>(p - 1)].Parent == position) children.push_back(p);
  }
  if (position != 0 && Item(position).Sorted) {
    std::stable_sort(children.begin(), children.end(), [this](std::int32_t a, std::int32_t b) {
      const std::string& x = nodes_[static_cast<std::size_t>(a - 1)].Text;
      const std::string& y = nodes_[static_cast<std::size_t>(b - 1)].Text;
      return std::lexicographical_compare(
          x.begin(), x.end(), y.begin(), y.end(), [](unsigned char l, unsigned char r) {
            return std::tolower(l) < std::tolower(r);
          });
    });
  }
  return children;
}

std::int32_t TreeView::FirstChild(std::int32_t position) const {
  const std::vector<std::int32_t> children = Children(position);
  return children.empty() ? 0 : children.front();
}

std::string TreeView::FullPath(std::int32_t position) const {
  std::string path = Item(position).Text;
  for (std::int32_t p = Item(position).Parent; p > 0; p = Item(p).Parent) {
    path = Item(p).Text + "\\" + path;
  }
  return path;
}

PictureBox::PictureBox(std::string name, std::int32_t index) : Control(std::move(name), index) {}

PictureBox::PictureBox(Form& owner, std::string name, std::int32_t index)
    : Control(owner, std::move(name), index) {}

void PictureBox::Picture(const Pixels& value) {
  picture_ = value;
  Notify(Property::Picture);
}

void PictureBox::Picture(Pixels&& value) {
  picture_ = std::move(value);
  Notify(Property::Picture);
}

Pixels PictureBox::TakePicture() {
  Pixels taken = std::move(picture_);
  picture_ = Pixels{};
  Notify(Property::Picture);
  return taken;
}

void Image::Stretch(bool value) {
  if (value == stretch_) return;
  stretch_ = value;
  Notify(Property::Picture);
}

std::uint32_t PictureBox::hDC() { return surface_ ? surface_->hDC(*this) : 0; }

void PictureBox::Cls() {
  if (surface_) surface_->Cls(*this);
  Notify(Property::Image);
}

Pixels PictureBox::Image() { return surface_ ? surface_->Image(*this) : Pixels{}; }

void PictureBox::Refresh() { Notify(Property::Image); }

Control* FindControl(const std::vector<Control*>& controls, const std::string& name,
                     std::int32_t index) {
  for (Control* c : controls) {
    if (c->Name() == name && c->Index() == index) return c;
  }
  return nullptr;
}

std::string SystemNameOf(const Control& control) {
  if (control.Index() < 0) return control.Name();
  return control.Name() + "(" + std::to_string(control.Index()) + ")";
}

bool ParseSystemName(std::string_view text, std::string& name, std::int32_t& index) {
  index = -1;
  const std::size_t open = text.find('(');
  if (open == std::string_view::npos) {
    name.assign(text);
    return !name.empty() && text.find(')') == std::string_view::npos;
  }
  if (open == 0 || text.size() < open + 3 || text.back() != ')') return false;
  const std::string_view digits = text.substr(open + 1, text.size() - open - 2);
  std::int32_t value = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  if (error != std::errc() || end != digits.data() + digits.size() || value < 0) return false;
  name.assign(text.substr(0, open));
  index = value;
  return true;
}

}  // namespace quorvane::ui
