// Parameter objects, property listeners and the kernel fallback of the plug-in model.
#include "BrelAuBase.h"

#include <algorithm>

BrelAuBase::BrelAuBase(uint32_t numTableParameters_, const BR::ParameterDefinition* parameterTable_)
    : numTableParameters(numTableParameters_), parameterTable(parameterTable_) {}

BrelAuBase::~BrelAuBase() = default;

int32_t BrelAuBase::Initialize(BR::HostController* controller_, BR::HostTransport* transport_,
                               BR::AutomationDelegate* automation_) {
    controller = controller_;
    transport = transport_;
    initialTransport = transport_;
    automation = automation_;
    const int32_t result = EffectInit();
    parametersReady.store(true, std::memory_order_release);
    return result;
}

int32_t BrelAuBase::Uninitialize() {
    parametersReady.store(false, std::memory_order_release);
    masterBypass = nullptr;
    parameterMap.clear();
    parameterList.clear();
    changedWords.reset();
    numChangedWords = 0;
    controller = nullptr;
    transport = nullptr;
    initialTransport = nullptr;
    automation = nullptr;
    return BR::kNoErr;
}

BR::Parameter* BrelAuBase::FindParameter(const std::string& identifier) const {
    auto it = parameterMap.find(identifier);
    return it == parameterMap.end() ? nullptr : it->second;
}

int32_t BrelAuBase::GetParameterIndex(const std::string& identifier) const {
    for (size_t i = 0; i < parameterList.size(); ++i)
        if (parameterList[i]->Identifier() == identifier) return int32_t(i);
    return -1;
}

void BrelAuBase::AddParameterObject(std::unique_ptr<BR::Parameter> parameter) {
    parameterMap.emplace(parameter->Identifier(), parameter.get());
    parameterList.push_back(std::move(parameter));
}

int32_t BrelAuBase::EffectInit() {
    const int32_t outputChannels = controller ? BR::StemChannelCount(controller->GetOutputStemFormat()) : 0;
    for (int32_t channel = 0; channel < outputChannels; ++channel) {
        void* kernel = CreateChannelKernel(channel);
        if (!kernel) break;
        kernels.push_back(kernel);
    }

    auto bypass = std::make_unique<BR::Parameter>(MasterBypassIdentifier(), "Master Bypass",
                                                  BR::Parameter::Kind::Boolean, 0.0f, 1.0f, 0.0f);
    masterBypass = bypass.get();
    AddParameterObject(std::move(bypass));

    for (uint32_t k = 0; k < numTableParameters; ++k) {
        const BR::ParameterDefinition& row = parameterTable[k];
        std::string identifier(row.name);
        if (identifier.size() >= 32) identifier.resize(31);
        if (FindParameter(identifier)) continue;  // a repeated name is skipped
        AddParameterObject(std::make_unique<BR::Parameter>(identifier, row.name, BR::Parameter::Kind::Float,
                                                           row.minimum, row.maximum, row.defaultValue));
    }
    // Every parameter starts out changed, so that the first block reads them all.
    numChangedWords = uint32_t((parameterList.size() + 63) / 64);
    changedWords = std::make_unique<std::atomic<uint64_t>[]>(numChangedWords);
    for (size_t p = 0; p < parameterList.size(); ++p)
        changedWords[p / 64].fetch_or(uint64_t(1) << (p % 64), std::memory_order_relaxed);
    return BR::kNoErr;
}

int32_t BrelAuBase::UpdateParameterNormalizedValue(const std::string& identifier, double normalized) {
    BR::Parameter* parameter = FindParameter(identifier);
    if (!parameter) return BR::kErrUnknownParameter;
    ApplyParameterValue(parameter, GetParameterIndex(identifier), parameter->ValueFromNormalized(normalized));
    return BR::kNoErr;
}

int32_t BrelAuBase::SetParameterValue(int32_t parameterIndex, float value) {
    BR::Parameter* parameter = GetParameter(parameterIndex);
    if (!parameter) return BR::kErrUnknownParameter;
    ApplyParameterValue(parameter, parameterIndex, value);
    return BR::kNoErr;
}

int32_t BrelAuBase::StoreParameterValue(int32_t parameterIndex, float value) {
    BR::Parameter* parameter = GetParameter(parameterIndex);
    if (!parameter) return BR::kErrUnknownParameter;
    StoreValue(parameter, parameterIndex, value);
    return BR::kNoErr;
}

void BrelAuBase::NotifyParameterValue(int32_t parameterIndex) {
    BR::Parameter* parameter = GetParameter(parameterIndex);
    // Master Bypass (index 0) never reaches the OSC helper or the notification receivers.
    if (!parameter || parameterIndex <= 0) return;
    ParameterValueChanged(parameterIndex, parameter->GetValueAsFloat());
}

void BrelAuBase::StoreValue(BR::Parameter* parameter, int32_t parameterIndex, float value) {
    parameter->SetValue(value);
    if (parameterIndex >= 0 && uint32_t(parameterIndex) / 64 < numChangedWords)
        changedWords[size_t(parameterIndex) / 64].fetch_or(uint64_t(1) << (parameterIndex % 64),
                                                           std::memory_order_release);
    parameter->MarkDirty();
    if (automation) automation->PostDirtyParameter(parameter->Identifier());
    ++numChanges;
}

void BrelAuBase::ApplyParameterValue(BR::Parameter* parameter, int32_t parameterIndex, float value) {
    StoreValue(parameter, parameterIndex, value);
    // Master Bypass (index 0) never reaches the OSC helper or the notification receivers.
    if (parameterIndex <= 0) return;
    ParameterValueChanged(parameterIndex, parameter->GetValueAsFloat());
}

void BrelAuBase::ParameterValueChanged(int32_t, float) {}

void BrelAuBase::RenderAudio(BR::RenderRecord* record) {
    // Fallback for a class with per-channel kernels; no module has any, so it only checks and returns.
    if (!record || !controller) return;
    const int32_t outputChannels = BR::StemChannelCount(controller->GetOutputStemFormat());
    if (outputChannels != int32_t(kernels.size())) return;
}

void* BrelAuBase::CreateChannelKernel(int32_t) {
    return nullptr;
}

int32_t BrelAuBase::GetParameterValueStrings(int32_t, BR::CountedTextList**) {
    return BR::kErrInvalidParameter;
}

int32_t BrelAuBase::AddPropertyListener(uint32_t id, BR::PropertyListenerCallback callback, void* userData) {
    if (propertyListeners.capacity() == 0) propertyListeners.reserve(32);
    propertyListeners.push_back({id, callback, userData});
    return BR::kNoErr;
}

int32_t BrelAuBase::RemovePropertyListener(uint32_t id, BR::PropertyListenerCallback callback,
                                           void* userData) {
    auto it =
        std::find_if(propertyListeners.begin(), propertyListeners.end(), [&](const PropertyListener& l) {
            return l.propertyId == id && l.callback == callback && l.userData == userData;
        });
    if (it == propertyListeners.end()) return BR::kErrInvalidProperty;
    propertyListeners.erase(it);
    return BR::kNoErr;
}

int32_t BrelAuBase::SetPropertyAndNotify(uint32_t id, const void* data, uint32_t size) {
    const int32_t result = SetProperty(id, data, size);
    if (result != BR::kNoErr) return result;
    for (const PropertyListener& listener : propertyListeners)
        if (listener.propertyId == id) listener.callback(listener.userData, this, id);
    return result;
}
