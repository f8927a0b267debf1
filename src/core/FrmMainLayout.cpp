// FrmMain's design: the borderless main window, its pages (one shown at a time, all at one
// place), the command strips under them, and the controls inside each page. Twips; a row
// without a place keeps its control at (0, 0) with no size until a routine places it.
#include "core/FrmMain.h"

namespace quorvane {

namespace {

constexpr std::int32_t kTitle = 0x52463F;     // the page's title: dark
constexpr std::int32_t kSubtitle = 0x914F1D;  // its subtitle: the pictures' accent

// clang-format off
constexpr ui::ControlLayout kControls[] = {
    // name                    container         left   top    width  height caption
    // The pages and the command strips, with the places the page switch gives them.
    {"PBPelmoraMain",          nullptr,          3200,  2040,  7695,  5535,  nullptr, false},
    {"PBFileSystem",           nullptr,          3200,  2040,  7695,  5535,  nullptr, false},
    {"PBAppearance",           nullptr,          3200,  2040,  7695,  5535,  nullptr, false},
    {"PBWallpaper",            nullptr,          3200,  2040,  7695,  5535,  nullptr, false},
    {"FrameCommands",          nullptr,          3240,  7800,  7695,  375},
    {"FrameWallpaper",         nullptr,          3240,  7800,  7695,  375,   nullptr, false},
    {"CmdMenu(0)",             nullptr,          240,   2040,  2760,  780},
    {"CmdMenu(1)",             nullptr,          240,   2940,  2760,  780},
    {"CmdMenu(2)",             nullptr,          240,   3840,  2760,  780},
    {"CmdMenu(3)",             nullptr,          240,   4740,  2760,  780},
    {"PicMin",                 nullptr,          10350, 120,   330,   330},
    {"PicClose",               nullptr,          10740, 120,   330,   330},
    {"imgTop(0)",              nullptr,          8700,  120,   480,   480},
    {"imgTop(1)",              nullptr,          9300,  120,   480,   480},
    // The page's title stands out: larger, bold and dark; its subtitle in the accent colour.
    {.name = "LblCommandName", .left = 3240, .top = 450, .width = 5300, .height = 435,
     .caption = "Pelmora", .fontSize = 14, .fontBold = true, .foreColor = kTitle},
    {.name = "LblCommandDesc", .left = 3240, .top = 900, .width = 7000, .height = 300,
     .caption = "Change Icons with few clicks", .fontSize = 9, .foreColor = kSubtitle},
    {"LblDescribtion",         nullptr,          3240,  1230,  7600,  780},
    {"Label33",                nullptr,          0,     0,     0,     0,     "About"},
    {"Label30",                nullptr,          0,     0,     0,     0,     "Help"},
    {"CmdChange",              "FrameCommands",  0,     0,     1800,  375},
    {"CmdReset",               "FrameCommands",  1950,  0,     1800,  375},
    {"CmdDefault",             "FrameCommands",  3900,  0,     1800,  375},
    {"CmdApply",               "FrameCommands",  5850,  0,     1800,  375},
    {"CmdSetAsWallpaper",      "FrameWallpaper", 0,     0,     1800,  375},
    {"CmdSettings",            "FrameWallpaper", 1950,  0,     1800,  375},
    {"CmdSlideShow",           "FrameWallpaper", 3900,  0,     1800,  375},

    // The icon page: the five catalogue trees, one shown at a time, and the previews.
    {"CmdWindow",              "PBPelmoraMain",  120,   15,    6840,  360},
    {"TvDesktop",              "PBPelmoraMain",  120,   720,   4560,  4680},
    {"TvStartMenu",            "PBPelmoraMain",  120,   720,   4560,  4680},
    {"TvExplore",              "PBPelmoraMain",  120,   720,   4560,  4680},
    {"TvFileType",             "PBPelmoraMain",  120,   720,   4560,  4680},
    {"TvControlPanel",         "PBPelmoraMain",  120,   720,   4560,  4680},
    {"Label4",                 "PBPelmoraMain",  120,   450,   2000,  255,   "Objects"},
    {"LblIconCat",             "PBPelmoraMain",  2200,  450,   2400,  255,   "Desktop"},
    {"Label5",                 "PBPelmoraMain",  4920,  450,   2000,  255,   "Preview"},
    {"sIcon",                  "PBPelmoraMain",  4920,  900,   300,   300},
    {"lIcon",                  "PBPelmoraMain",  5400,  900,   540,   540},
    {"mIcon",                  "PBPelmoraMain",  6120,  900,   540,   540},

    // The file system page.
    {"Tree",                   "PBFileSystem",   120,   120,   4560,  5280},
    {"Pi1",                    "PBFileSystem",   4920,  120,   240,   240,   nullptr, false},
    {"PicSmall",               "PBFileSystem",   4920,  600,   240,   240},
    {"PicLarge",               "PBFileSystem",   5400,  600,   480,   480},

    // The appearance page. The tick box is only the box: Label14 beside it carries the caption.
    {"Picture1",               "PBAppearance",   120,   120,   4200,  900},
    {"Slider",                 "Picture1",       120,   120,   3000,  450},
    {"TxtHorizontal",          "PBAppearance",   120,   1320,  1200,  330},
    {"TxtVertical",            "PBAppearance",   1440,  1320,  1200,  330},
    {"ChkShowShortCut",        "PBAppearance",   120,   1800,  210,   300,   "Show Shortcut Arrow"},
    {"Label14",                "PBAppearance",   480,   1800,  3000,  300,   "Show Shortcut Arrow"},
    {"LblAppearanceMsg",       "PBAppearance",   120,   2280,  7000,  300,
     "Icon Size and Icon Spacing has been blocked in Vista"},
    {"PBDesktop",              "PBAppearance",   4440,  120,   3000,  3000},
    {"Label8",                 nullptr,          0,     0,     0,     0,     "Icon Size"},
    {"Label9",                 nullptr,          0,     0,     0,     0,     "Icon Spacing"},
    {"Label12",                nullptr,          0,     0,     0,     0,     "Spacing"},
    {"Label17",                nullptr,          0,     0,     0,     0,     "Shortcut Overlay"},
    {"LblStatus",              nullptr,          0,     0,     0,     0,     "32x32"},
    {"LblMyComputer",          nullptr,          0,     0,     0,     0,     "My Computer"},
    {"LblMyDocuments",         nullptr,          0,     0,     0,     0,     "My Documents"},
    {"LblRecycleBin",          nullptr,          0,     0,     0,     0,     "Recycle Bin"},

    // The wallpaper page.
    {"TvCollections",          "PBWallpaper",    120,   120,   3000,  2220},
    {"CmdWallpaperControl(0)", "PBWallpaper",    3300,  120,   3000,  300,   "Create a new collection"},
    {"CmdWallpaperControl(1)", "PBWallpaper",    3300,  480,   3000,  300,   "Modify Collection"},
    {"CmdWallpaperControl(2)", "PBWallpaper",    3300,  840,   3000,  300,   "Remove Collection"},
    {"Label13",                "PBWallpaper",    120,   2460,  4000,  255,
     "Double Click Thumbnail to Open"},
    {"picProgress",            "PBWallpaper",    3300,  1320,  4140,  240,   nullptr, false},
    // The thumbnail strip: the window, its scroll bar at the right, the sheet, and the first
    // thumbnail, which the layout of the strip moves to the sheet's corner.
    {"picFrame",               "PBWallpaper",    120,   2760,  7320,  2640},
    {"vsbSlide",               "picFrame",       7065,  0,     255,   2625},
    {"picSlide",               "picFrame",       0,     0,     1200,  1440},
    {.name = "optThumb(0)", .container = "picSlide", .left = 60, .top = 60, .width = 1200,
     .height = 1440, .caption = "", .backColor = 0xFFFFFF},
    {"filHidden",              nullptr,          0,     0,     0,     0,     nullptr, false},
    {"picLoad",                nullptr,          0,     0,     0,     0,     nullptr, false},
    {"picThumb",               nullptr,          0,     0,     960,   960,   nullptr, false},

    // Surfaces that only serve as targets or stores.
    {"PicPopup",               nullptr,          0,     0,     0,     0,     nullptr, false},
    {"ImgPopupWindows",        nullptr,          0,     0,     0,     0,     nullptr, false},
    {"Image2",                 nullptr,          0,     0,     0,     0,     nullptr, false},
    {"PBTempWallpaper",        nullptr,          0,     0,     0,     0,     nullptr, false},
    {"imgTopRow(0)",           nullptr,          0,     0,     0,     0,     nullptr, false},
    {"imgTopRow(1)",           nullptr,          0,     0,     0,     0,     nullptr, false},
    {"imgTopRowHover(0)",      nullptr,          0,     0,     0,     0,     nullptr, false},
    {"imgTopRowHover(1)",      nullptr,          0,     0,     0,     0,     nullptr, false},
};
// clang-format on

}  // namespace

const ui::FormLayout kFrmMainLayout{
    .caption = "Quorvane",
    .width = 11250,
    .height = 8550,
    .border = ui::BorderStyle::None,
    .controls = kControls,
};

}  // namespace quorvane
