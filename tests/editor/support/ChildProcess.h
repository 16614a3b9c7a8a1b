// Running the corvane program from an editor test: the leak check of a child under the sanitizers
// is turned off for the child alone.
#pragma once

#include <cstdlib>
#include <string>

namespace BR::Test {

// The GL driver of a child under the sanitizers is unloaded before its leak check, which cannot then tell
// the driver's caches from leaks; the test program itself checks the editor with the driver kept.
struct ChildWithoutLeakCheck {
    ChildWithoutLeakCheck() : saved(std::getenv("ASAN_OPTIONS") ? std::getenv("ASAN_OPTIONS") : "") {
        setenv("ASAN_OPTIONS", (saved + ":detect_leaks=0").c_str(), 1);
    }
    ~ChildWithoutLeakCheck() { setenv("ASAN_OPTIONS", saved.c_str(), 1); }
    std::string saved;
};

}  // namespace BR::Test
