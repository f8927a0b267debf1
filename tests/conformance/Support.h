#pragma once
// What the conformance tests need from the build they run in.
#include <string>

#include "platform/RegistryStore.h"

namespace quorvane::testing {

// A new, empty folder for one test, as a path with a trailing separator.
std::string FreshTempFolder();

// The registry store the tests run against: the portable one natively, the real one under Wine.
platform::RegistryStore& Store();

// Deletes a key with everything under it, through the store's own operations.
void DeleteTree(platform::RegHandle root, const std::string& subKey);

#ifdef _WIN32
// Whether this process can make windows at all: a run of Wine with no display cannot, and the
// cases that show forms then need a virtual screen (scripts/gtest-on-screen.sh).
bool HasScreen();
#endif

}  // namespace quorvane::testing
