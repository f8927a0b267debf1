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

    // The appearance page: the size on the left (the slider stands in Picture1, which gives it
    // a white background), the spacings under it, then the shortcut overlay; the preview of the
    // desktop on the right. The tick box is only the box: Label14 beside it carries the caption.
    {.name = "Label8", .container = "PBAppearance", .left = 120, .top = 120, .width = 3400,
     .height = 270, .caption = "Icon Size", .fontSize = 9, .fontBold = true, .foreColor = kTitle},
    {"Picture1",               "PBAppearance",   120,   420,   3300,  1020},
    {"Slider",                 "Picture1",       0,     0,     3300,  540},
    {"LblSmall",               "Picture1",       120,   660,   1200,  255,   "Small"},
    {"LblLarge",               "Picture1",       2760,  660,   540,   255,   "Large"},
    {.name = "LblStatus", .container = "Picture1", .left = 1260, .top = 660, .width = 900,
     .height = 255, .caption = "32x32", .fontBold = true, .foreColor = kSubtitle},
    {.name = "Label9", .container = "PBAppearance", .left = 120, .top = 1560, .width = 3400,
     .height = 270, .caption = "Icon Spacing", .fontSize = 9, .fontBold = true,
     .foreColor = kTitle},
    {"LblHorizontal",          "PBAppearance",   120,   1950,  1300,  255,   "Horizontal"},
    {"TxtHorizontal",          "PBAppearance",   1440,  1905,  1200,  330},
    {"LblVertical",            "PBAppearance",   120,   2400,  1300,  255,   "Vertical"},
    {"TxtVertical",            "PBAppearance",   1440,  2355,  1200,  330},
    {.name = "Label17", .container = "PBAppearance", .left = 120, .top = 3000, .width = 3400,
     .height = 270, .caption = "Shortcut Overlay", .fontSize = 9, .fontBold = true,
     .foreColor = kTitle},
    {"ChkShowShortCut",        "PBAppearance",   120,   3360,  210,   300,   "Show Shortcut Arrow"},
    {"Label14",                "PBAppearance",   420,   3390,  3000,  255,   "Show Shortcut Arrow"},
    {.name = "LblAppearanceMsg", .container = "PBAppearance", .left = 120, .top = 4020,
     .width = 3600, .height = 600, .caption = "Icon Size and Icon Spacing has been blocked in Vista",
     .fontBold = true, .foreColor = 0x2D3BB0},
    {"Label12",                nullptr,          0,     0,     0,     0,     "Spacing", false},
    // The preview: the desktop's own background with three icons, at the design's spacing
    // (82 across, 43 down) and size (32); the routines of the page move them from there.
    {"PBDesktop",              "PBAppearance",   3900,  120,   3675,  5295},
    {"ImgMyComputer",          "PBDesktop",      615,   150,   480,   480},
    {"ImgMyDocuments",         "PBDesktop",      2175,  150,   480,   480},
    {"ImgRecycleBin",          "PBDesktop",      615,   1290,  480,   480},
    {.name = "LblMyComputer", .container = "PBDesktop", .left = 274, .top = 645, .width = 1500,
     .height = 255, .caption = "My Computer", .foreColor = 0xFFFFFF},
    {.name = "LblMyDocuments", .container = "PBDesktop", .left = 2010, .top = 645, .width = 1500,
     .height = 255, .caption = "My Documents", .foreColor = 0xFFFFFF},
    {.name = "LblRecycleBin", .container = "PBDesktop", .left = 274, .top = 1845, .width = 1500,
     .height = 255, .caption = "Recycle Bin", .foreColor = 0xFFFFFF},

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
