#pragma once
// The driving library (tests/driving), which the benchmarks share: its names are the end-to-end
// cases' own.
#include "driving/Controls.h"
#include "driving/Processes.h"
#include "driving/Program.h"
#include "driving/Verdict.h"

namespace quorvane::e2e {
using namespace quorvane::driving;
}  // namespace quorvane::e2e
