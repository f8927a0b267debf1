// FrmSettings' design: the explanation across the top, the change's settings below it, then the
// collections, the start with Windows and the command. Twips.
#include "wallpaper/FrmSettings.h"

namespace quorvane {

namespace {

// The dialog's own face, behind what load does not make white.
constexpr std::int32_t kFace = 0xF0F0F0;

// clang-format off
constexpr ui::ControlLayout kControls[] = {
    // name               container   left  top   width height caption
    {.name = "Picture1", .left = 0, .top = 0, .width = 7200, .height = 960, .backColor = kFace},
    {"Label1",            "Picture1", 240,  180,  6720, 600,
     "Quorvane will change wallpapers from the selected collections below. If you do not want "
     "to include a collection uncheck it."},
    {.name = "Picture2", .left = 0, .top = 960, .width = 7200, .height = 3900, .backColor = kFace},
    {"ChkEnable",         "Picture2", 240,  180,  5400, 300,   "Enable automatic Wallpaper change"},
    {"Label2",            "Picture2", 240,  630,  2460, 255,   "Change wallpaper every "},
    {"CboMinutes",        "Picture2", 2700, 585,  900,  330},
    {"Label3",            "Picture2", 3720, 630,  1200, 255,   "minutes"},
    {"Frame1",            "Picture2", 240,  1080, 6720, 780,   "Wallpaper Changing Options"},
    {"OptSequentially",   "Frame1",   240,  360,  3000, 300,   "Change Sequentially"},
    {"OptRandomally",     "Frame1",   3480, 360,  3000, 300,   "Change Randomally"},
    {"Frame2",            "Picture2", 240,  1980, 6720, 1740,  "Wallpaper Position"},
    {"Label5",            "Frame2",   240,  330,  3000, 255,   "Wallpaper Position:"},
    {"OptTileImages",     "Frame2",   240,  660,  6240, 300,   "Tile images"},
    {"OptCenterImage",    "Frame2",   240,  990,  6240, 300,   "Center image on desktop"},
    {"OptStrechImage",    "Frame2",   240,  1320, 6240, 300,   "Strech the image to fit desktop"},
    {"Label4",            nullptr,    240,  4980, 3000, 255,   "Collections:"},
    {"TvCollections",     nullptr,    240,  5265, 6720, 1860},
    {"ChkLoadWallpaper",  nullptr,    240,  7245, 4800, 300,   "Load Quorvane during Windows startup"},
    {"CmdSave",           nullptr,    5760, 7620, 1200, 390,   "Save"},
};
// clang-format on

}  // namespace

const ui::FormLayout kFrmSettingsLayout{
    .caption = "Wallpaper Settings",
    .width = 7200,
    .height = 8160,
    .border = ui::BorderStyle::FixedDialog,
    .controls = kControls,
};

}  // namespace quorvane
