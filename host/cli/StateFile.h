// A module's saved state in one file of our own: both chunks, as a host keeps them in a session.
//
// Layout, little-endian: the eight bytes "CorvStat"; format version (1); the module's four-character
// id as a tag; the number of chunks; per chunk its id, version, byte count and bytes; last, the
// CRC-32 of every byte before it. Nothing is restored unless all of it checks out.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/HostDriver.h"

namespace BR {

constexpr uint32_t kStateFileVersion = 1;

struct SavedChunk {
    uint32_t id;
    uint32_t version;
    std::vector<uint8_t> data;
};

struct SavedState {
    uint32_t moduleId;  // catalogue id as a tag, "CRdc"
    std::vector<SavedChunk> chunks;
};

// Asks the module for each of its chunks, size first, as a host does.
SavedState CaptureState(BrelCorvaneBase& module, const CatalogueEntry& entry);
std::vector<uint8_t> EncodeState(const SavedState& state);
// Throws std::runtime_error saying what is wrong with a damaged or truncated image.
SavedState DecodeState(const std::vector<uint8_t>& bytes);

// Throws std::runtime_error naming the file.
void WriteStateFile(const std::string& path, HostDriver& driver);
// Reads and checks the whole file (its form, its module, each chunk's contents) and only then hands
// the chunks to the module. Throws std::runtime_error naming the file, with the module unchanged.
void RestoreStateFile(const std::string& path, HostDriver& driver);

}  // namespace BR
