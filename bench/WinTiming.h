#pragma once
// What the Windows timing programs share: the clock and the statistics of a series of times.
// Starting and driving programs from outside is the driving library's (tests/driving).
#include <windows.h>

#include <algorithm>
#include <vector>

namespace quorvane::bench {

// Milliseconds of the performance counter.
inline double Now() {
  static LARGE_INTEGER frequency = [] {
    LARGE_INTEGER f{};
    ::QueryPerformanceFrequency(&f);
    return f;
  }();
  LARGE_INTEGER counter{};
  ::QueryPerformanceCounter(&counter);
  return static_cast<double>(counter.QuadPart) * 1000.0 / static_cast<double>(frequency.QuadPart);
}

inline double Median(std::vector<double> values) {
  if (values.empty()) return 0.0;
  std::sort(values.begin(), values.end());
  const std::size_t middle = values.size() / 2;
  return values.size() % 2 == 1 ? values[middle] : (values[middle - 1] + values[middle]) / 2.0;
}

inline double Mean(const std::vector<double>& values) {
  double sum = 0.0;
  for (double v : values) sum += v;
  return values.empty() ? 0.0 : sum / static_cast<double>(values.size());
}

// True once the program's thread has answered a WM_NULL within `timeoutMs`: it is back at its
// message loop.
inline bool Answered(HWND main, UINT timeoutMs) {
  DWORD_PTR answer = 0;
  return ::SendMessageTimeoutA(main, WM_NULL, 0, 0, SMTO_ABORTIFHUNG, timeoutMs, &answer) != 0;
}

inline BOOL CALLBACK AddDirty(HWND window, LPARAM data) {
  RECT area{};
  if (::IsWindowVisible(window) != 0 && ::GetUpdateRect(window, &area, FALSE) != 0) {
    ++*reinterpret_cast<int*>(data);
  }
  return TRUE;
}

// How many windows of the main window (itself and every visible window inside it) still have
// something to paint.
inline int Dirty(HWND main) {
  int dirty = 0;
  AddDirty(main, reinterpret_cast<LPARAM>(&dirty));
  ::EnumChildWindows(main, AddDirty, reinterpret_cast<LPARAM>(&dirty));
  return dirty;
}

// Waits until the program has handled what it was given and painted all of it: back at its loop
// with nothing left to paint, twice in a row. False when that did not happen within `limitMs` of
// `since`, or when the program did not answer within `answerMs`. The milliseconds from `since` to
// the first answer go to `answered` when it is given and still negative.
inline bool Settle(HWND main, double since, double limitMs, UINT answerMs,
                   double* answered = nullptr) {
  while (Now() - since < limitMs) {
    if (!Answered(main, answerMs)) return false;
    if (answered != nullptr && *answered < 0.0) *answered = Now() - since;
    if (Dirty(main) == 0) {
      if (!Answered(main, answerMs)) return false;
      if (Dirty(main) == 0) return true;
    }
    ::Sleep(1);
  }
  return false;
}

}  // namespace quorvane::bench
