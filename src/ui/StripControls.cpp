#include "ui/StripControls.h"

#include <algorithm>
#include <cctype>
#include <utility>

namespace quorvane::ui {

namespace {

TextMeasure& InstalledMeasure() {
  static TextMeasure measure;
  return measure;
}

char Lower(char c) { return static_cast<char>(std::tolower(static_cast<unsigned char>(c))); }

// One pattern with "*" (any run) and "?" (any one character), without regard to case.
bool MatchesOne(std::string_view name, std::string_view pattern) {
  std::size_t n = 0, p = 0, star = std::string_view::npos, resume = 0;
  while (n < name.size()) {
    if (p < pattern.size() && (pattern[p] == '?' || Lower(pattern[p]) == Lower(name[n]))) {
      ++n;
      ++p;
    } else if (p < pattern.size() && pattern[p] == '*') {
      star = p++;
      resume = n;
    } else if (star != std::string_view::npos) {
      p = star + 1;
      n = ++resume;
    } else {
      return false;
    }
  }
  while (p < pattern.size() && pattern[p] == '*') ++p;
  return p == pattern.size();
}

bool LessIgnoringCase(const std::string& a, const std::string& b) {
  return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(),
                                      [](char x, char y) {
                                        return static_cast<unsigned char>(Lower(x)) <
                                               static_cast<unsigned char>(Lower(y));
                                      });
}

}  // namespace

// --- scroll bar ---------------------------------------------------------------------------------

void ScrollBar::Value(std::int32_t value) {
  value = std::clamp(value, std::min(min_, max_), std::max(min_, max_));
  const bool changed = value != value_;
  value_ = value;
  Notify(Property::Value);
  if (changed && Change) Change();
}

void ScrollBar::Track(std::int32_t value) {
  value_ = std::clamp(value, std::min(min_, max_), std::max(min_, max_));
  if (Scroll) Scroll();
}

void ScrollBar::Min(std::int32_t value) {
  min_ = value;
  Notify(Property::Value);
}

void ScrollBar::Max(std::int32_t value) {
  max_ = value;
  Notify(Property::Value);
}

// --- progress bar -------------------------------------------------------------------------------

void ProgressBar::Value(double value) {
  if (value < min_ || value > max_) {
    Raise(static_cast<FailureNumber>(380), "Invalid property value");
  }
  value_ = value;
  Notify(Property::Value);
}

void ProgressBar::Min(double value) {
  min_ = value;
  Notify(Property::Value);
}

void ProgressBar::Max(double value) {
  max_ = value;
  Notify(Property::Value);
}

// --- file list box ------------------------------------------------------------------------------

bool MatchesPattern(std::string_view name, std::string_view patterns) {
  while (true) {
    const std::size_t end = patterns.find(';');
    std::string_view one = patterns.substr(0, end);
    while (!one.empty() && one.front() == ' ') one.remove_prefix(1);
    while (!one.empty() && one.back() == ' ') one.remove_suffix(1);
    if (!one.empty() && MatchesOne(name, one)) return true;
    if (end == std::string_view::npos) return false;
    patterns.remove_prefix(end + 1);
  }
}

void FileListBox::Fill(const std::string& folder) {
  std::vector<std::string> all;
  if (!Lister || !Lister(folder, all)) {
    Raise(FailureNumber::PathNotFound, "Path not found: " + folder);
  }
  std::vector<std::string> matching;
  for (std::string& name : all) {
    if (MatchesPattern(name, Pattern)) matching.push_back(std::move(name));
  }
  std::sort(matching.begin(), matching.end(), LessIgnoringCase);
  names_ = std::move(matching);
  path_ = folder;
}

void FileListBox::Path(const std::string& folder) { Fill(folder); }

void FileListBox::Refresh() {
  if (!path_.empty()) Fill(path_);
}

std::string FileListBox::List(std::int32_t position) const {
  if (position < 0 || position >= ListCount()) return std::string();
  return names_[static_cast<std::size_t>(position)];
}

// --- caption widths -----------------------------------------------------------------------------

void InstallTextMeasure(TextMeasure measure) { InstalledMeasure() = std::move(measure); }

std::int32_t CaptionTextWidth(const std::string& text) {
  const TextMeasure& measure = InstalledMeasure();
  return measure ? measure(text) : 0;
}

}  // namespace quorvane::ui
