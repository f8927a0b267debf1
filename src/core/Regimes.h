#pragma once
// The three ways a routine of the system meets a failure, each named once:
//
//   ResumeEach   each statement swallowed: a failing step is passed over and the next one runs;
//   AsResult     a failure turned into a result: the routine's value, or the fallback;
//   RunEvent     a failure that reaches the top of an event: reported to the user and the log,
//                and the program goes on with the next event.
//
// Failures are the system's Failure and the standard library's own exceptions, which are taken the
// same way. Where nothing at all may get out (a destructor, a routine that never fails), the
// first argument kAnything makes ResumeEach and AsResult take whatever is thrown.
#include <concepts>
#include <exception>
#include <functional>
#include <string>
#include <utility>

namespace quorvane::ui {
class Form;
}

namespace quorvane::core {

// Whatever is thrown, failures or not.
struct Anything {};
inline constexpr Anything kAnything{};

// Runs each step in order; a failure of one step is passed over, and the next one runs.
template <class... Steps>
void ResumeEach(Steps&&... steps) {
  const auto run = [](auto&& step) {
    try {
      step();
    } catch (const std::exception&) {
    }
  };
  (run(std::forward<Steps>(steps)), ...);
}

// The same, passing over whatever a step throws.
template <class... Steps>
void ResumeEach(Anything, Steps&&... steps) noexcept {
  const auto run = [](auto&& step) noexcept {
    try {
      step();
    } catch (...) {
    }
  };
  (run(std::forward<Steps>(steps)), ...);
}

// The routine's value, or `fallback` when it fails.
template <class T, class Routine>
  requires(!std::invocable<T&>)
T AsResult(Routine&& routine, T fallback) {
  try {
    return std::forward<Routine>(routine)();
  } catch (const std::exception&) {
    return fallback;
  }
}

// The same, `fallback` for whatever the routine throws.
template <class T, class Routine>
  requires(!std::invocable<T&>)
T AsResult(Anything, Routine&& routine, T fallback) {
  try {
    return std::forward<Routine>(routine)();
  } catch (...) {
    return fallback;
  }
}

// True when the routine ran through, false when it failed.
template <class Routine>
bool AsResult(Routine&& routine) {
  try {
    std::forward<Routine>(routine)();
    return true;
  } catch (const std::exception&) {
    return false;
  }
}

// True when the routine ran through. When it failed, `onFailure` runs while the failure is still
// being handled, so that ReportError can tell which failure it was, and the result is false.
template <class Routine, class OnFailure>
  requires std::invocable<OnFailure&>
bool AsResult(Routine&& routine, OnFailure&& onFailure) {
  try {
    std::forward<Routine>(routine)();
    return true;
  } catch (const std::exception&) {
    onFailure();
    return false;
  }
}

// The top-level report of an event of `form`: runs the handler; a failure that comes out of it
// appends one line to the log in the data folder ("<time>\t<form>\tevent\tline 0\terror <n>\t
// <text>") and shows the failure's text in a message box. Never fails.
void RunEvent(ui::Form& form, const std::function<void()>& handler) noexcept;

// Installs RunEvent as the runner of every form's events (ui::RunEvent).
void InstallTopLevelReport();

}  // namespace quorvane::core
