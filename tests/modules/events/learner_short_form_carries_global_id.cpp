// Every parameter change of every instance reaches the Learner's destination as one OSC message with one
// float, on a real UDP socket on loopback, in the form "Send OSC" chooses: "Long" with the short name,
// local id and path name, "Compact" with the table index, "Short" with the global id and no module name;
// "Off" sends nothing. A change that the Learner's table makes is sent the same way.
#include <gtest/gtest.h>

#include "LearnerRig.h"
#include "framework/InstanceRegistry.h"

using BR::Test::LearnerTest;
using BR::Test::OscMessage;

namespace {
constexpr int kPort = 7610;

uint32_t GlobalId(BrelCorvaneBase& module) {
    uint32_t l = 0, g = 0;
    BR::InstanceRegistry::PeekInstanceIds(&module, l, g);
    return g;
}
}  // namespace

TEST_F(LearnerTest, EachChangeInTheChosenForm) {
    BR::Test::UdpListener listener(kPort);
    ASSERT_TRUE(listener.Bound());
    auto first = BR::Test::MakeDriver("dc");
    auto dc = BR::Test::MakeDriver("dc");
    auto learner = BR::Test::MakeDriver("learner");
    const std::string destination = "osc.udp://127.0.0.1:" + std::to_string(kPort);
    ASSERT_EQ(learner->Module().SetProperty(64110, destination.c_str(), uint32_t(destination.size() + 1)),
              BR::kNoErr);
    first->Module().ShortName();  // the first DC is asked first: local id 1
    {
        std::lock_guard<std::recursive_mutex> lock(BR::InstanceRegistry::Lock());
        uint32_t l = 0, g = 0;
        BR::InstanceRegistry::GetInstanceIds(&first->Module(), l, g);
    }

    dc->Module().SetTableValue(0, 0.25f);      // "Off": nothing
    learner->Module().SetTableValue(1, 1.0f);  // "Long"; this change is the first one sent
    std::vector<OscMessage> got = listener.Receive(2, 500);
    ASSERT_EQ(got.size(), 1u);
    EXPECT_EQ(got[0].path, "/brel/CRLearner/1/SendOSC");
    EXPECT_EQ(got[0].value, 1.0f);

    dc->Module().SetTableValue(0, 0.5f);
    dc->Module().SetTableValue(11, -20.0f);
    got = listener.Receive(3, 500);
    ASSERT_EQ(got.size(), 2u);
    EXPECT_EQ(got[0].path, "/brel/CRDC/2/OutputPositiveL");
    EXPECT_EQ(got[0].value, 0.5f);
    EXPECT_EQ(got[1].path, "/brel/CRDC/2/SmoothingL");
    EXPECT_EQ(got[1].value, -20.0f);

    learner->Module().SetTableValue(1, 2.0f);  // "Compact"
    dc->Module().SetTableValue(0, 0.75f);
    got = listener.Receive(3, 500);
    ASSERT_EQ(got.size(), 2u);
    EXPECT_EQ(got[0].path, "/brel/CRLearner/1/1");
    EXPECT_EQ(got[1].path, "/brel/CRDC/2/0");
    EXPECT_EQ(got[1].value, 0.75f);

    learner->Module().SetTableValue(1, 3.0f);  // "Short"
    first->Module().SetTableValue(5, 0.125f);
    got = listener.Receive(3, 500);
    ASSERT_EQ(got.size(), 2u);
    EXPECT_EQ(got[0].path, "/brel/" + std::to_string(GlobalId(learner->Module())) + "/1");
    const std::string shortPath = "/brel/" + std::to_string(GlobalId(first->Module())) + "/5";
    EXPECT_EQ(got[1].path, shortPath);
    EXPECT_EQ(got[1].path.find("CR"), std::string::npos);
    EXPECT_EQ(got[1].value, 0.125f);

    // A controller learned onto the second DC: its change goes out as well.
    BR::Test::Learn(*dc, "Output Positive L", *first, {0xB0, 7, 127});
    got = listener.Receive(2, 500);
    ASSERT_EQ(got.size(), 1u);
    EXPECT_EQ(got[0].path, "/brel/" + std::to_string(GlobalId(dc->Module())) + "/0");
    EXPECT_FLOAT_EQ(got[0].value, 1.0f);

    learner->Module().SetTableValue(1, 0.0f);  // "Off"
    dc->Module().SetTableValue(0, 0.5f);
    EXPECT_TRUE(listener.Receive(1, 300).empty());
}

TEST_F(LearnerTest, PathsOfTheThreeFormsForDC) {
    auto dc = BR::Test::MakeDriver("dc");
    std::lock_guard<std::recursive_mutex> lock(BR::InstanceRegistry::Lock());
    char path[128];
    ASSERT_TRUE(BrelCorvaneLearner::BuildPath(&dc->Module(), 0, 1, path, sizeof path));
    EXPECT_STREQ(path, "/brel/CRDC/1/OutputPositiveL");
    ASSERT_TRUE(BrelCorvaneLearner::BuildPath(&dc->Module(), 0, 2, path, sizeof path));
    EXPECT_STREQ(path, "/brel/CRDC/1/0");
    ASSERT_TRUE(BrelCorvaneLearner::BuildPath(&dc->Module(), 0, 3, path, sizeof path));
    EXPECT_EQ(std::string(path), "/brel/" + std::to_string(GlobalId(dc->Module())) + "/0");
    // Outside the paths the long form takes the index too.
    ASSERT_TRUE(BrelCorvaneLearner::BuildPath(&dc->Module(), 40, 1, path, sizeof path));
    EXPECT_STREQ(path, "/brel/CRDC/1/40");
    BrelCorvaneBase* gone = nullptr;
    {
        auto other = BR::Test::MakeDriver("dc");
        gone = &other->Module();
    }
    EXPECT_FALSE(BrelCorvaneLearner::BuildPath(gone, 0, 1, path, sizeof path));
}
