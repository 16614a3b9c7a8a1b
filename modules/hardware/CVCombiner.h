// The CV combiners' shared body: channel values from inputs, filters and offsets, the Cinder or
// Dunmore byte stream in one lane of the target's frame, test signals, thru and the status bytes.
#pragma once

#include "CombinerStream.h"
#include "LowpassDesign.h"
#include "framework/BrelCorvaneBase.h"
#include "framework/PropertyData.h"

// Where each group of rows starts in a combiner's table, and its shape.
struct BrelCombinerRows {
    int32_t numChannels;  // 4 (Cinder) or 8 (Dunmore)
    int32_t offset1;
    int32_t oscPortOffset;
    int32_t testSignal;
    int32_t inputThru;
    int32_t input1;
    int32_t filter1;
    int32_t smuxProof;
    int32_t interfaceCategory;
    int32_t adaptiveMode;  // -1 for the Cinder, which has no such row
    int32_t numInputs;     // choices of "Input n" besides "Off"
    float cutoff;          // of the shared filter, as a fraction of the sample rate
};

struct BrelCombinerStatus {
    uint8_t frameBytes[6];
};

class BrelCVCombinerBase : public BrelCorvaneBase {
public:
    static constexpr int32_t kMaxChannels = 8;

    BrelCVCombinerBase(const BR::ModuleConfig& config, const BrelCombinerRows& rows);

    int32_t GetParameterValueStrings(int32_t tableIndex, BR::CountedTextList** out) override;
    void InitModule() override;
    bool BeginBlock(uint32_t frames) override;
    void ProcessSlice(float** inputs, float** outputs, uint32_t frames) override;
    uint32_t GetParameterFlags(int32_t tableIndex) override;
    int32_t GetParameterDisplayString(BR::DisplayStringRequest& request) override;

    int32_t Phase() const { return dunmore ? dunmoreStream.phase : cinderStream.phase; }
    int32_t Latched() const { return dunmore ? dunmoreStream.latched : cinderStream.latched; }
    int32_t LastValue(int32_t channel) const { return dunmoreStream.lastValue[channel]; }
    int32_t Warmup() const { return warmup; }
    int32_t TestCounter() const { return testCounter; }
    const BR::LowpassCoefficients<5>& Coefficients() const { return coefficients; }

private:
    void RenderTestSignal(float* left, float* right, uint32_t frames, float fullScale);
    uint8_t NextTestByte();

    const BrelCombinerRows rows;
    const bool dunmore;

    int32_t targetHardware = 0;
    int32_t targetChannel = 0;
    int32_t thruPair = -1;
    int32_t inputSelect[kMaxChannels] = {};
    uint8_t filterOn[kMaxChannels] = {};
    int32_t offsetCode[kMaxChannels] = {};  // trunc(offset * 384)
    int32_t smuxProof = 0;
    int32_t interfaceCategory = 0;
    uint8_t adaptive = 0;
    int32_t testSignal = 0;

    BR::CinderStream cinderStream;    // `phase` and `latched` of the Cinder, kept across blocks
    BR::DunmoreStream dunmoreStream;  // the same, with `lastValue`, of the Dunmore
    int32_t testCounter = 0;
    int32_t warmup = 0;

    BR::LowpassCoefficients<5> coefficients;
    BR::FifthOrderFilter filters[kMaxChannels];
};
