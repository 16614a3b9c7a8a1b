// The generic property-and-parameter plug-in model beneath every module: parameter objects built
// from the table, numbered properties with listeners, and the host pointers kept at Initialize.
#pragma once

#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "BrelParameter.h"
#include "BrelTypes.h"
#include "HostInterfaces.h"
#include "ParameterDefinition.h"
#include "RenderRecord.h"

class BrelAuBase;

namespace BR {
// Property 33: the text of a parameter value. 24 bytes, as the host passes it.
struct DisplayStringRequest {
    int32_t index;       // table index
    const float* value;  // value to describe, or null for the current one
    CountedText* text;   // out: one reference for the caller
};
static_assert(sizeof(DisplayStringRequest) == 24);

using PropertyListenerCallback = void (*)(void* userData, ::BrelAuBase* instance, uint32_t propertyId);
}  // namespace BR

class BrelAuBase {
public:
    BrelAuBase(uint32_t numTableParameters, const BR::ParameterDefinition* parameterTable);
    virtual ~BrelAuBase();
    BrelAuBase(const BrelAuBase&) = delete;
    BrelAuBase& operator=(const BrelAuBase&) = delete;

    // Platform part: keeps the host's objects and builds the parameter objects.
    int32_t Initialize(BR::HostController* controller, BR::HostTransport* transport,
                       BR::AutomationDelegate* automation);
    int32_t Uninitialize();
    // True from the end of Initialize to Uninitialize: the parameter objects are all built and stay.
    // Other threads that reach this instance through the registry (an OSC /brel/ path, a script's
    // setOthersParameter) look at it first, since an instance is listed from its construction on.
    bool ParametersReady() const { return parametersReady.load(std::memory_order_acquire); }

    // Parameter list queries, bounds-checked: an index outside the list gives no object.
    int32_t GetNumberOfParameters() const { return int32_t(parameterList.size()); }
    BR::Parameter* GetParameter(int32_t parameterIndex) const {
        if (parameterIndex < 0 || parameterIndex >= int32_t(parameterList.size())) return nullptr;
        return parameterList[size_t(parameterIndex)].get();
    }
    BR::Parameter* FindParameter(const std::string& identifier) const;
    int32_t GetParameterIndex(const std::string& identifier) const;  // -1 when unknown
    static const char* MasterBypassIdentifier() { return "MasterBypassID"; }

    // The one route along which a new value enters; `normalized` is on the linear taper.
    virtual int32_t UpdateParameterNormalizedValue(const std::string& identifier, double normalized);
    // The float setter: the same route with a value in the row's units, kept exact (no taper round trip).
    int32_t SetParameterValue(int32_t parameterIndex, float value);
    // SetParameterValue in two halves, for a host that takes values on its audio thread: Store sets the
    // object (atomic, no lock, no allocation); Notify later runs the notifications of the value the
    // object holds then (OSC echo, registry receivers under the registry lock) on another thread.
    int32_t StoreParameterValue(int32_t parameterIndex, float value);
    void NotifyParameterValue(int32_t parameterIndex);

    virtual int32_t EffectInit();
    virtual void RenderAudio(BR::RenderRecord* record);
    virtual void* CreateChannelKernel(int32_t channel);
    virtual int32_t GetParameterValueStrings(int32_t tableIndex, BR::CountedTextList** out);
    virtual int32_t GetProperty(uint32_t id, void* data) = 0;
    virtual int32_t GetPropertyInfo(uint32_t id, uint32_t* size, bool* writable) = 0;
    virtual int32_t SetProperty(uint32_t id, const void* data, uint32_t size) = 0;
    virtual int32_t AddPropertyListener(uint32_t id, BR::PropertyListenerCallback callback, void* userData);
    virtual int32_t RemovePropertyListener(uint32_t id, BR::PropertyListenerCallback callback,
                                           void* userData);

    // SetProperty, then every listener of that id.
    int32_t SetPropertyAndNotify(uint32_t id, const void* data, uint32_t size);

    BR::HostController* Controller() const { return controller; }

    // Parameters stored since the mask word was last taken: bit p of word p / 64 stands for parameter
    // p. Every store sets its bit (after the value, with release order); the audio thread takes a word
    // with TakeChangedWord, so that it copies only values that moved. No lock on either side.
    uint32_t NumChangedWords() const { return numChangedWords; }
    // Sets a parameter's bit without a store: for state derived from a parameter that is updated
    // outside the store (a notification that follows later).
    void MarkParameterChanged(int32_t parameterIndex) {
        if (parameterIndex >= 0 && uint32_t(parameterIndex) / 64 < numChangedWords)
            changedWords[size_t(parameterIndex) / 64].fetch_or(uint64_t(1) << (parameterIndex % 64),
                                                               std::memory_order_release);
    }
    // True when a store has set a bit of the word since it was last taken; takes nothing.
    bool ChangedWordPending(uint32_t word) const {
        return changedWords[word].load(std::memory_order_relaxed) != 0;
    }
    uint64_t TakeChangedWord(uint32_t word) {
        std::atomic<uint64_t>& bits = changedWords[word];
        return bits.load(std::memory_order_relaxed) ? bits.exchange(0, std::memory_order_acquire) : 0;
    }
    BR::HostTransport* Transport() const { return transport; }

protected:
    // Sets a parameter by its value in row units and runs the notifications of a new value.
    virtual void ParameterValueChanged(int32_t parameterIndex, float value);

    BR::HostController* controller = nullptr;
    BR::HostTransport* transport = nullptr;  // this block's: the render record's, else initialTransport
    BR::HostTransport* initialTransport = nullptr;  // the one given at Initialize
    BR::AutomationDelegate* automation = nullptr;
    std::vector<std::unique_ptr<BR::Parameter>> parameterList;
    std::atomic<bool> parametersReady{false};
    std::map<std::string, BR::Parameter*> parameterMap;
    std::atomic<uint32_t> numChanges{0};
    std::unique_ptr<std::atomic<uint64_t>[]> changedWords;
    uint32_t numChangedWords = 0;

    uint32_t numTableParameters;
    const BR::ParameterDefinition* parameterTable;
    std::vector<void*> kernels;
    BR::Parameter* masterBypass = nullptr;
    struct PropertyListener {
        uint32_t propertyId;
        BR::PropertyListenerCallback callback;
        void* userData;
    };
    std::vector<PropertyListener> propertyListeners;
    int32_t inSysEx = 0;
    std::vector<uint8_t> sysExBuffer;

private:
    void ApplyParameterValue(BR::Parameter* parameter, int32_t parameterIndex, float value);
    void StoreValue(BR::Parameter* parameter, int32_t parameterIndex, float value);
    void AddParameterObject(std::unique_ptr<BR::Parameter> parameter);
};
