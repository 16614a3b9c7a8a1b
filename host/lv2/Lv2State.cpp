// The state extension: the two chunks, "elck" (every parameter) and "Chnk" (the tagged-blob image),
// stored as binary atom:Chunk values under keys of the bundle.
#include <cstdio>

#include "Lv2Instance.h"

namespace BR {

namespace {

// Size first, then the chunk, as a host of the module's own platform asks; a state that changed
// in between gives no data, and is asked for again.
bool ReadChunk(BrelCorvaneBase& module, uint32_t chunkId, ChunkRecord& record) {
    for (int attempt = 0; attempt < 3; ++attempt) {
        uint32_t size = 0;
        if (module.GetChunkSize(chunkId, &size) != kNoErr) return false;
        record = ChunkRecord{};
        if (module.GetChunk(chunkId, &record) != kNoErr) return false;
        if (!record.data.empty() && record.data.size() == size) return true;
    }
    return false;
}

}  // namespace

LV2_State_Status Lv2Instance::Save(LV2_State_Store_Function store, LV2_State_Handle handle) {
    BrelCorvaneBase& module = driver->Module();
    const std::pair<uint32_t, LV2_URID> chunks[] = {{kChunkIdControls, urids.stateControls},
                                                    {kChunkIdChunky, urids.stateChunky}};
    for (const auto& [chunkId, key] : chunks) {
        ChunkRecord record;
        if (!ReadChunk(module, chunkId, record)) {
            std::fprintf(stderr, "%s: a chunk kept changing while it was saved; saved without it\n",
                         bundle.PluginUri(*source.entry).c_str());
            continue;
        }
        const LV2_State_Status status = store(handle, key, record.data.data(), record.data.size(),
                                              urids.atomChunk, LV2_STATE_IS_POD | LV2_STATE_IS_PORTABLE);
        if (status != LV2_STATE_SUCCESS) return status;
    }
    return LV2_STATE_SUCCESS;
}

LV2_State_Status Lv2Instance::Restore(LV2_State_Retrieve_Function retrieve, LV2_State_Handle handle) {
    BrelCorvaneBase& module = driver->Module();
    const std::string uri = bundle.PluginUri(*source.entry);
    LV2_State_Status result = LV2_STATE_SUCCESS;
    bool restoredControls = false;
    const std::pair<uint32_t, LV2_URID> chunks[] = {{kChunkIdControls, urids.stateControls},
                                                    {kChunkIdChunky, urids.stateChunky}};
    for (const auto& [chunkId, key] : chunks) {
        size_t size = 0;
        uint32_t type = 0, flags = 0;
        const void* data = retrieve(handle, key, &size, &type, &flags);
        if (!data) continue;  // a state from before this chunk existed: the module keeps what it has
        if (type != urids.atomChunk) {
            std::fprintf(stderr, "%s: a saved chunk has the wrong type; ignored\n", uri.c_str());
            result = LV2_STATE_ERR_BAD_TYPE;
            continue;
        }
        ChunkRecord record{};
        record.chunkId = chunkId;
        record.size = uint32_t(size);
        record.data.assign(static_cast<const uint8_t*>(data), static_cast<const uint8_t*>(data) + size);
        if (module.SetChunk(chunkId, &record) != kNoErr) {
            std::fprintf(stderr, "%s: the saved parameter chunk is damaged; parameters left as they were\n",
                         uri.c_str());
            result = LV2_STATE_ERR_UNKNOWN;
            continue;
        }
        if (chunkId == kChunkIdControls) restoredControls = true;
    }
    if (restoredControls) resyncControls.store(true);
    return result;
}

}  // namespace BR
