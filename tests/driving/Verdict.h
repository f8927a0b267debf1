#pragma once
// What a case of a driving program keeps: its failed checks with their reasons, or, when all
// passed, what it saw; where the verdicts of a run go; and the bounded wait the cases poll with.
#include <windows.h>

#include <functional>
#include <string>
#include <vector>

namespace quorvane::driving {

// Polls `condition` every 100 ms until it holds or `milliseconds` have passed.
inline bool WaitUntil(DWORD milliseconds, const std::function<bool()>& condition) {
  const ULONGLONG deadline = ::GetTickCount64() + milliseconds;
  for (;;) {
    if (condition()) return true;
    if (::GetTickCount64() >= deadline) return false;
    ::Sleep(100);
  }
}

// One case: every failed check is kept with its reason.
class Verdict {
 public:
  bool Check(bool condition, const std::string& failure) {
    if (!condition) failures_.push_back(failure);
    return condition;
  }
  void Note(const std::string& note) { notes_.push_back(note); }
  bool Passed() const { return failures_.empty(); }
  std::string Summary() const {
    std::string text;
    for (const std::string& part : Passed() ? notes_ : failures_) {
      text += (text.empty() ? "" : "; ") + part;
    }
    return text;
  }

 private:
  std::vector<std::string> failures_;
  std::vector<std::string> notes_;
};

// Receives each case's name and verdict, in order.
using Report = std::function<void(const std::string& name, const Verdict& verdict)>;

// "left,top widthxheight".
inline std::string Describe(const RECT& r) {
  return std::to_string(r.left) + "," + std::to_string(r.top) + " " +
         std::to_string(r.right - r.left) + "x" + std::to_string(r.bottom - r.top);
}

}  // namespace quorvane::driving
