// "corvane live FILE.json --edit NAME": the named instance's editor opens in a window of its own,
// titled after the instance and its module, while the patch runs live (here on the clock driver);
// the run ends on --seconds with status 0 and its state saved. Without a display the patch runs on
// without the editor and says why.
#include <gtest/gtest.h>
// After the test framework: Xlib's macros (None) clash with its names.
#include <X11/Xlib.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <thread>

#include "support/EditorRig.h"
#include "tests/support/RunCommand.h"

namespace BR::Test {

namespace {

bool HasWindowNamed(Display* display, Window window, const std::string& name) {
    char* title = nullptr;
    if (XFetchName(display, window, &title) && title) {
        const bool same = name == title;
        XFree(title);
        if (same) return true;
    }
    Window root = 0, parent = 0, *children = nullptr;
    unsigned count = 0;
    if (!XQueryTree(display, window, &root, &parent, &children, &count)) return false;
    bool found = false;
    for (unsigned k = 0; k < count && !found; ++k)
        found = HasWindowNamed(display, children[k], name);
    if (children) XFree(children);
    return found;
}

}  // namespace

TEST(CorvaneLiveEdit, OpensTheInstanceEditorWhileThePatchRuns) {
    const char* display = SharedDisplay();
    ASSERT_NE(display, nullptr);
    const std::string folder = MakeTempFolder();
    std::ofstream(folder + "/p.json") << R"({"instances": [{"name": "lfo", "module": "lfo"},
      {"name": "d", "module": "dc", "set": {"Output Positive L": 0.4}, "state": "d.state"}]})";
    setenv("DISPLAY", display, 1);
    const char* asan = std::getenv("ASAN_OPTIONS");
    setenv("ASAN_OPTIONS", (std::string(asan ? asan : "") + ":detect_leaks=0").c_str(), 1);
    CommandResult live;
    std::thread run(
        [&] { live = RunCorvane("live " + folder + "/p.json --driver clock --edit d --seconds 5"); });
    Display* x = XOpenDisplay(display);
    ASSERT_NE(x, nullptr);
    bool seen = false;
    const auto end = std::chrono::steady_clock::now() +
                     std::chrono::milliseconds(4800);  // a loaded machine can be slow to open it
    while (!seen && std::chrono::steady_clock::now() < end) {
        seen = HasWindowNamed(x, DefaultRootWindow(x), "corvane d (Corvane DC)");
        if (!seen) std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    XCloseDisplay(x);
    run.join();
    EXPECT_TRUE(seen) << live.err;
    EXPECT_EQ(live.status, 0) << live.err;
    EXPECT_NE(live.err.find("corvane: the editor of \"d\" is open\n"), std::string::npos) << live.err;
    EXPECT_NE(live.err.find("corvane: --seconds: stopped after"), std::string::npos) << live.err;
    EXPECT_TRUE(std::filesystem::exists(folder + "/d.state"));

    setenv("DISPLAY", ":4242", 1);
    live = RunCorvane("live " + folder + "/p.json --driver clock --edit d --seconds 0.5");
    EXPECT_EQ(live.status, 0) << live.err;
    EXPECT_NE(live.err.find("corvane: the editor cannot open: cannot open the X display \":4242\""),
              std::string::npos)
        << live.err;
    unsetenv("DISPLAY");
    if (asan) {
        setenv("ASAN_OPTIONS", asan, 1);
    } else {
        unsetenv("ASAN_OPTIONS");
    }
    std::filesystem::remove_all(folder);
}

}  // namespace BR::Test
