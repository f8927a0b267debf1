// FrmSlideShow's design: a borderless window over the whole screen, black behind the picture,
// and the panel across the bottom: the three buttons, the interval, the collection's name, and
// the file shown, whose place the activation sets. Twips; the panel's place and width follow the
// window's size at run time.
#include "wallpaper/FrmSlideShow.h"

namespace quorvane {

namespace {

// The panel's face, which the button pictures are drawn on too.
constexpr std::int32_t kPanel = 0xE0E0E0;
constexpr std::int32_t kBlack = 0x000000;

// clang-format off
constexpr ui::ControlLayout kControls[] = {
    // name                 container         left  top   width height caption
    {"Image1",              nullptr,          0,    0,    0,    0,    nullptr, false},
    {.name = "FmControlPanel", .left = 0, .top = 8200, .width = 12000, .height = 800,
     .backColor = kPanel},
    {"CmdPrevious",         "FmControlPanel", 180,  165,  480,  480},
    {"CmdNext",             "FmControlPanel", 780,  165,  480,  480},
    {"CmdFinish",           "FmControlPanel", 1380, 165,  480,  480},
    {"Label1",              "FmControlPanel", 2160, 285,  840,  255,  "Duration"},
    {"CboInterval",         "FmControlPanel", 3000, 225,  1500, 315},
    {"Label2",              "FmControlPanel", 4800, 135,  2400, 255,  "Collection Name:"},
    {.name = "LblCollectionName", .container = "FmControlPanel", .left = 4800, .top = 405,
     .width = 2400, .height = 255, .caption = "", .fontBold = true},
    {.name = "LblInformation", .container = "FmControlPanel", .left = 6000, .top = 270,
     .width = 6000, .height = 285, .caption = "Please Wait", .fontSize = 9, .fontBold = true},
};
// clang-format on

}  // namespace

const ui::FormLayout kFrmSlideShowLayout{
    .caption = "Slide Show",
    .width = 12000,
    .height = 9000,
    .border = ui::BorderStyle::None,
    .controls = kControls,
    .backColor = kBlack,
    .windowState = ui::kMaximizedWindow,
};

}  // namespace quorvane
