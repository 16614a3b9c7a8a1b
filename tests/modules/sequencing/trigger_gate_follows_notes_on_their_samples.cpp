// Gate mode: the output opens on the sample of the matching note-on and closes on the sample of its
// note-off (or note-on with velocity 0), whatever the host block size.
#include <gtest/gtest.h>

#include "tests/support/Render.h"

TEST(TriggerGate, OpensAndClosesOnTheEventSamples) {
    for (uint32_t block : {1u, 7u, 64u, 1024u}) {
        auto driver = BR::Test::MakeDriver("trigger");
        driver->SetParameterByName("Min Voltage", -0.25f);
        driver->SetParameterByName("Max Voltage", 0.75f);
        const auto out = BR::Test::RenderFrames(
            *driver, 1000, block, {},
            {{100, {0x90, 60, 100}}, {300, {0x80, 60, 0}}, {500, {0x90, 60, 1}}, {700, {0x90, 60, 0}}});
        for (size_t i = 0; i < 1000; ++i) {
            const bool open = (i >= 100 && i < 300) || (i >= 500 && i < 700);
            ASSERT_EQ(out[0][i], open ? 0.75f : -0.25f) << "block " << block << " sample " << i;
        }
    }
}
