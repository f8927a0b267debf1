#pragma once
// The main window's design pictures that the program's code never loads itself: the two rows of
// the top icons, at rest and highlighted, the window's background, the folder tree's root
// picture (Image2) and the notification's picture. They come from the program's bitmaps.

namespace quorvane {
class FrmMain;
}

namespace quorvane::app {

void LoadDesignPictures(FrmMain& form);

}  // namespace quorvane::app
