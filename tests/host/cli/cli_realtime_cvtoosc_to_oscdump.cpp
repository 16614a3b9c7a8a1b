// CV To OSC in "corvane render --realtime", heard by liblo's oscdump on loopback: a ramp with "Max Rate"
// 10 at 48000 gives one value per 19 blocks of 256 (at least 4800 samples apart) until it holds, a
// constant gives one value, and nothing else arrives.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "tests/support/RunCommand.h"

namespace {

std::string Section(const std::string& text, const std::string& name) {
    const size_t start = text.find("-- " + name + "\n");
    if (start == std::string::npos) return "";
    const size_t from = start + name.size() + 4;
    const size_t end = text.find("\n-- ", from);
    return text.substr(from, end == std::string::npos ? std::string::npos : end - from + 1);
}

}  // namespace

TEST(CliRealtimeCVToOSC, OscdumpHearsTheRateLimitedValues) {
    const std::string work = BR::Test::MakeTempFolder();
    const std::string script =
        std::string(CORVANE_TEST_SOURCE_DIR) + "/tests/host/cli/cvtoosc_liblo_session.sh";
    const std::string command = "XDG_CONFIG_HOME='" + work + "' XDG_DATA_HOME='" + work + "' bash '" +
                                script + "' \"$CORVANE_BINARY\" 17810 '" + work + "' > '" + work +
                                "/session.log' 2>&1";
    ASSERT_EQ(std::system(command.c_str()), 0);
    std::ifstream in(work + "/session.log");
    std::stringstream s;
    s << in.rdbuf();
    const std::string log = s.str();
    SCOPED_TRACE(log);
    EXPECT_NE(log.find("status 0\n"), std::string::npos);
    EXPECT_EQ(Section(log, "err"), "corvane: wrote 48000 frames to out.wav\n");  // nothing else

    std::istringstream lines(Section(log, "dump"));
    std::string line;
    std::vector<double> left;
    std::vector<std::string> right;
    while (std::getline(lines, line)) {
        std::istringstream fields(line);
        std::string path, types;
        double value = 0;
        fields >> path >> types >> value;
        EXPECT_EQ(types, "f") << line;
        if (path == "/cv/left") {
            left.push_back(value);
        } else {
            right.push_back(line);
        }
    }
    EXPECT_EQ(right, std::vector<std::string>{"/cv/right f -0.500000"});
    // Sends at the last sample of blocks 0, 19, 38 and 57: frames 255, 5119, 9983 and 14847, the
    // ramp being (frame + 1) / 12000 up to 1 (summed in floats, so within about a sample's step).
    const double expected[] = {256.0 / 12000, 5120.0 / 12000, 9984.0 / 12000, 1.0};
    ASSERT_EQ(left.size(), 4u);
    for (size_t k = 0; k < 4; ++k)
        EXPECT_NEAR(left[k], expected[k], 1e-4) << k;
    for (size_t k = 1; k < 3; ++k)
        EXPECT_GE((left[k] - left[k - 1]) * 12000.0, 4800.0 - 2.0) << k;
    std::filesystem::remove_all(work);
}
