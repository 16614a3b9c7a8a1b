// Construction, lifecycle, parameters and the base properties of every module.
#include "BrelCorvaneBase.h"

#include <algorithm>
#include <cstring>

#include "InstanceRegistry.h"
#include "ParameterModel.h"
#include "PreferenceStore.h"

BrelCorvaneBase::BrelCorvaneBase(const BR::ModuleConfig& config)
    : BrelAuBase(uint32_t(config.numParameters), config.parameters),
      numInputPointers(config.numInputs < 1 ? 2 : config.numInputs),
      numInputs(config.numInputs),
      numOutputs(config.numOutputs),
      numPresets(config.numPresets),
      presets(config.presets),
      presetStride(BR::PresetRowBytes(uint32_t(config.numParameters))),
      numParameters(config.numParameters),
      parameters(config.parameters),
      oscPortOffsetIndex(config.oscPortOffsetIndex),
      interfaceCategoryIndex(config.interfaceCategoryIndex),
      numSidechains(config.numSidechains),
      numAuxOutputs(config.numAuxOutputs),
      blockValues(size_t(std::max(config.numParameters, 0)), 0.0f),
      blockChanged(size_t(std::max(config.numParameters, 0) + 1 + 63) / 64, 0) {
    if (BR::ModuleServicesFactory factory = BR::GetModuleServicesFactory()) services = factory(*this);
    std::memset(&status, 0, sizeof status);

    if (interfaceCategoryIndex >= 0 && interfaceCategoryIndex < numParameters) {
        const int32_t category =
            std::clamp(BR::PreferenceStore::GetInt("Default interface category", 0), 0, 1);
        parameters[interfaceCategoryIndex].defaultValue = float(category);
    }
    for (int32_t p = 0; p < numPresets; ++p) {
        BR::PresetDefinition& preset = presets[p];
        for (int32_t k = int32_t(preset.numValues); k < numParameters; ++k)
            preset.values[k] = parameters[k].defaultValue;
    }
    BR::InstanceRegistry::AddInstance(this);
}

BrelCorvaneBase::~BrelCorvaneBase() {
    BR::InstanceRegistry::RemoveInstance(this);
    if (services) services->Stop();
    services.reset();
}

void BrelCorvaneBase::InitModule() {
    MarkAllRowsChanged();
    SetMaxBlockSize(BR::kDefaultMaxBlockSize);
    const int32_t basePortOverride = BR::GetOSCBasePortOverride();
    BR::SetOSCBasePort(basePortOverride > 0 ? basePortOverride
                                            : BR::PreferenceStore::GetInt("OSC Base Port", 7000));
    if (services) services->Start();
}

void BrelCorvaneBase::ShutdownModule() {
    if (services) services->Stop();
}

void BrelCorvaneBase::SetMaxBlockSize(uint32_t frames) {
    silenceBuffer.assign(frames, 0.0f);
    silence = silenceBuffer.data();
    silenceFrames = frames;
    silenceBytes = frames * uint32_t(sizeof(float));
}

bool BrelCorvaneBase::BeginBlock(uint32_t) {
    // RenderAudio has just asked the controller for this block's rate (PollParameters, which it
    // always runs before BeginBlock): the same value, without asking again.
    if (controller) sampleRate = polledSampleRate;
    return true;
}

bool BrelCorvaneBase::RowsChanged(int32_t first, int32_t count) const {
    for (uint32_t p = uint32_t(first + 1), end = uint32_t(first + 1 + count); p < end;) {
        const uint32_t word = p / 64, bit = p % 64;
        const uint32_t span = std::min(64 - bit, end - p);
        const uint64_t mask = (span == 64 ? ~uint64_t(0) : ((uint64_t(1) << span) - 1)) << bit;
        if (blockChanged[word] & mask) return true;
        p += span;
    }
    return false;
}

