// The host's callback renders every record whose private data names an instance, and skips the rest.
#include <gtest/gtest.h>

#include "tests/support/ProbeModule.h"

using namespace BR::Test;

TEST(AlgorithmCallback, RendersRecordsWithAnInstance) {
    ProbeModule a, b;
    BR::DriverController controller;
    a.Initialize(&controller, nullptr, nullptr);
    b.Initialize(&controller, nullptr, nullptr);
    float in[2][8] = {}, outA[2][8] = {}, outB[2][8] = {};
    float* inputs[2] = {in[0], in[1]};
    float* outputsA[2] = {outA[0], outA[1]};
    float* outputsB[2] = {outB[0], outB[1]};
    int32_t length = 8;
    BrelCorvaneBase* slotA = &a;
    BrelCorvaneBase* empty = nullptr;
    BR::RenderRecord recordA, recordB;
    BR::ResetFieldData(recordA, &slotA);
    BR::ResetFieldData(recordB, &empty);
    EXPECT_EQ(recordA.privateData, &slotA);
    EXPECT_EQ(recordA.bufferLength, nullptr);
    for (BR::RenderRecord* r : {&recordA, &recordB}) {
        r->inputs = inputs;
        r->bufferLength = &length;
    }
    recordA.outputs = outputsA;
    recordB.outputs = outputsB;
    BR::RenderRecord* records[2] = {&recordA, &recordB};
    BR::AlgorithmCallback(records, records + 2);
    EXPECT_EQ(outA[0][7], 0.5f);
    EXPECT_EQ(outB[0][7], 0.0f);
    EXPECT_TRUE(b.calls.empty());
    // Begin above end: nothing happens.
    a.calls.clear();
    BR::AlgorithmCallback(records + 2, records);
    EXPECT_TRUE(a.calls.empty());
}
