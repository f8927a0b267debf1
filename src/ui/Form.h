#pragma once
// A form of the control model: a window of the program with its caption, size, border, picture
// and visibility, the controls that belong to it, its events and its timers. Headless, the form
// is the whole window: tests raise its events and read its controls. A binding (the Windows one
// in src/ui/win32) shows any form as a real window and turns the window's events into the form's
// routines, each run through RunEvent.
//
// Controls register themselves: a control made with a form as its owner is among the form's
// Controls() from then on, in the order of construction.
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "base/Pixels.h"

namespace quorvane::ui {

class Control;
class Timer;
class FormObserver;

// How a form's window is framed.
enum class BorderStyle : std::int16_t {
  None = 0,         // no frame and no caption bar
  FixedSingle = 1,  // a thin frame with a caption bar and a close box
  FixedDialog = 3,  // a dialog frame with a caption bar and a close box
  // A small tool window's thin frame; with no caption, no caption bar either: a line round the
  // window.
  FixedToolWindow = 4,
};

// The mouse pointers a form shows over itself and its controls.
inline constexpr std::int16_t kDefaultPointer = 0;
inline constexpr std::int16_t kHourglassPointer = 11;

// How a form's window stands on the screen: at its design size, or over the whole screen.
inline constexpr std::int16_t kNormalWindow = 0;
inline constexpr std::int16_t kMaximizedWindow = 2;

// The colour behind a form's controls by default: the system's button face, as the system
// names its colours (0x80000000 and the colour's number); any other value is 0xBBGGRR.
inline constexpr std::uint32_t kButtonFace = 0x8000000F;

// Why a form is asked to unload.
inline constexpr std::int16_t kUnloadFromMenu = 0;         // system menu, Alt+F4, the close box
inline constexpr std::int16_t kUnloadFromCode = 1;         // the program's own code
inline constexpr std::int16_t kUnloadAtSessionEnd = 2;     // log-off or shutdown
inline constexpr std::int16_t kUnloadFromTaskManager = 3;  // the task manager

class Form {
 public:
  explicit Form(std::string name);
  virtual ~Form();
  Form(const Form&) = delete;
  Form& operator=(const Form&) = delete;

  // The system's name of the form ("FrmMain").
  const std::string& Name() const { return name_; }

  std::string Caption;
  // The inside of the window, in twips.
  std::int32_t Width = 0;
  std::int32_t Height = 0;
  BorderStyle Border = BorderStyle::None;
  // The picture drawn behind the controls; empty, the form is plain.
  Pixels Picture;
  // The colour of the form's surface beyond its picture: kButtonFace or 0xBBGGRR.
  std::uint32_t BackColor = kButtonFace;
  // kNormalWindow, or kMaximizedWindow: the window covers the screen, and once it is made
  // Width and Height are the screen's.
  std::int16_t WindowState = kNormalWindow;
  // The form sees every key pressed in it (Form_KeyDown) before the control that has the focus
  // does; a modal form's binding passes them on.
  bool KeyPreview = false;
  // The pointer over the form and every control of it: kDefaultPointer or kHourglassPointer.
  std::int16_t MousePointer = kDefaultPointer;
  // The real window and the window's own icon, once a binding made them; 0 headless.
  std::uint32_t hWnd = 0;
  std::uint32_t Icon = 0;

  bool Visible() const { return visible_; }
  // Shows or hides the form's window; its load routine does not run again for either.
  void Visible(bool value);
  // Set while the form is loaded, from its load routine to its unloading.
  bool Loaded() const { return loaded_; }

  // --- events ---------------------------------------------------------------------------------
  // The load routine: once, when the form is loaded, before it is first shown.
  virtual void Form_Load() {}
  // Each time the form becomes the active window.
  virtual void Form_Activate() {}
  // A request to unload; setting Cancel to non-zero keeps the form loaded.
  virtual void Form_QueryUnload(std::int16_t& /*Cancel*/, std::int16_t /*UnloadMode*/) {}
  // The form is unloading; its window goes after this.
  virtual void Form_Unload(std::int16_t& /*Cancel*/) {}
  // The window's inside changed size (also when it is first shown).
  virtual void Form_Resize() {}
  // Events of the form's own surface (button, shift, x and y in twips).
  virtual void Form_MouseDown(std::int16_t /*Button*/, std::int16_t /*Shift*/, float /*X*/,
                              float /*Y*/) {}
  virtual void Form_MouseMove(std::int16_t /*Button*/, std::int16_t /*Shift*/, float /*X*/,
                              float /*Y*/) {}
  // A key pressed, with KeyPreview: its code (27 for Escape) and shift (1 shift, 2 control,
  // 4 alt). Setting KeyCode to 0 keeps the key from the control with the focus.
  virtual void Form_KeyDown(std::int16_t& /*KeyCode*/, std::int16_t /*Shift*/) {}

  // Loads the form when it is not loaded: Loaded() becomes true and Form_Load runs.
  void Load();
  // Unloads the form from its own code: QueryUnload (kUnloadFromCode) and Unload are asked, and
  // unless one of them cancels, the binding's window goes and Loaded() is false after. A form
  // that is not loaded stays as it is.
  void Unload();
  // A request to unload for `unloadMode`: QueryUnload, then Unload, each of which may cancel it.
  // Gives whether the form unloaded. The end of the session (kUnloadAtSessionEnd) is not refused:
  // the form unloads then whatever its events say.
  bool QueryAndUnload(std::int16_t unloadMode);

  // --- controls -------------------------------------------------------------------------------
  // Every control of the form, in the order they were made.
  const std::vector<Control*>& Controls() const { return controls_; }
  // The control of that name (and index, for an element of a control array); null if none.
  Control* FindControl(const std::string& name, std::int32_t index = -1) const;
  // The form's timers, which its binding runs.
  std::vector<Timer*> Timers() const;
  // The control last given the focus by SetFocus; null before any was.
  Control* ActiveControl() const { return activeControl_; }

  // A binding watches the form's own properties through this.
  void Observe(FormObserver* observer) { observer_ = observer; }
  // A control made while the program runs (an element of a loaded control array) is ready: the
  // binding gives it its window.
  void ControlLoaded(Control& control);

 private:
  friend class Control;
  void Register(Control& control);
  void Forget(Control& control);

  std::string name_;
  bool visible_ = false;
  bool loaded_ = false;
  std::vector<Control*> controls_;
  Control* activeControl_ = nullptr;
  std::vector<Control*> loadedAtRunTime_;
  FormObserver* observer_ = nullptr;
};

// What a binding is told about its form.
class FormObserver {
 public:
  virtual ~FormObserver() = default;
  virtual void VisibleChanged(Form& form) = 0;
  virtual void Unloaded(Form& form) = 0;
  // A control made while the program runs is ready, or one is going (its window goes with it).
  virtual void ControlLoaded(Form& /*form*/, Control& /*control*/) {}
  virtual void ControlGoing(Form& /*form*/, Control& /*control*/) {}
};

// --- events through the top-level report ------------------------------------------------------
// Every binding and every headless driver runs a form's event handlers through RunEvent, so that a
// failure that comes out of one meets the one top-level report the system installs. With none
// installed the failure goes on to the caller.
using EventRunner = std::function<void(Form& form, const std::function<void()>& handler)>;
void InstallEventRunner(EventRunner runner);
void RunEvent(Form& form, const std::function<void()>& handler);

}  // namespace quorvane::ui
