#include "core/FrmWorking.h"

#include <memory>

#include "platform/ResourcePictures.h"
#include "ui/Controls.h"
#include "platform/Service.h"

namespace quorvane {

namespace {

constexpr std::int32_t kPicture = 173;

// A thin line round the picture; no caption bar. Without its picture the window keeps this size.
const ui::FormLayout kFrmWorkingLayout{
    .caption = "",
    .width = 260 * ui::kTwipsPerPixel,
    .height = 80 * ui::kTwipsPerPixel,
    .border = ui::BorderStyle::FixedToolWindow,
};

}  // namespace

FrmWorking::FrmWorking() : ui::Form("FrmWorking") {
  ui::ApplyLayout(*this, kFrmWorkingLayout);
  MousePointer = ui::kHourglassPointer;
  Picture = platform::Use<platform::ResourcePictures>().LoadResPicture(kPicture);
  if (!Picture.Empty()) {
    Width = Picture.width * ui::kTwipsPerPixel;
    Height = Picture.height * ui::kTwipsPerPixel;
  }
}

FrmWorking& WorkingWindow() {
  // Made on first use and kept for the life of the process, whatever else goes at its end.
  static FrmWorking* const form = new FrmWorking();
  return *form;
}

}  // namespace quorvane