void BrelCorvaneBase::PollParameters() {
    const uint32_t words = std::min<uint32_t>(NumChangedWords(), uint32_t(blockChanged.size()));
    const uint32_t numObjects = uint32_t(parameterList.size());
    bool any = false;
    for (uint32_t w = 0; w < words; ++w) {
        uint64_t bits = TakeChangedWord(w);
        if (pollAll) bits = ~uint64_t(0);
        if (w == 0) bits &= ~uint64_t(1);  // Master Bypass is read by RenderAudio itself
        blockChanged[w] = bits;
        while (bits) {
            const uint32_t p = w * 64 + uint32_t(__builtin_ctzll(bits));
            bits &= bits - 1;
            if (p >= numObjects || p > uint32_t(numParameters)) {
                blockChanged[w] &= ~(uint64_t(1) << (p % 64));
                continue;
            }
            blockValues[p - 1] = parameterList[p]->GetValueAsFloat();
            any = true;
        }
    }
    pollAll = false;
    anyRowChanged = any;
    if (any) ++parameterReadCount;
}

int32_t BrelCorvaneBase::UpdateParameterNormalizedValue(const std::string& identifier, double normalized) {
    return BrelAuBase::UpdateParameterNormalizedValue(identifier, normalized);
}

void BrelCorvaneBase::ParameterValueChanged(int32_t parameterIndex, float value) {
    const int32_t tableIndex = parameterIndex - 1;
    if (tableIndex == oscPortOffsetIndex && services) {
        const int32_t offset = int32_t(value);
        services->SetOSCPort(offset == 0 ? 0 : BR::GetOSCBasePort() + offset);
    }
    if (services) services->ParameterChanged(tableIndex, value);
    BR::InstanceRegistry::NotifyParameterChanged(this, tableIndex, value);
}

const char* BrelCorvaneBase::ShortName() {
    if (shortName.empty()) {
        // "CR" and the module's own name without blanks: "Corvane DC" gives "CRDC". The name is
        // taken from behind the product name and its blank, not from a fixed character, so that
        // short module names ("DC", "LFO") keep every letter.
        const char* moduleName = GetModuleName();
        const size_t prefix = std::strlen(GetProductName()) + 1;
        shortName = "CR";
        if (std::strlen(moduleName) > prefix)
            for (const char* c = moduleName + prefix; *c; ++c)
                if (*c != ' ') shortName += *c;
    }
    return shortName.c_str();
}

const std::vector<std::string>& BrelCorvaneBase::ParameterPaths() {
    if (parameterPaths.empty() && numParameters > 0) {
        parameterPaths.reserve(size_t(numParameters));
        for (int32_t k = 0; k < numParameters; ++k) {
            std::string path(parameters[k].name);
            path.erase(std::remove(path.begin(), path.end(), ' '), path.end());
            parameterPaths.push_back(std::move(path));
        }
    }
    return parameterPaths;
}

void BrelCorvaneBase::GetParameterValueText(int32_t tableIndex, char* out) {
    out[0] = '\0';
    if (tableIndex < 0 || tableIndex >= numParameters || !GetParameter(tableIndex + 1)) return;
    const float value = GetTableValue(tableIndex);
    const BR::ParameterDefinition& row = parameters[tableIndex];
    auto copyIfShort = [out](const std::string& text) {
        if (text.size() > BR::kMaxValueTextLength) return false;
        std::memcpy(out, text.c_str(), text.size() + 1);
        return true;
    };
    auto displayString = [&]() {
        BR::DisplayStringRequest request{tableIndex, &value, nullptr};
        if (GetParameterDisplayString(request) != BR::kNoErr || !request.text) return false;
        const bool copied = copyIfShort(request.text->Get());
        request.text->Release();
        return copied;
    };

    if (row.unit == BR::kUnitIndexed) {
        BR::CountedTextList* list = nullptr;
        if (GetParameterValueStrings(tableIndex, &list) == BR::kNoErr && list) {
            const auto& names = list->Get();
            const int32_t i = int32_t(value);
            const bool copied = i >= 0 && size_t(i) < names.size() && copyIfShort(names[size_t(i)]);
            list->Release();
            if (copied) return;
        }
        if (displayString()) return;
        std::snprintf(out, 8, "%d", int32_t(value));
        return;
    }
    if (row.unit == BR::kUnitBoolean) {
        std::strcpy(out, value == 0.0f ? "Off" : "On");
        return;
    }
    if (displayString()) return;
    BR::FormatValueNumber(value, out, BR::kValueTextBytes);
}

int32_t BrelCorvaneBase::SetDisplayText(BR::DisplayStringRequest& request, const char* text) {
    request.text = new BR::CountedText(text);
    return BR::kNoErr;
}

