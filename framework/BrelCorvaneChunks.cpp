// The two state chunks: "elck" with every parameter's identifier and value, "Chnk" with the
// tagged-blob image of identity numbers and the module's own entries.
#include <cmath>
#include <cstring>

#include "BrelCorvaneBase.h"
#include "InstanceRegistry.h"
#include "StateChunkStore.h"

namespace {

constexpr uint32_t kControlsMagic = BR::FourCC("Ctl1");
constexpr uint8_t kKindFloat = 0;
constexpr uint8_t kKindBoolean = 1;

void SetName(BR::ChunkRecord* record, const char* name) {
    std::memset(record->name, 0, sizeof record->name);
    std::strncpy(record->name, name, sizeof record->name - 1);
}

struct ControlValue {
    std::string identifier;
    float value;
};

// "elck" payload: magic, count, then per parameter {u16 identifier length, identifier bytes,
// u8 kind, f32 value bits}. Parsed whole before anything is applied.
bool ParseControls(const std::vector<uint8_t>& data, std::vector<ControlValue>& out) {
    const uint8_t* p = data.data();
    size_t left = data.size();
    if (left < 8 || BR::ReadU32(p) != kControlsMagic) return false;
    const uint32_t count = BR::ReadU32(p + 4);
    p += 8;
    left -= 8;
    if (count > left / 7) return false;
    for (uint32_t i = 0; i < count; ++i) {
        if (left < 2) return false;
        const size_t length = size_t(p[0]) | (size_t(p[1]) << 8);
        if (left < 2 + length + 5) return false;
        ControlValue control{std::string(reinterpret_cast<const char*>(p + 2), length), 0.0f};
        const uint8_t kind = p[2 + length];
        if (kind != kKindFloat && kind != kKindBoolean) return false;
        const uint32_t bits = BR::ReadU32(p + 3 + length);
        std::memcpy(&control.value, &bits, 4);
        if (!std::isfinite(control.value)) return false;  // no parameter holds one: a damaged chunk
        out.push_back(std::move(control));
        p += 7 + length;
        left -= 7 + length;
    }
    return left == 0;
}

}  // namespace

int32_t BrelCorvaneBase::GetChunkIDFromIndex(int32_t index, uint32_t* chunkId) const {
    if (index == 0) {
        *chunkId = BR::kChunkIdControls;
    } else if (index == 1) {
        *chunkId = BR::kChunkIdChunky;
    } else {
        *chunkId = 0;
        return BR::kErrUnknownChunkIndex;
    }
    return BR::kNoErr;
}

static std::vector<uint8_t> BuildControlsChunk(const BrelAuBase& module) {
    std::vector<uint8_t> data;
    BR::AppendU32(data, kControlsMagic);
    BR::AppendU32(data, uint32_t(module.GetNumberOfParameters()));
    for (int32_t i = 0; i < module.GetNumberOfParameters(); ++i) {
        const BR::Parameter* parameter = module.GetParameter(i);
        const std::string& id = parameter->Identifier();
        data.push_back(uint8_t(id.size()));
        data.push_back(uint8_t(id.size() >> 8));
        data.insert(data.end(), id.begin(), id.end());
        data.push_back(parameter->GetKind() == BR::Parameter::Kind::Boolean ? kKindBoolean : kKindFloat);
        const float value = parameter->GetValueAsFloat();
        uint32_t bits;
        std::memcpy(&bits, &value, 4);
        BR::AppendU32(data, bits);
    }
    return data;
}

static std::vector<uint8_t> BuildChunkyChunk(BrelCorvaneBase& module) {
    BR::StateChunkStore store;
    if (BR::InstanceRegistry::AnyLearnerPresent()) {
        std::lock_guard<std::recursive_mutex> lock(BR::InstanceRegistry::Lock());
        uint32_t localId = 0, globalId = 0;
        if (BR::InstanceRegistry::GetInstanceIds(&module, localId, globalId)) {
            store.Add(BR::kTagLocalId, &localId, 4);
            store.Add(BR::kTagGlobalId, &globalId, 4);
        }
    }
    module.SaveExtraChunks(store);
    return store.Flatten();
}

int32_t BrelCorvaneBase::GetChunkSize(uint32_t chunkId, uint32_t* size) {
    if (chunkId == BR::kChunkIdChunky) {
        chunkSize = uint32_t(BuildChunkyChunk(*this).size());
        *size = chunkSize;
        return BR::kNoErr;
    }
    if (chunkId == BR::kChunkIdControls) {
        *size = uint32_t(BuildControlsChunk(*this).size());
        return BR::kNoErr;
    }
    return BR::kErrUnknownChunkId;
}

int32_t BrelCorvaneBase::GetChunk(uint32_t chunkId, BR::ChunkRecord* record) {
    if (chunkId == BR::kChunkIdChunky) {
        std::vector<uint8_t> image = BuildChunkyChunk(*this);
        // A state that changed since the host asked for the size is given up on, quietly.
        if (image.size() != chunkSize) return BR::kNoErr;
        record->version = GetVersion();
        SetName(record, "Chunky Chunk");
        record->size = uint32_t(image.size());
        record->chunkId = chunkId;
        record->data = std::move(image);
        return BR::kNoErr;
    }
    if (chunkId == BR::kChunkIdControls) {
        record->data = BuildControlsChunk(*this);
        record->size = uint32_t(record->data.size());
        record->version = GetVersion();
        record->chunkId = chunkId;
        SetName(record, "Complete Controls State");
        return BR::kNoErr;
    }
    return BR::kErrUnknownChunkId;
}

int32_t BrelCorvaneBase::SetChunk(uint32_t chunkId, const BR::ChunkRecord* record) {
    if (chunkId == BR::kChunkIdControls) {
        std::vector<ControlValue> controls;
        if (!ParseControls(record->data, controls)) return BR::kErrInvalidParameter;
        PrepareParameterRestore();
        for (const ControlValue& control : controls) {
            const int32_t index = GetParameterIndex(control.identifier);
            if (index >= 0) SetParameterValue(index, control.value);
        }
        return BR::kNoErr;
    }
    if (chunkId == BR::kChunkIdChunky) {
        BR::StateChunkStore store;
        if (!store.Parse(record->data.data(), record->data.size())) return BR::kNoErr;
        uint32_t localId = 0, globalId = 0;
        BR::StateChunkStore::Blob blob;
        if (store.Find(BR::kTagLocalId, blob) && blob.length == 4) localId = BR::ReadU32(blob.data);
        if (store.Find(BR::kTagGlobalId, blob) && blob.length == 4) globalId = BR::ReadU32(blob.data);
        BR::InstanceRegistry::SetInstanceIds(this, localId, globalId);
        LoadExtraChunks(store);
        return BR::kNoErr;
    }
    return BR::kErrUnknownChunkId;
}
