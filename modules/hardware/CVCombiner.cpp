// CV combiners: per-block settings, the per-sample channel values and streams, and the test signals.
#include "CVCombiner.h"

#include <algorithm>
#include <string>
#include <vector>

namespace {

inline int32_t Whole(float v) {
    if (!(v == v)) return 0;
    return int32_t(std::clamp(v, -1.0e6f, 1.0e6f));
}

}  // namespace

BrelCVCombinerBase::BrelCVCombinerBase(const BR::ModuleConfig& config, const BrelCombinerRows& rowsIn)
    : BrelCorvaneBase(config), rows(rowsIn), dunmore(rowsIn.adaptiveMode >= 0) {}

void BrelCVCombinerBase::InitModule() {
    targetHardware = targetChannel = 0;
    thruPair = -1;
    for (int32_t k = 0; k < kMaxChannels; ++k) {
        inputSelect[k] = -1;
        filterOn[k] = 0;
        offsetCode[k] = 0;
    }
    smuxProof = interfaceCategory = testSignal = 0;
    adaptive = 0;
    cinderStream = BR::CinderStream();
    dunmoreStream = BR::DunmoreStream();
    testCounter = 0;
    warmup = 0;
    coefficients.Design(-1.0, rows.cutoff);
    for (BR::FifthOrderFilter& f : filters) {
        f.SetCoefficients(&coefficients);
        f.Clear();
    }
    BrelCorvaneBase::InitModule();
}

bool BrelCVCombinerBase::BeginBlock(uint32_t frames) {
    if (!BrelCorvaneBase::BeginBlock(frames)) return false;
    if (!RowsChanged()) return true;  // settings depend on rows alone
    targetHardware = std::clamp(Whole(BlockValue(0)), 0, 1);
    targetChannel = std::clamp(Whole(BlockValue(1)), 0, 5);
    thruPair = Whole(BlockValue(rows.inputThru)) - 1;
    for (int32_t k = 0; k < rows.numChannels; ++k) {
        inputSelect[k] = Whole(BlockValue(rows.input1 + k)) - 1;
        const uint8_t on = BlockValue(rows.filter1 + k) != 0.0f ? 1 : 0;
        // Turning a filter on starts it from silence; turning it off keeps its history.
        if (on && !filterOn[k]) filters[k].Clear();
        filterOn[k] = on;
        float o = BlockValue(rows.offset1 + k);
        if (!(o == o)) o = 0.0f;
        o = std::clamp(o, -5.34f, 5.34f);
        offsetCode[k] = int32_t(o * 384.0f);
    }
    smuxProof = BlockValue(rows.smuxProof) != 0.0f ? 1 : 0;
    interfaceCategory = std::clamp(Whole(BlockValue(rows.interfaceCategory)), 0, 1);
    adaptive = dunmore && BlockValue(rows.adaptiveMode) != 0.0f ? 1 : 0;
    testSignal = std::clamp(Whole(BlockValue(rows.testSignal)), 0, 3);
    return true;
}

void BrelCVCombinerBase::ProcessSlice(float** inputs, float** outputs, uint32_t frames) {
    if (frames == 0) return;
    // The Dunmore's first two slices send every channel once, whatever its value.
    if (dunmore && warmup < 2) {
        std::fill(std::begin(dunmoreStream.lastValue), std::end(dunmoreStream.lastValue), 4096);
        ++warmup;
    }
    const float fullScale = BR::FullScale(interfaceCategory);
    float* left = outputs[0];
    float* right = outputs[1];
    if (testSignal != 0) {
        RenderTestSignal(left, right, frames, fullScale);
        return;
    }
    const int32_t n = rows.numChannels;
    const float* source[kMaxChannels];
    for (int32_t k = 0; k < n; ++k) {
        const int32_t sel = inputSelect[k];
        source[k] =
            sel >= 0 && sel < numInputPointers && sel < BR::kMaxModuleChannels ? inputs[sel] : silence;
    }
    const bool thru = thruPair >= 0 && 2 * thruPair + 1 < numInputPointers;
    const float* thruL = thru ? inputs[2 * thruPair] : silence;
    const float* thruR = thru ? inputs[2 * thruPair + 1] : silence;
    // "Ardent" has five lanes: a sixth target channel is no lane, and only thru audio goes out.
    const bool laneValid = targetChannel < BR::TargetLanes(targetHardware);
    const int32_t lane = targetChannel, hardware = targetHardware;
    if (!smuxProof) {
        cinderStream.phase &= ~1;
        dunmoreStream.phase &= ~1;
    }
    const int32_t step = smuxProof ? 1 : 2;
    const bool adapt = adaptive != 0;
    const int32_t* codes = offsetCode;

    uint8_t frame[6] = {};
    float x[kMaxChannels];
    auto value = [&](int32_t c) { return BR::CombinerValue(x[c], codes[c]); };
    for (uint32_t i = 0; i < frames; ++i) {
        // Every filter runs on each sample, whichever channel is being sent.
        for (int32_t k = 0; k < n; ++k) {
            const float in = BR::SanitizeSample(source[k][i]);
            x[k] = filterOn[k] ? filters[k].Process(in) : in;
        }
        const uint8_t byte =
            dunmore ? dunmoreStream.Next(value, step, adapt) : cinderStream.Next(value, step);
        if (laneValid) frame[lane] = byte;
        int32_t wordL, wordR;
        BR::TargetWords(hardware, frame, wordL, wordR);
        if (thru) {
            wordL |= BR::ThruBits(thruL[i], fullScale);
            wordR |= BR::ThruBits(thruR[i], fullScale);
        }
        left[i] = BR::WordToSample(wordL, fullScale);
        right[i] = BR::WordToSample(wordR, fullScale);
    }
    auto& display = status.As<BrelCombinerStatus>();
    std::copy(frame, frame + 6, display.frameBytes);
}

