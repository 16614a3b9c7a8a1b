// Renders CV To MIDI through the host driver and records every message it sends, with its frame.
#pragma once

#include <vector>

#include "modules/events/CVToMIDI.h"
#include "tests/support/Render.h"

namespace BR::Test {

struct SentMessage {
    uint32_t frame;
    uint8_t status, data1, data2;
    bool operator==(const SentMessage&) const = default;
};

struct CVToMIDIRig {
    std::unique_ptr<HostDriver> driver;
    std::vector<SentMessage> sent;
    uint32_t blockStart = 0;

    explicit CVToMIDIRig(float rate = 44100.0f) : driver(MakeDriver("cvtomidi", rate)) {
        Module().SetMessageTap(
            [](void* context, uint32_t frame, uint8_t s, uint8_t a, uint8_t b) {
                auto* rig = static_cast<CVToMIDIRig*>(context);
                rig->sent.push_back({rig->blockStart + frame, s, a, b});
            },
            this);
    }
    BrelCorvaneCVToMIDI::BrelCorvane& Module() {
        return static_cast<BrelCorvaneCVToMIDI::BrelCorvane&>(driver->Module());
    }
    void Set(const char* name, float value) { EXPECT_TRUE(driver->SetParameterByName(name, value)) << name; }
    // Renders the inputs in blocks of `block`; frames of `sent` count from the first render.
    void Render(const std::vector<float>& left, const std::vector<float>& right, uint32_t block = 64) {
        for (uint32_t done = 0; done < left.size(); done += block) {
            const uint32_t n = std::min<uint32_t>(block, uint32_t(left.size()) - done);
            const std::vector<float> l(left.begin() + done, left.begin() + done + n);
            const std::vector<float> r(right.begin() + done, right.begin() + done + n);
            RenderFrames(*driver, n, n, {l, r});
            blockStart += n;
        }
    }
};

}  // namespace BR::Test
