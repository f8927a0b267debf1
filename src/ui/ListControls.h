#pragma once
// Control kinds of the collection editor: a one-line text box, and a report list whose items
// carry sub-items in columns. Each is a control of the model like the others (Controls.h):
// headless it is the whole control, and a binding mirrors it.
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "ui/Controls.h"

namespace quorvane::ui {

// A one-line box the user types a text into.
class TextBox : public Control {
 public:
  using Control::Control;
  const std::string& Text() const { return text_; }
  // Sets the text; Change runs when it differs from the one before, as the platform's box does.
  void Text(const std::string& value);
  std::function<void()> Change;

 private:
  std::string text_;
};

// A column of a report list: its caption and its width in twips.
struct ColumnHeader {
  std::string Text;
  std::int32_t Width = 0;
};

// An item of a list view: its text, its sub-items (1 onwards, one a further column) and whether
// it is selected.
struct ListItem {
  std::string Text;
  std::vector<std::string> SubItems;  // SubItems[0] is sub-item 1
  bool Selected = false;
};

// A list view in report style: one row an item, the item's text in the first column and its
// sub-items in the others. Items are reached by position from 1, in the order they stand.
// With MultiSelect several items may be selected at once; otherwise selecting one clears the
// others. SelectedItem is the item that has the focus: the one last selected, and when that one
// is removed the one that takes its place (at the end, the one before it); 0 for none. It need
// not be selected itself.
class ListView : public Control {
 public:
  using Control::Control;

  std::vector<ColumnHeader> ColumnHeaders;
  bool MultiSelect = true;

  // Adds an item at the end and gives its position.
  std::int32_t Add(const std::string& text);
  std::int32_t Count() const { return static_cast<std::int32_t>(items_.size()); }
  // Item `position`, from 1; a position outside the list is the invalid-procedure-call failure.
  const ListItem& Item(std::int32_t position) const;
  // Sets sub-item `column` (from 1) of an item.
  void SubItem(std::int32_t position, std::int32_t column, const std::string& text);
  const std::string& SubItem(std::int32_t position, std::int32_t column) const;
  // Removes an item; the ones behind it move up.
  void Remove(std::int32_t position);
  void Clear();

  // Selects or deselects an item from code; runs no handler.
  void Select(std::int32_t position, bool selected = true);
  // The item with the focus, 0 when none has it.
  std::int32_t SelectedItem() const { return selected_; }
  // The list's own search by item text: the first item whose text equals `text` without regard
  // to case, as the platform compares; 0 when there is none.
  std::int32_t FindItem(const std::string& text) const;

  // The user clicked an item (after its selection changed), and released a key in the list.
  std::function<void()> ItemClick;
  std::function<void()> KeyUp;

 private:
  std::vector<ListItem> items_;
  std::int32_t selected_ = 0;
};

}  // namespace quorvane::ui
