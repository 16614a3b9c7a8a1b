// "corvane edit STEM": the editor opens in a window of its own while the module renders in real time;
// closing it (here after --seconds) ends the command and writes --state-out; without a display the
// command says so and fails cleanly.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <fstream>

#include "support/EditorRig.h"
#include "tests/support/RunCommand.h"

namespace BR::Test {

TEST(CorvaneEditCommand, ClosingWritesStateOut) {
    const char* display = SharedDisplay();
    ASSERT_NE(display, nullptr);
    const std::string folder = MakeTempFolder();
    setenv("DISPLAY", display, 1);
    // In the sanitizer build the child's GL driver is unloaded with its display before the leak check,
    // which then cannot tell the driver's caches from leaks; the test program itself checks the editor
    // with the driver kept loaded.
    const char* asan = std::getenv("ASAN_OPTIONS");
    setenv("ASAN_OPTIONS", (std::string(asan ? asan : "") + ":detect_leaks=0").c_str(), 1);
    const CommandResult edit = RunCorvane(
        "edit dc --set \"Output Positive L=0.7\" --seconds 1.5 --state-out " + folder + "/dc.state");
    EXPECT_EQ(edit.status, 0) << edit.err;
    EXPECT_EQ(edit.err, "");
    const CommandResult render =
        RunCorvane("render dc --state-in " + folder + "/dc.state --frames 64 --out " + folder + "/dc.wav");
    ASSERT_EQ(render.status, 0) << render.err;
    const CommandResult params = RunCorvane("render dc --frames 64 --out " + folder + "/plain.wav");
    ASSERT_EQ(params.status, 0);
    std::ifstream a(folder + "/dc.wav", std::ios::binary), b(folder + "/plain.wav", std::ios::binary);
    const std::string restored((std::istreambuf_iterator<char>(a)), {}),
        plain((std::istreambuf_iterator<char>(b)), {});
    ASSERT_EQ(restored.size(), plain.size());
    EXPECT_NE(restored, plain);  // the state carried the 0.7
    // The last sample of the left channel is 0.7 as a float.
    float last = 0;
    std::memcpy(&last, restored.data() + restored.size() - 8, 4);
    EXPECT_FLOAT_EQ(last, 0.7f);
    if (asan) {
        setenv("ASAN_OPTIONS", asan, 1);
    } else {
        unsetenv("ASAN_OPTIONS");
    }
}

TEST(CorvaneEditCommand, NoDisplayFailsWithMessage) {
    setenv("DISPLAY", ":4242", 1);
    const CommandResult edit = RunCorvane("edit dc --seconds 1");
    EXPECT_EQ(edit.status, 1);
    EXPECT_NE(edit.err.find("corvane: the editor cannot open: cannot open the X display \":4242\""),
              std::string::npos)
        << edit.err;
    unsetenv("DISPLAY");
    const CommandResult unknown = RunCorvane("edit nosuchmodule --seconds 1");
    EXPECT_EQ(unknown.status, 2);
    EXPECT_NE(unknown.err.find("unknown module \"nosuchmodule\""), std::string::npos);
}

}  // namespace BR::Test