float BrelCorvaneBase::DisplayRequestValue(const BR::DisplayStringRequest& request) const {
    return request.value ? *request.value : GetTableValue(request.index);
}

int32_t BrelCorvaneBase::OffDisplayString(BR::DisplayStringRequest& request, bool isOSCPortRow,
                                          bool isSmoothingRow) {
    const float value = DisplayRequestValue(request);
    if (isOSCPortRow && value == 0.0f) return SetDisplayText(request, "Off");
    if (isSmoothingRow && value >= -0.5f && value <= 0.5f) return SetDisplayText(request, "Off");
    return BR::kErrInvalidParameter;
}

int32_t BrelCorvaneBase::GetProperty(uint32_t id, void* data) {
    switch (id) {
        case BR::kPropertySampleRate:
            return BR::PutProperty(data, double(controller ? controller->GetSampleRate() : sampleRate));
        case BR::kPropertyDisplayString: {
            if (!data) return BR::kErrInvalidProperty;
            auto* request = static_cast<BR::DisplayStringRequest*>(data);
            request->text = nullptr;
            if (request->index < 0 || request->index >= numParameters) return BR::kErrInvalidParameter;
            return GetParameterDisplayString(*request);
        }
        case BR::kPropertyStatusBlock:
            return BR::PutProperty(data, &status);
        case BR::kPropertyProductName:
            return BR::PutProperty(data, GetProductName());
        case BR::kPropertyModuleName:
            return BR::PutProperty(data, GetModuleName());
        case BR::kPropertyShortName:
            return BR::PutProperty(data, ShortName());
        case BR::kPropertyParameterPaths:
            return BR::PutProperty(data, &ParameterPaths());
        case BR::kPropertyOSCHelper:
            return BR::PutProperty(data, services ? services->OSCHelperPointer() : nullptr);
        case BR::kPropertyNumTableParameters:
            return BR::PutProperty(data, uint32_t(numTableParameters));
        case BR::kPropertyOSCPortOffset:
            return BR::PutProperty(data, int32_t(GetTableValue(oscPortOffsetIndex)));
        case BR::kPropertyParameterTable:
            return BR::PutProperty(data, static_cast<const BR::ParameterDefinition*>(parameters));
        case BR::kPropertyGuiScriptName:
            return BR::PutProperty(data, GetGuiScriptName());
        case BR::kPropertyIsLearner:
            return BR::PutProperty(data, false);
        case BR::kPropertyReserved64140:
            return BR::PutProperty(data, false);
        default:
            return BR::kErrInvalidProperty;
    }
}

int32_t BrelCorvaneBase::GetPropertyInfo(uint32_t id, uint32_t* size, bool* writable) {
    uint32_t bytes = 0;
    bool canWrite = false;
    switch (id) {
        case BR::kPropertySampleRate:
            bytes = 8;
            break;
        case BR::kPropertyDisplayString:
            bytes = 24;
            break;
        case BR::kPropertyStatusBlock:
        case BR::kPropertyProductName:
        case BR::kPropertyModuleName:
        case BR::kPropertyShortName:
        case BR::kPropertyParameterPaths:
        case BR::kPropertyOSCHelper:
        case BR::kPropertyParameterTable:
        case BR::kPropertyGuiScriptName:
            bytes = 8;
            break;
        case BR::kPropertyNumTableParameters:
        case BR::kPropertyOSCPortOffset:
            bytes = 4;
            break;
        case BR::kPropertyReopenOSC:
            bytes = 1;
            canWrite = true;
            break;
        case BR::kPropertyIsLearner:
        case BR::kPropertyReserved64140:
            bytes = 1;
            break;
        default:
            return BR::kErrInvalidProperty;
    }
    if (size) *size = bytes;
    if (writable) *writable = canWrite;
    return BR::kNoErr;
}

int32_t BrelCorvaneBase::SetProperty(uint32_t id, const void*, uint32_t) {
    if (id == BR::kPropertyReopenOSC) {
        // Re-applying the same value runs the notification path, which reopens the server.
        return SetTableValue(oscPortOffsetIndex, GetTableValue(oscPortOffsetIndex));
    }
    return BR::kErrInvalidProperty;
}
