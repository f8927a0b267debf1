#pragma once
// FrmWorking: the small busy window shown while icons are written. It shows the design's picture
// and has no routine of its own; the hourglass stands over it. It is shown without blocking,
// owned by the main window, and unloaded when the write is done.
#include "ui/Form.h"
#include "ui/Layout.h"

namespace quorvane {

class FrmWorking : public ui::Form {
 public:
  // The design's picture (the program's bitmap 173) is taken when the form is made, and the
  // window fits it.
  FrmWorking();
};

// The busy window as the program knows it by its name: one instance for the life of the
// process. Unloading it keeps the object; showing it again loads it anew.
FrmWorking& WorkingWindow();

}  // namespace quorvane
