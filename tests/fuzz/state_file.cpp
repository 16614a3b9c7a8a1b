// Fuzz target: a CorvStat state file, checked whole and, when it holds the state of a module this build
// makes, restored into a new instance of it and rendered. Half the inputs have their checksum made
// right first, so that the checks behind it are reached too. A state names where the event modules send
// (through the host's OSC transmit hook, as in the plug-in), so the process runs in a network of its own.
//
// Input: the file. Its first byte's lowest bit set: the last four bytes are replaced by the CRC-32 of
// everything before them.
#include <zlib.h>

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <vector>

#include "FuzzSupport.h"
#include "RenderCheck.h"
#include "framework/ModuleCatalogue.h"
#include "host/HostDriver.h"
#include "host/cli/StateFile.h"
#include "modules/ModuleFactory.h"
#include "remote/RemoteServices.h"

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    BR::Fuzz::IsolateNetwork();
    BR::Fuzz::QuietStandardOutput();
    BR::Fuzz::UseEmptyUserFolders();
    BR::InstallOSCTransmitter();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::vector<uint8_t> bytes(data, data + size);
    if (size >= 4 && (data[0] & 1)) {
        const uint32_t crc = uint32_t(crc32(crc32(0L, Z_NULL, 0), bytes.data(), uInt(size - 4)));
        for (int i = 0; i < 4; ++i)
            bytes[size - 4 + size_t(i)] = uint8_t(crc >> (8 * i));
    }
    uint32_t moduleId = 0;
    try {
        moduleId = BR::DecodeState(bytes).moduleId;
    } catch (const std::runtime_error&) {
        return 0;
    }
    const BR::CatalogueEntry* entry = nullptr;
    for (int i = 0; i < BR::kNumCatalogueEntries; ++i)
        if (BR::IdAsTag(BR::CatalogueEntries()[i].id) == moduleId) entry = &BR::CatalogueEntries()[i];
    BR::ModuleFactoryFunction factory = entry ? BR::FindModuleFactory(*entry) : nullptr;
    if (!factory) return 0;
    BR::HostDriver driver(std::unique_ptr<BrelCorvaneBase>(factory()), *entry, 48000.0f, 256);
    const std::string path = BR::Fuzz::WriteScratchFile("input.state", bytes.data(), bytes.size());
    try {
        BR::RestoreStateFile(path, driver);
    } catch (const std::runtime_error&) {
    }
    BR::Fuzz::RenderAndCheck(driver, 64);
    return 0;
}
