// CV To OSC: parameter table, block settings, the per-slice threshold test, target and paths.
#include "CVToOSC.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "framework/OSCTransmit.h"
#include "framework/PropertyData.h"
#include "framework/StateChunkStore.h"

namespace BrelCorvaneCVToOSC {

namespace {

BR::ParameterDefinition parameterTable[kNumParameters] = {
    {"OSC Port Offset", BR::kUnitIndexed, 0, 100, 0},
    {"Enable L", BR::kUnitBoolean, 0, 1, 0},
    {"Threshold L", BR::kUnitPercent, 0, 1, 0.1f},
    {"Max Rate L", BR::kUnitFrequency, 10, 1000, 1000},
    {"Enable R", BR::kUnitBoolean, 0, 1, 0},
    {"Threshold R", BR::kUnitPercent, 0, 1, 0.1f},
    {"Max Rate R", BR::kUnitFrequency, 10, 1000, 1000},
};

float defaultsValues[kNumParameters];
BR::PresetDefinition presetTable[] = {{"Defaults", 0, defaultsValues}};

constexpr BR::ModuleConfig kConfig{2, 2, 0, 0, kOSCPortOffset, 1, presetTable, kNumParameters, parameterTable,
                                   -1};

constexpr char kPrefix[] = "osc.udp://";

std::string PropertyText(const void* data, uint32_t size) {
    const char* text = static_cast<const char*>(data);
    return std::string(text, strnlen(text, size));
}

}  // namespace

TargetText ParseTarget(const std::string& text) {
    TargetText target;
    std::string rest = text.rfind(kPrefix, 0) == 0 ? text.substr(sizeof kPrefix - 1) : text;
    const size_t colon = rest.find(':');
    if (colon != std::string::npos) {
        // A decimal number behind the ":"; no digits read as 0, which no socket accepts.
        const long port = std::strtol(rest.c_str() + colon + 1, nullptr, 10);
        target.port = int32_t(std::clamp<long>(port, -1, 65536));
        rest.resize(colon);
    }
    target.host = rest;
    return target;
}

BrelCorvane::BrelCorvane() : BrelCorvaneBase(kConfig) {
    BrelCorvane::InitModule();
}

BrelCorvane::~BrelCorvane() {
    sender.Stop();
}

void BrelCorvane::InitModule() {
    for (int c = 0; c < 2; ++c) {
        settings[c] = ChannelSettings();
        state[c] = ChannelState();
    }
    SetTarget(kDefaultTarget);
    sender.Start();
    BrelCorvaneBase::InitModule();
}

void BrelCorvane::ShutdownModule() {
    sender.Stop();
    BrelCorvaneBase::ShutdownModule();
}

void BrelCorvane::SetTarget(const std::string& text) {
    targetText = text;
    const TargetText target = ParseTarget(text);
    uint32_t address = 0;
    BR::OSCTransmitter* transmitter = BR::GetOSCTransmitter();
    const bool resolved = transmitter && transmitter->ResolveHost(target.host.c_str(), address);
    sender.SetTarget(address, target.port, resolved);
}

bool BrelCorvane::BeginBlock(uint32_t frames) {
    if (!BrelCorvaneBase::BeginBlock(frames)) return false;
    if (!RowsChanged()) return true;
    // "Threshold" and "Max Rate" are read for a channel that is off as well.
    for (int c = 0; c < 2; ++c) {
        const int32_t row = c * kRowsPerChannel;
        settings[c].enable = BlockValue(row + kEnableL) >= 0.5f;
        settings[c].threshold = BlockValue(row + kThresholdL) * 0.01f;
        const float rate = std::max(BlockValue(row + kMaxRateL), 1.0f);
        settings[c].minInterval = int32_t(sampleRate / rate);
    }
    return true;
}

void BrelCorvane::ProcessSlice(float** inputs, float** outputs, uint32_t frames) {
    for (int32_t c = 0; c < 2; ++c) {
        const float* x = inputs[c];
        float* y = outputs[c];
        if (!settings[c].enable || frames == 0) {
            if (y != x) std::memcpy(y, x, frames * sizeof(float));
            continue;
        }
        ChannelState& st = state[c];
        st.countdown -= std::min(int32_t(frames), st.countdown);
        const float low = st.lastSent - settings[c].threshold;
        const float high = st.lastSent + settings[c].threshold;
        if (y != x) std::memcpy(y, x, frames * sizeof(float));
        // The whole slice is tested, though the value sent is its last sample. Whether any sample
        // lies outside is all that counts; a read-only loop with no branch vectorises.
        uint32_t outside = 0;
        for (uint32_t i = 0; i < frames; ++i)
            outside |= uint32_t(x[i] < low) | uint32_t(x[i] > high);
        const float last = x[frames - 1];
        // A NaN last sample is not sent: as `lastSent` it would make every later test fail, and the
        // channel would never report again.
        if (st.countdown > 0 || outside == 0 || last != last) continue;
        st.lastSent = last;
        st.countdown = settings[c].minInterval;
        sender.Post(c, last);  // a full ring loses the value; the state above moves all the same
    }
}

uint32_t BrelCorvane::GetParameterFlags(int32_t tableIndex) {
    return tableIndex == kOSCPortOffset ? BR::kDisplayStringFlag : 0;
}

int32_t BrelCorvane::GetParameterDisplayString(BR::DisplayStringRequest& request) {
    return OffDisplayString(request, request.index == kOSCPortOffset, false);
}

int32_t BrelCorvane::GetParameterValueStrings(int32_t, BR::CountedTextList**) {
    return BR::kErrInvalidParameter;
}

int32_t BrelCorvane::GetProperty(uint32_t id, void* data) {
    switch (id) {
        case kPropertyTarget:
            return BR::PutProperty(data, targetText.c_str());
        case kPropertyPathL:
        case kPropertyPathR:
            return BR::PutProperty(data, sender.Path(int32_t(id - kPropertyPathL)));
        default:
            return BrelCorvaneBase::GetProperty(id, data);
    }
}

int32_t BrelCorvane::GetPropertyInfo(uint32_t id, uint32_t* size, bool* writable) {
    size_t length = 0;
    switch (id) {
        case kPropertyTarget:
            length = targetText.size();
            break;
        case kPropertyPathL:
        case kPropertyPathR:
            length = std::strlen(sender.Path(int32_t(id - kPropertyPathL)));
            break;
        default:
            return BrelCorvaneBase::GetPropertyInfo(id, size, writable);
    }
    if (size) *size = uint32_t(length + 1);
    if (writable) *writable = true;
    return BR::kNoErr;
}

int32_t BrelCorvane::SetProperty(uint32_t id, const void* data, uint32_t size) {
    switch (id) {
        case kPropertyTarget:
            if (!data) return BR::kErrInvalidProperty;
            SetTarget(PropertyText(data, size));
            return BR::kNoErr;
        case kPropertyPathL:
        case kPropertyPathR:
            if (!data) return BR::kErrInvalidProperty;
            sender.SetPath(int32_t(id - kPropertyPathL), static_cast<const char*>(data), size);
            return BR::kNoErr;
        default:
            return BrelCorvaneBase::SetProperty(id, data, size);
    }
}

void BrelCorvane::SaveExtraChunks(BR::StateChunkStore& store) {
    store.Add(kTagTarget, targetText.c_str(), uint32_t(targetText.size() + 1));
    for (int32_t c = 0; c < 2; ++c) {
        const char* path = sender.Path(c);
        store.Add(c == 0 ? kTagPathL : kTagPathR, path, uint32_t(std::strlen(path) + 1));
    }
}

void BrelCorvane::LoadExtraChunks(const BR::StateChunkStore& store) {
    const std::pair<uint32_t, uint32_t> entries[] = {
        {kTagTarget, kPropertyTarget}, {kTagPathL, kPropertyPathL}, {kTagPathR, kPropertyPathR}};
    for (const auto& [tag, property] : entries) {
        BR::StateChunkStore::Blob blob;
        if (!store.Find(tag, blob) || !blob.data) continue;
        const std::string text = PropertyText(blob.data, blob.length);
        SetPropertyAndNotify(property, text.c_str(), uint32_t(text.size() + 1));
    }
}

BrelCorvaneBase* Create() {
    return new BrelCorvane;
}

}  // namespace BrelCorvaneCVToOSC
