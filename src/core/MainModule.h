#pragma once
// The entry of the process and its two run modes.
//
// The process starts in one of two modes, and only the command line decides which: blank, the
// main window is shown (interactive mode); anything else, the main window is loaded and stays
// hidden (resident mode), the way the auto-start entry starts the program with "/background".
// The window itself is reached through MainForm, so that the choice runs the same with the real
// window and without one.
#include <string_view>

namespace quorvane::core {

enum class RunMode {
  Interactive,  // FrmMain created and shown, non-modal
  Resident,     // FrmMain loaded without being shown
};

// The main window, FrmMain, as the entry uses it. The program installs its window with
// platform::Install<core::MainForm> before ShowMain runs.
class MainForm {
 public:
  virtual ~MainForm() = default;

  // Loads the window without showing it: it is created and its load routine runs. A window that
  // is loaded already stays as it is.
  virtual void Load() = 0;
  // Loads the window when it is not loaded yet, then shows it, non-modal.
  virtual void Show() = 0;
};

// The mode a command line asks for: the text trimmed of blanks at both ends, empty or not. What
// the text says is not looked at.
RunMode RunModeOf(std::string_view commandLine);

// The process entry. Takes the process's command line, chooses the mode by RunModeOf, shows or
// only loads FrmMain, and returns. The process stays alive as long as the window is loaded.
// Failures are not handled here; they go up to the caller.
void ShowMain();

}  // namespace quorvane::core
