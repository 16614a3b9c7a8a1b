// A live patch under "corvane patch --realtime", driven over loopback by liblo's oscsend, with
// oscdump receiving every reply: /ping, /getAll, /registerUpdate then a change, /set and /get,
// /brel/ by global id, by name with "*" and with two targets, /call, and a malformed packet
// after which the next one is served.
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

TEST(CliRealtimeOSC, LibloToolsDriveALivePatch) {
    const std::string work = BR::Test::MakeTempFolder();
    const std::string script = std::string(CORVANE_TEST_SOURCE_DIR) + "/tests/host/cli/osc_liblo_session.sh";
    const std::string command = "XDG_CONFIG_HOME='" + work + "' XDG_DATA_HOME='" + work + "' bash '" +
                                script + "' \"$CORVANE_BINARY\" 17600 '" + work + "' > '" + work +
                                "/session.log' 2>&1";
    ASSERT_EQ(std::system(command.c_str()), 0);
    std::ifstream in(work + "/session.log");
    std::stringstream s;
    s << in.rdbuf();
    const std::string log = s.str();
    SCOPED_TRACE(log);
    EXPECT_NE(log.find("status 0\n"), std::string::npos);

    const BR::Test::CommandResult params = BR::Test::RunCorvane("params lfo");
    ASSERT_EQ(params.status, 0);
    std::string expected = "/pong ss \"osc.udp://127.0.0.1:17605\" \"Corvane LFO 2.6.1\"\n";
    std::istringstream rows(params.out);
    std::string row;
    int used = 0;
    while (std::getline(rows, row)) {
        std::istringstream fields(row);
        std::string index;
        std::getline(fields, index, '\t');
        const int k = std::stoi(index);  // the table index, which is the OSC id
        std::string name, unit, minimum, maximum, defaultValue;
        std::getline(fields, name, '\t');
        std::getline(fields, unit, '\t');
        std::getline(fields, minimum, '\t');
        std::getline(fields, maximum, '\t');
        std::getline(fields, defaultValue, '\t');
        char line[128];
        std::snprintf(line, sizeof line, "/all if %d %f\n", k, std::stod(defaultValue) + (k == 0 ? 5 : 0));
        expected += line;
        ++used;
    }
    ASSERT_GT(used, 10);
    expected +=
        "/upd if 1 2.500000\n"
        "/got if 1 2.500000\n"
        "/two if 1 3.500000\n"
        "/upd if 1 4.500000\n"
        "/got if 1 4.500000\n"
        "/got if 1 4.500000\n"
        "/upd if 1 1.250000\n"
        "/two if 1 6.750000\n"
        "/sum fs 7.000000 \"sum\"\n"
        "/pong2 ss \"osc.udp://127.0.0.1:17605\" \"Corvane LFO 2.6.1\"\n";
    EXPECT_EQ(Section(log, "dump"), expected);
    EXPECT_NE(Section(log, "out").find("error while parsing message: "), std::string::npos);
    const std::string err = Section(log, "err");
    EXPECT_NE(err.find("corvane: one listens for OSC on port 17605\n"), std::string::npos);
    EXPECT_NE(err.find("corvane: two listens for OSC on port 17606\n"), std::string::npos);
    std::filesystem::remove_all(work);
}
