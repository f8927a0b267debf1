#pragma once
// FrmSlideShow: the modal window that steps through the pictures of one collection, at a chosen
// pace or by hand, until the user leaves it. FrmMain::CmdSlideShow_Click unpacks the collection
// into its folder, hands its name in through the window's Tag and LblCollectionName, shows the
// window modal, and removes the folder again once the window is gone: the folder exists for
// exactly the time the window is open.
//
// The window covers the screen. The picture stands at its own size in the middle (a picture
// larger than the screen overflows on every side alike); the panel across the bottom holds the
// three buttons, the interval, the collection's name and the file shown.
//
// Where each control stands is the design's table, FrmSlideShowLayout.cpp; the form is shown
// through the Forms port.
#include <cstdint>
#include <string>
#include <vector>

#include "ui/Controls.h"
#include "ui/Form.h"
#include "ui/Layout.h"

namespace quorvane {

// The window's design: its caption, size and border, and where each control stands
// (FrmSlideShowLayout.cpp).
extern const ui::FormLayout kFrmSlideShowLayout;

class FrmSlideShow : public ui::Form {
 public:
  FrmSlideShow();

  // The button pictures, by resource number: normal and under the mouse.
  static constexpr std::int32_t kPreviousPicture = 151;
  static constexpr std::int32_t kPreviousHoverPicture = 152;
  static constexpr std::int32_t kFinishPicture = 153;
  static constexpr std::int32_t kFinishHoverPicture = 154;
  static constexpr std::int32_t kNextPicture = 155;
  static constexpr std::int32_t kNextHoverPicture = 156;
  // The panel's height above the window's bottom edge, in twips.
  static constexpr std::int32_t kPanelHeight = 800;

  // --- controls -------------------------------------------------------------------------------
  // The picture, at its own size: the box takes the size of its picture and never stretches it.
  ui::PictureBox Image1{*this, "Image1"};
  // The panel across the bottom and what stands in it.
  ui::PictureBox FmControlPanel{*this, "FmControlPanel"};
  ui::PictureBox CmdPrevious{*this, "CmdPrevious"};
  ui::PictureBox CmdFinish{*this, "CmdFinish"};
  ui::PictureBox CmdNext{*this, "CmdNext"};
  ui::Label Label1{*this, "Label1"};
  ui::ComboBox CboInterval{*this, "CboInterval"};
  ui::Label Label2{*this, "Label2"};
  ui::Label LblCollectionName{*this, "LblCollectionName"};
  ui::Label LblInformation{*this, "LblInformation"};
  // Steps the show while an interval is chosen.
  ui::Timer Timer1{*this, "Timer1"};

  // --- members --------------------------------------------------------------------------------
  // The window's Tag: the collection's name, handed in before the show.
  std::string Tag;
  // The full paths of the collection's files, from 0. Thumbs.db takes no place of its own, but
  // when it comes last the list keeps one empty path behind the last picture.
  std::vector<std::string> SlideFiles;
  // The position in SlideFiles.
  std::int16_t SlideIndex = 0;
  // The name of the last control the mouse moved on ("Form" for the panel).
  std::string mLastHover;

  // --- routines -------------------------------------------------------------------------------
  // Load: the buttons take their normal pictures.
  void Form_Load() override;
  // Each activation: the collection's files listed, the index at 0, no picture, the panel
  // placed, "5 Seconds" chosen, and the file's name placed at half the window's width.
  void Form_Activate() override;
  // Escape (27) leaves the show.
  void Form_KeyDown(std::int16_t& KeyCode, std::int16_t Shift) override;
  // The interval chosen: 0 "Manually" stops the timer; 1 to 4 run it at 2, 5, 10 or 20 seconds.
  void CboInterval_Click();
  void Timer1_Timer();
  void CmdNext_Click();
  // One picture back; at the first nothing happens: there is no wrap backwards.
  void CmdPrevious_Click();
  void CmdFinish_Click();
  // Shows a picture: with `mode` 1 the index advances first, and after the last picture comes
  // the first again; any other mode shows the picture at the index. It catches nothing: a file
  // that can't be decoded is a failure for the event's top-level report.
  void ShowPicture(std::int16_t mode);
  // Hover: a button under the mouse shows its hover picture; the panel takes it back.
  void CmdPrevious_MouseMove();
  void CmdFinish_MouseMove();
  void CmdNext_MouseMove();
  void FmControlPanel_MouseMove();

 private:
  // The highest index of SlideFiles; a failure while it holds nothing.
  std::int16_t UpperBound() const;
  // The panel across the bottom of the window, its whole width.
  void PlacePanel();
  // The three buttons with their normal pictures.
  void RestoreButtons();
  void Hover(const std::string& name, ui::PictureBox& button, std::int32_t picture);
};

}  // namespace quorvane
