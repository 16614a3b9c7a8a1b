// Learner: table and properties, the destination and its chunk entries, OSC notification of changes.
#include "Learner.h"

#include <arpa/inet.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <vector>

#include "framework/ActiveParameter.h"
#include "framework/StateChunkStore.h"

namespace BrelCorvaneLearner {

namespace {

BR::ParameterDefinition parameterTable[kNumParameters] = {
    {"OSC Port Offset", BR::kUnitIndexed, 0, 100, 0},
    {"Send OSC", BR::kUnitIndexed, 0, 3, 0},
};

float defaultsValues[kNumParameters];
BR::PresetDefinition presetTable[] = {{"Defaults", 0, defaultsValues}};

constexpr BR::ModuleConfig kConfig{2, 2, 0, 0, kOSCPortOffset, 1, presetTable, kNumParameters, parameterTable,
                                   -1};

std::atomic<ConfirmHandler> confirmHandler{nullptr};
std::atomic<ClipboardHandler> clipboardHandler{nullptr};

using Guard = std::lock_guard<std::recursive_mutex>;

bool ParseInt(const std::string& text, int32_t& out) {
    if (text.empty() || text.size() > 9) return false;
    for (char c : text)
        if (c < '0' || c > '9') return false;
    out = std::atoi(text.c_str());
    return true;
}

}  // namespace

void SetConfirmHandler(ConfirmHandler handler) {
    confirmHandler.store(handler);
}

void SetClipboardHandler(ClipboardHandler handler) {
    clipboardHandler.store(handler);
}

bool BuildPath(BrelCorvaneBase* instance, int32_t tableIndex, int32_t form, char* out, uint32_t size) {
    uint32_t localId = 0, globalId = 0;
    if (!BR::InstanceRegistry::GetInstanceIds(instance, localId, globalId)) return false;
    int used;
    if (form == kSendLong || form == kSendCompact) {
        const char* shortName = "";
        instance->GetProperty(BR::kPropertyShortName, &shortName);
        used = std::snprintf(out, size, "/brel/%s/%u", shortName, localId);
    } else {
        used = std::snprintf(out, size, "/brel/%u", globalId);
    }
    if (used < 0 || uint32_t(used) >= size) return true;  // cut short: the text stays terminated
    const std::vector<std::string>& paths = instance->ParameterPaths();
    if (form == kSendLong && tableIndex >= 0 && size_t(tableIndex) < paths.size()) {
        std::snprintf(out + used, size - uint32_t(used), "/%s", paths[size_t(tableIndex)].c_str());
    } else {
        std::snprintf(out + used, size - uint32_t(used), "/%d", int(tableIndex));
    }
    return true;
}

BrelCorvane::BrelCorvane() : BrelCorvaneBase(kConfig) {
    InstallHook();
    BR::InstanceRegistry::AddReceiver(this);
    BrelCorvane::InitModule();
}

BrelCorvane::~BrelCorvane() {
    // After this no thread calls ParameterChanged: the list is changed under the lock that each
    // notification holds.
    BR::InstanceRegistry::RemoveReceiver(this);
    oscSender.Stop();
}

void BrelCorvane::InitModule() {
    oscSender.SetDestination(destinationAddress, destinationPort);
    oscSender.Start();
    BrelCorvaneBase::InitModule();
}

void BrelCorvane::ShutdownModule() {
    oscSender.Stop();
    BrelCorvaneBase::ShutdownModule();
}

void BrelCorvane::ProcessSlice(float** inputs, float** outputs, uint32_t frames) {
    for (int32_t c = 0; c < 2 && c < numOutputs; ++c)
        if (inputs[c] != outputs[c]) std::memcpy(outputs[c], inputs[c], frames * sizeof(float));
}

void BrelCorvane::ParameterChanged(BrelCorvaneBase* instance, int32_t tableIndex, float value) {
    const int32_t form = int32_t(GetTableValue(kSendOSC));
    if (form < kSendLong || form > kSendShort) return;
    char path[OscNotifySender::kPathBytes];
    if (!BuildPath(instance, tableIndex, form, path, sizeof path)) return;
    oscSender.Write(path, value);  // wakes the sender when it took the item
}

int32_t BrelCorvane::GetParameterValueStrings(int32_t tableIndex, BR::CountedTextList** out) {
    static BR::CountedTextList* sendOSC = new BR::CountedTextList({"Off", "Long", "Compact", "Short"});
    return BR::HandOutValueStrings(tableIndex == kSendOSC ? sendOSC : nullptr, out);
}

uint32_t BrelCorvane::GetParameterFlags(int32_t tableIndex) {
    return tableIndex == kOSCPortOffset ? BR::kDisplayStringFlag : 0;
}

int32_t BrelCorvane::GetParameterDisplayString(BR::DisplayStringRequest& request) {
    return OffDisplayString(request, request.index == kOSCPortOffset, false);
}

int32_t BrelCorvane::GetProperty(uint32_t id, void* data) {
    switch (id) {
        case BR::kPropertyIsLearner:
            return BR::PutProperty(data, true);
        case kPropertyDestination:
            return BR::PutProperty(data, oscDestination.c_str());
        case kPropertyLearnActive:
            return BR::PutProperty(data, LearnActive());
        default:
            return BrelCorvaneBase::GetProperty(id, data);
    }
}

int32_t BrelCorvane::GetPropertyInfo(uint32_t id, uint32_t* size, bool* writable) {
    uint32_t bytes = 1;
    bool canWrite = true;
    switch (id) {
        case BR::kPropertyIsLearner:
            canWrite = false;
            break;
        case kPropertyDestination:
            bytes = uint32_t(oscDestination.size() + 1);
            break;
        case kPropertyLearnActive:
        case kPropertyRemoveActive:
        case kPropertyRemoveAll:
        case kPropertyCopyLongPath:
        case kPropertyCopyCompactPath:
        case kPropertyCopyShortPath:
            break;
        case kPropertyActiveParameter:
            bytes = 0;  // a text of any length
            break;
        default:
            return BrelCorvaneBase::GetPropertyInfo(id, size, writable);
    }
    if (size) *size = bytes;
    if (writable) *writable = canWrite;
    return BR::kNoErr;
}

int32_t BrelCorvane::SetProperty(uint32_t id, const void* data, uint32_t size) {
    const char* text = static_cast<const char*>(data);
    const std::string value = text ? std::string(text, strnlen(text, size)) : std::string();
    switch (id) {
        case kPropertyDestination:
            SetDestination(value);
            return BR::kNoErr;
        case kPropertyLearnActive: {
            if (!data || size == 0) return BR::kErrInvalidProperty;
            bool on = false;
            if (size >= 4) {  // a 32-bit number, as a command line gives it
                int32_t number;
                std::memcpy(&number, data, 4);
                on = number != 0;
            } else {
                on = static_cast<const uint8_t*>(data)[0] != 0;
            }
            SetLearnActive(on);
            return BR::kNoErr;
        }
        case kPropertyRemoveActive:
            RemoveActiveMapping();
            return BR::kNoErr;
        case kPropertyRemoveAll: {
            ConfirmHandler confirm = confirmHandler.load();
            if (!confirm || confirm("Remove All Mappings",
                                    "This will completely remove all currently set up MIDI mappings.\n"
                                    "Are you sure?"))
                RemoveAllMappings();
            return BR::kNoErr;
        }
        case kPropertyCopyLongPath:
            CopyActivePath(kSendLong);
            return BR::kNoErr;
        case kPropertyCopyCompactPath:
            CopyActivePath(kSendCompact);
            return BR::kNoErr;
        case kPropertyCopyShortPath:
            CopyActivePath(kSendShort);
            return BR::kNoErr;
        case kPropertyActiveParameter:
            return SelectActiveParameter(value) ? BR::kNoErr : BR::kErrInvalidParameter;
        default:
            return BrelCorvaneBase::SetProperty(id, data, size);
    }
}

void BrelCorvane::SetDestination(const std::string& text) {
    oscDestination = text;
    std::string rest = text;
    if (rest.compare(0, 10, "osc.udp://") == 0) rest.erase(0, 10);
    const size_t colon = rest.find(':');
    int32_t newPort = -1;
    if (colon != std::string::npos) {
        newPort = std::atoi(rest.c_str() + colon + 1);
        rest.erase(colon);
    }
    // The system's dotted-address conversion: a text it cannot read gives all ones, where nothing
    // answers, and the notifications are lost silently.
    destinationAddress = ntohl(inet_addr(rest.c_str()));
    destinationPort = newPort;
    oscSender.SetDestination(destinationAddress, destinationPort);
}

void BrelCorvane::CopyActivePath(int32_t form) {
    ClipboardHandler copy = clipboardHandler.load();
    if (!copy) return;
    char path[OscNotifySender::kPathBytes];
    {
        Guard guard(BR::InstanceRegistry::Lock());
        BrelCorvaneBase* instance = nullptr;
        int32_t parameter = -1;
        BR::GetActiveParameter(instance, parameter);
        if (!instance || !BuildPath(instance, parameter, form, path, sizeof path)) return;
    }
    copy(path);
}

bool BrelCorvane::SelectActiveParameter(const std::string& text) {
    std::vector<std::string> parts;
    size_t start = text.compare(0, 6, "/brel/") == 0 ? 6 : (text.compare(0, 1, "/") == 0 ? 1 : 0);
    for (;;) {
        const size_t slash = text.find('/', start);
        parts.push_back(text.substr(start, slash == std::string::npos ? std::string::npos : slash - start));
        if (slash == std::string::npos) break;
        start = slash + 1;
    }
    if (parts.size() != 2 && parts.size() != 3) return false;
    int32_t id = 0;
    if (!ParseInt(parts[parts.size() - 2], id)) return false;
    Guard guard(BR::InstanceRegistry::Lock());
    for (size_t i = 0; BrelCorvaneBase* instance = BR::InstanceRegistry::InstanceAt(i); ++i) {
        uint32_t localId = 0, globalId = 0;
        if (parts.size() == 2) {
            BR::InstanceRegistry::PeekInstanceIds(instance, localId, globalId);
            if (int64_t(globalId) != id) continue;
        } else {
            if (parts[0] != instance->ShortName()) continue;
            BR::InstanceRegistry::GetInstanceIds(instance, localId, globalId);
            if (int64_t(localId) != id) continue;
        }
        int32_t parameter = -1;
        if (!ParseInt(parts.back(), parameter)) {
            const std::vector<std::string>& paths = instance->ParameterPaths();
            for (size_t k = 0; k < paths.size(); ++k)
                if (paths[k] == parts.back()) parameter = int32_t(k);
        }
        if (parameter < 0 || parameter >= instance->NumTableParameters()) return false;
        BR::SetActiveParameter(instance, parameter);
        return true;
    }
    return false;
}

void BrelCorvane::SaveExtraChunks(BR::StateChunkStore& store) {
    store.Add(kTagDestination, oscDestination.c_str(), uint32_t(oscDestination.size() + 1));
    const std::vector<uint8_t> mappings = SaveMappings();
    if (!mappings.empty()) store.Add(kTagMappings, mappings.data(), uint32_t(mappings.size()));
}

void BrelCorvane::LoadExtraChunks(const BR::StateChunkStore& store) {
    BR::StateChunkStore::Blob blob;
    if (store.Find(kTagDestination, blob) && blob.data) {
        const char* text = reinterpret_cast<const char*>(blob.data);
        const std::string name(text, strnlen(text, blob.length));
        SetPropertyAndNotify(kPropertyDestination, name.c_str(), uint32_t(name.size() + 1));
    }
    if (store.Find(kTagMappings, blob)) {
        LoadMappings(blob.data, blob.length);
    } else {
        LoadMappings(nullptr, 0);
    }
}

BrelCorvaneBase* Create() {
    return new BrelCorvane;
}

}  // namespace BrelCorvaneLearner
