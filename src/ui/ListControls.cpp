#include "ui/ListControls.h"

#include <algorithm>
#include <cctype>

#include "base/Failure.h"

namespace quorvane::ui {

namespace {

bool SameText(const std::string& a, const std::string& b) {
  return a.size() == b.size() &&
         std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
           return std::tolower(static_cast<unsigned char>(x)) ==
                  std::tolower(static_cast<unsigned char>(y));
         });
}

}  // namespace

void TextBox::Text(const std::string& value) {
  const bool changed = value != text_;
  text_ = value;
  Notify(Property::Caption);
  if (changed && Change) Change();
}

std::int32_t ListView::Add(const std::string& text) {
  ListItem item;
  item.Text = text;
  items_.push_back(std::move(item));
  Notify(Property::Nodes);
  return Count();
}

const ListItem& ListView::Item(std::int32_t position) const {
  if (position < 1 || position > Count()) {
    Raise(FailureNumber::InvalidProcedureCall, "Index out of bounds");
  }
  return items_[static_cast<std::size_t>(position - 1)];
}

void ListView::SubItem(std::int32_t position, std::int32_t column, const std::string& text) {
  Item(position);
  if (column < 1) Raise(FailureNumber::InvalidProcedureCall, "Index out of bounds");
  auto& subItems = items_[static_cast<std::size_t>(position - 1)].SubItems;
  if (subItems.size() < static_cast<std::size_t>(column)) subItems.resize(column);
  subItems[static_cast<std::size_t>(column - 1)] = text;
  Notify(Property::Nodes);
}

const std::string& ListView::SubItem(std::int32_t position, std::int32_t column) const {
  static const std::string none;
  const ListItem& item = Item(position);
  if (column < 1) Raise(FailureNumber::InvalidProcedureCall, "Index out of bounds");
  return static_cast<std::size_t>(column) <= item.SubItems.size()
             ? item.SubItems[static_cast<std::size_t>(column - 1)]
             : none;
}

void ListView::Remove(std::int32_t position) {
  Item(position);
  items_.erase(items_.begin() + (position - 1));
  if (selected_ == position) {
    // The focus goes to the item that takes the removed one's place, or at the end to the one
    // before it, as the platform's list moves it.
    selected_ = std::min(position, Count());
  } else if (selected_ > position) {
    --selected_;
  }
  Notify(Property::Nodes);
}

void ListView::Clear() {
  items_.clear();
  selected_ = 0;
  Notify(Property::Nodes);
}

void ListView::Select(std::int32_t position, bool selected) {
  Item(position);
  if (selected && !MultiSelect) {
    for (ListItem& other : items_) other.Selected = false;
  }
  items_[static_cast<std::size_t>(position - 1)].Selected = selected;
  if (selected) {
    selected_ = position;
  } else if (selected_ == position) {
    selected_ = 0;
  }
  Notify(Property::NodeState);
}

std::int32_t ListView::FindItem(const std::string& text) const {
  for (std::size_t i = 0; i < items_.size(); ++i) {
    if (SameText(items_[i].Text, text)) return static_cast<std::int32_t>(i) + 1;
  }
  return 0;
}

}  // namespace quorvane::ui
