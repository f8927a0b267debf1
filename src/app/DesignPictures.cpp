#include "app/DesignPictures.h"

#include "core/FrmMain.h"
#include "platform/ResourcePictures.h"
#include "platform/Service.h"

namespace quorvane::app {

void LoadDesignPictures(FrmMain& form) {
  auto& pictures = platform::Use<platform::ResourcePictures>();
  // About (element 0) and Help (element 1): the resting picture stands in imgTopRowHover, the
  // highlighted one in imgTopRow.
  form.imgTopRowHover[0].Picture(pictures.LoadResPicture(160));
  form.imgTopRow[0].Picture(pictures.LoadResPicture(161));
  form.imgTopRowHover[1].Picture(pictures.LoadResPicture(162));
  form.imgTopRow[1].Picture(pictures.LoadResPicture(163));
  // The window's background, the folder tree's root picture and the notification's picture.
  form.Picture = pictures.LoadResPicture(170);
  form.Image2.Picture(pictures.LoadResPicture(171));
  form.ImgPopupWindows.Picture(pictures.LoadResPicture(172));
  // The appearance page's preview icons.
  form.ImgMyComputer.Picture(pictures.LoadResPicture(174));
  form.ImgMyDocuments.Picture(pictures.LoadResPicture(175));
  form.ImgRecycleBin.Picture(pictures.LoadResPicture(176));
}

}  // namespace quorvane::app
