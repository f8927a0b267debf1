// FrmWallpaperCreateCollection's design: the name across the top, the explanation under it, the
// list on the left with Add and Remove below it, the preview on the right, OK and Cancel at the
// bottom right. Twips.
#include "wallpaper/FrmWallpaperCreateCollection.h"

namespace quorvane {

namespace {

constexpr std::int32_t kWhite = 0xFFFFFF;

// clang-format off
constexpr ui::ControlLayout kControls[] = {
    // name                 container   left  top   width height caption
    {"Label1",              nullptr,    240,  270,  1560, 255,   "Collection Name:"},
    {"TxtCollectionName",   nullptr,    1800, 210,  6960, 345},
    {"Label2",              nullptr,    240,  750,  8520, 435,
     "Select images that you want to add in your collection. Click Add to add files in the "
     "collection and Remove to remove files from the collection."},
    {"LvFileList",          nullptr,    240,  1320, 5880, 3600},
    {"CmdAddFile",          nullptr,    240,  5055, 1200, 375,   "Add"},
    {"CmdRemoveFile",       nullptr,    1560, 5055, 1200, 375,   "Remove"},
    {"Label3",              nullptr,    6360, 1320, 2400, 435,   "Preview : Double click to view full screen"},
    {.name = "picSlide", .left = 6360, .top = 1800, .width = 2400, .height = 1560,
     .backColor = kWhite},
    {.name = "optThumb(0)", .container = "picSlide", .left = 60, .top = 60, .width = 2280,
     .height = 1440, .caption = "", .backColor = kWhite},
    {.name = "picLoad", .visible = false},
    {.name = "picThumb", .left = 0, .top = 0, .width = 960, .height = 960, .visible = false},
    {"CmdOK",               nullptr,    6360, 5055, 1140, 375,   "OK"},
    {"CmdCancel",           nullptr,    7620, 5055, 1140, 375,   "Cancel"},
};
// clang-format on

}  // namespace

const ui::FormLayout kFrmWallpaperCreateCollectionLayout{
    .caption = "Wallpaper Collection",
    .width = 9000,
    .height = 5670,
    .border = ui::BorderStyle::FixedDialog,
    .controls = kControls,
};

}  // namespace quorvane
