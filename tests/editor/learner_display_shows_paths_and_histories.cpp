// The Learner's display: the three OSC paths and the name of the parameter last touched in any editor,
// the learn hub's last MIDI messages and the Learner's own OSC server's last messages, oldest first.
#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <cstring>
#include <thread>

#include "editor/PanelScreenshot.h"
#include "editor/ZPmanager.h"
#include "editor/widgets/InfoDisplays.h"
#include "framework/InstanceRegistry.h"
#include "framework/MessageQueue.h"
#include "framework/ModuleServices.h"
#include "modules/events/LearnerTable.h"
#include "remote/OSCHelper.h"
#include "remote/RemoteServices.h"
#include "support/EditorRig.h"
#include "tests/support/Render.h"

namespace BR::Test {

namespace {
constexpr int32_t kBasePort = 17430;

// An OSC message with no arguments: the address and the type tag ",", each padded to four bytes.
void SendOSC(int port, const std::string& address) {
    std::string packet = address;
    packet.append(4 - address.size() % 4, '\0');
    packet.append(",\0\0\0", 4);
    const int fd = socket(AF_INET, SOCK_DGRAM, 0);
    sockaddr_in to{};
    to.sin_family = AF_INET;
    to.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    to.sin_port = htons(uint16_t(port));
    sendto(fd, packet.data(), packet.size(), 0, reinterpret_cast<sockaddr*>(&to), sizeof to);
    close(fd);
}

bool WaitFor(const std::function<bool()>& done) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(3);
    while (!done()) {
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

void GiveHub(BrelCorvaneBase& module, uint8_t status, uint8_t channel, uint8_t data1, uint8_t data2) {
    MessageQueueItem item;
    item.kind = kMessageShortMIDI;
    item.status = status;
    item.channel = channel;
    item.dataByte1 = data1;
    item.dataByte2 = data2;
    BrelCorvaneLearner::HandleMIDI(module, item);
}

// Services (OSC server, scripts) for the modules made in one test, and none again after it, so that
// the other editor tests of the process keep their plain modules.
class ServicesScope {
public:
    explicit ServicesScope(int32_t basePort) : previous(GetModuleServicesFactory()) {
        SetOSCBasePortOverride(basePort);
        InstallRemoteServices();
    }
    ~ServicesScope() {
        SetModuleServicesFactory(previous);
        SetOSCBasePortOverride(0);
    }

private:
    ModuleServicesFactory previous;
};

std::string Numbers(BrelCorvaneBase& module, uint32_t& localId, uint32_t& globalId) {
    EXPECT_TRUE(InstanceRegistry::GetInstanceIds(&module, localId, globalId));
    return " " + std::to_string(localId) + " (" + std::to_string(globalId) + ")";
}
}  // namespace

TEST(LearnerInfoDisplay, ShowsTouchedParameterMidiAndOscHistories) {
    ServicesScope services(kBasePort);
    auto learner = MakeDriver("learner");
    ASSERT_TRUE(learner->SetParameterByName("OSC Port Offset", 1));
    auto dc = MakeDriver("dc");
    OSCHelper* osc = OSCHelperOf(learner->Module());
    ASSERT_NE(osc, nullptr);
    ASSERT_TRUE(WaitFor([&] { return osc->ActivePort() == kBasePort + 1; }));

    // A parameter touched in the DC's editor: its paths and name, with the instance's numbers.
    {
        ZPmanager manager(&dc->Module());
        manager.BeginParameterEdit(1);
        manager.EndParameterEdit(1);
    }
    uint32_t localId = 0, globalId = 0;
    const std::string dcName = "Corvane DC" + Numbers(dc->Module(), localId, globalId);

    // Seven messages through the learn hub: the display keeps the last five, oldest first.
    GiveHub(dc->Module(), 0xB0, 0, 1, 2);
    GiveHub(dc->Module(), 0xB0, 0, 3, 4);
    GiveHub(dc->Module(), 0xB0, 1, 7, 100);
    GiveHub(dc->Module(), 0xD0, 2, 64, 0);
    GiveHub(dc->Module(), 0xA0, 15, 60, 90);
    GiveHub(dc->Module(), 0xB0, 3, 74, 0);
    GiveHub(dc->Module(), 0xD0, 0, 127, 0);

    // Seven OSC messages to the Learner's own server: the last five, oldest first.
    for (int i = 1; i <= 7; ++i)
        SendOSC(kBasePort + 1, "/m" + std::to_string(i));
    ASSERT_TRUE(WaitFor([&] { return osc->NumMessages() >= 7; }));

    const LearnerLines lines = LearnerInfoDisplay::BuildLines(&learner->Module());
    EXPECT_EQ(lines.paths[0], "/brel/" + std::to_string(globalId) + "/1");
    EXPECT_EQ(lines.paths[1], "/brel/CRDC/" + std::to_string(localId) + "/1");
    EXPECT_EQ(lines.paths[2], "/brel/CRDC/" + std::to_string(localId) + "/OutputSymmetricL");
    EXPECT_EQ(lines.active, dcName + " Output Symmetric L");

    EXPECT_EQ(lines.midi[0], dcName + " : Ch2 CC7 100");
    EXPECT_EQ(lines.midi[1], dcName + " : Ch3 CP 64");
    EXPECT_EQ(lines.midi[2], dcName + " : Ch16 PP 60");
    EXPECT_EQ(lines.midi[3], dcName + " : Ch4 CC74 0");
    EXPECT_EQ(lines.midi[4], dcName + " : Ch1 CP 127");

    for (int k = 0; k < LearnerLines::kRows; ++k) {
        EXPECT_EQ(lines.osc[k], "[/m" + std::to_string(k + 3) + "]");
    }

    // A closed instance is no longer named: its pointer is never followed. Its messages stay, unnamed.
    dc.reset();
    const LearnerLines after = LearnerInfoDisplay::BuildLines(&learner->Module());
    EXPECT_EQ(after.paths[0], "");
    EXPECT_EQ(after.active, "");
    EXPECT_EQ(after.midi[4], " : Ch1 CP 127");
    EXPECT_EQ(after.osc[4], "[/m7]");
}

TEST(LearnerInfoDisplay, LongOscMessagesAreCutToABoundedLength) {
    ServicesScope services(kBasePort + 2);
    auto learner = MakeDriver("learner");
    ASSERT_TRUE(learner->SetParameterByName("OSC Port Offset", 1));
    OSCHelper* osc = OSCHelperOf(learner->Module());
    ASSERT_TRUE(WaitFor([&] { return osc && osc->ActivePort() == kBasePort + 3; }));
    const std::string address = "/" + std::string(300, 'a');
    SendOSC(kBasePort + 3, address);
    ASSERT_TRUE(WaitFor([&] { return osc->NumMessages() >= 1; }));
    const LearnerLines lines = LearnerInfoDisplay::BuildLines(&learner->Module());
    // The server's text form is "[/aaa...]"; the display keeps its first kMaxText bytes.
    EXPECT_EQ(lines.osc[4], "[" + address.substr(0, LearnerInfoDisplay::kMaxText - 1));
}

namespace {
// Pixels of the values' grey 0.9 (the captions are 0.7) in columns x0..x1 and rows y0..y1 from the top.
int BrightPixels(const PanelPicture& picture, int x0, int x1, int y0, int y1) {
    int count = 0;
    for (int y = y0; y <= y1; ++y)
        for (int x = x0; x <= x1; ++x) {
            const uint8_t* p = &picture.rgb[size_t((y * picture.width + x) * 3)];
            if (p[0] > 200 && p[1] > 200 && p[2] > 200) ++count;
        }
    return count;
}
}  // namespace

// Drawn: the touched parameter's paths stand 150 px right of the captions (x 10), on the first three
// rows; nothing is drawn there before any parameter was touched in a live instance.
TEST(LearnerInfoDisplay, PathsDrawn150PxRightOfTheCaptions) {
    ASSERT_NE(SharedDisplay(), nullptr);
    auto learner = MakeDriver("learner");
    auto draw = [&] {
        ZPmanager manager(&learner->Module());
        manager.SetDesignSize(600, 300);
        manager.SetBannerBounds(0, 0, 0, 0);
        auto* display = new LearnerInfoDisplay(&manager);
        display->SetRect(0, 0, 600, 300);
        manager.rootGroup->Add(display);
        return RenderManager(manager, SharedDisplay(), 4);
    };
    {
        auto dc = MakeDriver("dc");
        ZPmanager toucher(&dc->Module());
        toucher.BeginParameterEdit(0);
        toucher.EndParameterEdit(0);
        dc.reset();  // gone again: its paths are no longer shown
    }
    const PanelPicture none = draw();
    ASSERT_FALSE(none.rgb.empty()) << none.error;
    EXPECT_EQ(BrightPixels(none, 160, 590, 0, 60), 0);

    ZPmanager toucher(&learner->Module());
    toucher.BeginParameterEdit(1);
    toucher.EndParameterEdit(1);
    const PanelPicture touched = draw();
    ASSERT_FALSE(touched.rgb.empty()) << touched.error;
    EXPECT_GT(BrightPixels(touched, 160, 590, 0, 60), 50);
    EXPECT_EQ(BrightPixels(touched, 0, 150, 0, 60), 0);
}

}  // namespace BR::Test
