#pragma once
// Fills the five catalogue trees of the main window with their nodes.

namespace quorvane {

// In the order TvDesktop, TvStartMenu, TvExplore, TvFileType, TvControlPanel: each node at top
// level with its text and its image as image and selected image, then its Tag set to the image
// number, and node 1 of each tree selected when the tree is full. Expects empty trees; a second
// run without emptying them adds every node twice. Failures go up to the load routine.
void FillCatalogueTrees();

}  // namespace quorvane
