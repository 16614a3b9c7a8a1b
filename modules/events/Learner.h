// Learner: the editor and saving place of the process-wide MIDI learn table, and the sender of every
// parameter change of every instance as an OSC message to one destination. Its audio passes through.
#pragma once

#include <string>

#include "LearnerTable.h"
#include "OscNotifySender.h"
#include "framework/BrelCorvaneBase.h"
#include "framework/InstanceRegistry.h"

namespace BrelCorvaneLearner {

enum TableIndex : int32_t {
    kOSCPortOffset = 0,
    kSendOSC = 1,
    kNumParameters = 2,
};

enum SendOSCMode : int32_t { kSendOff = 0, kSendLong = 1, kSendCompact = 2, kSendShort = 3 };

enum Property : uint32_t {
    kPropertyDestination = 64110,
    kPropertyLearnActive = 64130,
    kPropertyRemoveActive = 64131,
    kPropertyRemoveAll = 64132,
    kPropertyCopyLongPath = 64133,
    kPropertyCopyCompactPath = 64134,
    kPropertyCopyShortPath = 64135,
    // Where a host without an editor names the active parameter: a text "SHORTNAME/LOCALID/PARAMETER"
    // ("CRDC/1/OutputPositiveL" or "CRDC/1/0") or "GLOBALID/TABLEINDEX", as the OSC paths name it.
    kPropertyActiveParameter = 64136,
};

constexpr uint32_t kTagDestination = 0x69706570;  // "ipep"
constexpr uint32_t kTagMappings = 0x6D6D6170;     // "mmap"

// Platform operations: the yes/no dialog of "remove all" and the clipboard. Without a confirmation
// handler the request itself counts as the answer (a host with no dialog has nobody else to ask).
using ConfirmHandler = bool (*)(const char* title, const char* text);
using ClipboardHandler = void (*)(const char* text);
void SetConfirmHandler(ConfirmHandler handler);
void SetClipboardHandler(ClipboardHandler handler);

// The OSC path of a parameter in one of the three forms (kSendLong to kSendShort), as notifications
// carry it: "/brel/CRDC/1/OutputPositiveL", "/brel/CRDC/1/0", "/brel/3/0". Caller holds the registry
// lock; false when the instance is not registered. Allocates nothing once the instance's names exist.
bool BuildPath(BrelCorvaneBase* instance, int32_t tableIndex, int32_t form, char* out, uint32_t size);

class BrelCorvane : public BrelCorvaneBase, public IBrelParameterNotificationReceiver {
public:
    BrelCorvane();
    ~BrelCorvane() override;

    int32_t GetParameterValueStrings(int32_t tableIndex, BR::CountedTextList** out) override;
    int32_t GetProperty(uint32_t id, void* data) override;
    int32_t GetPropertyInfo(uint32_t id, uint32_t* size, bool* writable) override;
    int32_t SetProperty(uint32_t id, const void* data, uint32_t size) override;
    void InitModule() override;
    void ShutdownModule() override;
    void ProcessSlice(float** inputs, float** outputs, uint32_t frames) override;
    uint32_t GetParameterFlags(int32_t tableIndex) override;
    int32_t GetParameterDisplayString(BR::DisplayStringRequest& request) override;
    const char* GetModuleName() const override { return "Corvane Learner"; }
    const char* GetGuiScriptName() const override { return "gui_learner.lua"; }
    void SaveExtraChunks(BR::StateChunkStore& store) override;
    void LoadExtraChunks(const BR::StateChunkStore& store) override;

    // Every parameter change of every instance, on the thread that made it, under the registry lock.
    void ParameterChanged(BrelCorvaneBase* instance, int32_t tableIndex, float value) override;

    const OscNotifySender& Sender() const { return oscSender; }
    // The parsed destination: address in host byte order, and port (-1 when the text has none).
    uint32_t DestinationAddress() const { return destinationAddress; }
    int32_t DestinationPort() const { return destinationPort; }

private:
    void SetDestination(const std::string& text);
    void CopyActivePath(int32_t form);
    bool SelectActiveParameter(const std::string& text);

    std::string oscDestination = "127.0.0.1:7000";
    uint32_t destinationAddress = 0x7F000001;
    int32_t destinationPort = 7000;
    OscNotifySender oscSender;
};

BrelCorvaneBase* Create();

}  // namespace BrelCorvaneLearner