uint8_t BrelCVCombinerBase::NextTestByte() {
    const int32_t c = testCounter;
    if (!dunmore) {
        const int32_t channel = (c >> 1) & 3;
        int32_t value = 0, mask = 0x7FF;
        if (testSignal == 1) {
            value = c >> 3;
            mask = 0x7FFF;
        } else if (testSignal == 2) {
            value = (c * 2) & ~15;
        } else {
            value = (channel * 1024 + ((c * 2) & ~15)) & 0xFFF;
        }
        testCounter = (c + 1) & mask;
        value &= 0xFFF;
        return (c & 1) == 0 ? BR::CinderStream::FirstByte(value)
                            : BR::CinderStream::SecondByte(channel, value);
    }
    const int32_t t = c & 3;
    const int32_t channel = (c >> 2) & 7;
    int32_t value = 0, mask = 0x1FFF;
    if (testSignal == 1) {
        value = c >> 5;
        mask = 0x1FFFF;
    } else if (testSignal == 2) {
        value = (c >> 5) * 16;
    } else {
        value = ((c >> 5) * 16 + (channel << 9)) & 0xFFF;
    }
    testCounter = (c + (t == 2 ? 2 : 1)) & mask;
    return BR::DunmoreStream::Byte(t, channel, value & 0xFFF);
}

void BrelCVCombinerBase::RenderTestSignal(float* left, float* right, uint32_t frames, float fullScale) {
    // A test replaces channels, offsets, filters and thru, and sends a byte on every sample.
    const bool laneValid = targetChannel < BR::TargetLanes(targetHardware);
    uint8_t frame[6] = {};
    for (uint32_t i = 0; i < frames; ++i) {
        const uint8_t byte = NextTestByte();
        if (laneValid) frame[targetChannel] = byte;
        int32_t wordL, wordR;
        BR::TargetWords(targetHardware, frame, wordL, wordR);
        left[i] = BR::WordToSample(wordL, fullScale);
        right[i] = BR::WordToSample(wordR, fullScale);
    }
    auto& display = status.As<BrelCombinerStatus>();
    std::copy(frame, frame + 6, display.frameBytes);
}

int32_t BrelCVCombinerBase::GetParameterValueStrings(int32_t tableIndex, BR::CountedTextList** out) {
    static BR::CountedTextList* hardware = new BR::CountedTextList({"Ardent", "Basalt"});
    static BR::CountedTextList* channels = new BR::CountedTextList({"1", "2", "3", "4", "5", "6"});
    static BR::CountedTextList* category = new BR::CountedTextList({"Cat A", "Cat B"});
    static BR::CountedTextList* thru4 = new BR::CountedTextList({"Off", "1/2", "3/4", "5/6"});
    static BR::CountedTextList* thru8 = new BR::CountedTextList({"Off", "1/2", "3/4", "5/6", "7/8", "9/10"});
    static BR::CountedTextList* inputs6 = new BR::CountedTextList({"Off", "1", "2", "3", "4", "5", "6"});
    static BR::CountedTextList* inputs10 =
        new BR::CountedTextList({"Off", "1", "2", "3", "4", "5", "6", "7", "8", "9", "10"});
    const int32_t k = tableIndex;
    if (k == 0) return BR::HandOutValueStrings(hardware, out);
    if (k == 1) return BR::HandOutValueStrings(channels, out);
    if (k == rows.interfaceCategory) return BR::HandOutValueStrings(category, out);
    if (k == rows.inputThru) return BR::HandOutValueStrings(dunmore ? thru8 : thru4, out);
    if (k >= rows.input1 && k < rows.input1 + rows.numChannels)
        return BR::HandOutValueStrings(dunmore ? inputs10 : inputs6, out);
    return BR::kErrInvalidParameter;
}

uint32_t BrelCVCombinerBase::GetParameterFlags(int32_t tableIndex) {
    return tableIndex == rows.oscPortOffset || tableIndex == rows.testSignal ? BR::kDisplayStringFlag : 0;
}

int32_t BrelCVCombinerBase::GetParameterDisplayString(BR::DisplayStringRequest& request) {
    return OffDisplayString(request, request.index == rows.oscPortOffset || request.index == rows.testSignal,
                            false);
}
