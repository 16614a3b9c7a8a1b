// Fuzz target: a session's two chunks restored into one instance of every module this build's factory
// makes (made once and kept, as a host keeps its instances between sessions it loads) ("elck", then the
// "Chnk" image with "luid", "guid" and each module's own entries), a block rendered from what they set, and
// the state saved and restored once more. Modules added to the factory later take part without a change here.
// The event modules' entries name where they send (the Learner's destination, CV To OSC's target, which
// goes through the host's OSC transmit hook as in the plug-in), so the process runs in a network of its own.
//
// Input: a 16-bit little-endian length n, n bytes of "elck", and the "Chnk" image in the rest.
#include <cstdint>
#include <memory>
#include <vector>

#include "FuzzSupport.h"
#include "RenderCheck.h"
#include "framework/BrelCorvaneBase.h"
#include "framework/ModuleCatalogue.h"
#include "host/HostDriver.h"
#include "modules/ModuleFactory.h"
#include "remote/RemoteServices.h"

namespace {

BR::ChunkRecord Record(uint32_t id, const uint8_t* data, size_t size) {
    BR::ChunkRecord record{};
    record.chunkId = id;
    record.size = uint32_t(size);
    record.data.assign(data, data + size);
    return record;
}

void SaveAndRestore(BrelCorvaneBase& module) {
    for (int32_t index = 0; index < module.GetNumberOfChunks(); ++index) {
        uint32_t id = 0, size = 0;
        module.GetChunkIDFromIndex(index, &id);
        module.GetChunkSize(id, &size);
        BR::ChunkRecord record{};
        module.GetChunk(id, &record);
        module.SetChunk(id, &record);
    }
}

std::vector<std::unique_ptr<BR::HostDriver>>* drivers = nullptr;

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    BR::Fuzz::IsolateNetwork();
    BR::Fuzz::QuietStandardOutput();
    BR::Fuzz::UseEmptyUserFolders();
    BR::InstallOSCTransmitter();
    drivers = new std::vector<std::unique_ptr<BR::HostDriver>>;
    const BR::CatalogueEntry* entries = BR::CatalogueEntries();
    for (int i = 0; i < BR::kNumCatalogueEntries; ++i)
        if (BR::ModuleFactoryFunction factory = BR::FindModuleFactory(entries[i]))
            drivers->push_back(std::make_unique<BR::HostDriver>(std::unique_ptr<BrelCorvaneBase>(factory()),
                                                                entries[i], 48000.0f, 256));
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    size_t controlsSize = size >= 2 ? size_t(data[0]) | size_t(data[1]) << 8 : 0;
    const uint8_t* controls = data + (size >= 2 ? 2 : size);
    size_t left = size - size_t(controls - data);
    if (controlsSize > left) controlsSize = left;
    const BR::ChunkRecord elck = Record(BR::kChunkIdControls, controls, controlsSize);
    const BR::ChunkRecord chnk = Record(BR::kChunkIdChunky, controls + controlsSize, left - controlsSize);

    for (auto& kept : *drivers) {
        BR::HostDriver& driver = *kept;
        BrelCorvaneBase& module = driver.Module();
        module.SetChunk(BR::kChunkIdControls, &elck);
        module.SetChunk(BR::kChunkIdChunky, &chnk);
        BR::Fuzz::RenderAndCheck(driver, 64);
        SaveAndRestore(module);
        BR::Fuzz::RenderAndCheck(driver, 64);
    }
    return 0;
}
