// The tagged-blob image of the "Chnk" chunk: written as a list in order of adding, read as a map.
#pragma once

#include <cstdint>
#include <map>
#include <vector>

#include "BrelTypes.h"

namespace BR {

constexpr uint32_t kStateStoreMagic = 0x4272656c;  // "Brel"; bytes in order run "lerB"
constexpr uint32_t kStateStoreVersion = 1;
constexpr uint32_t kTagLocalId = FourCC("luid");
constexpr uint32_t kTagGlobalId = FourCC("guid");

// Image: magic, format version, byte count behind it; then entries of {tag, padded length,
// payload padded with zeros to a multiple of 4}. Little-endian throughout.
class StateChunkStore {
public:
    struct Blob {
        uint32_t length;  // padded length
        const uint8_t* data;
    };

    // Writing side.
    void Add(uint32_t tag, const void* bytes, uint32_t length);
    std::vector<uint8_t> Flatten() const;

    // Reading side: false for a bad image, which leaves nothing parsed. Pointers refer into the
    // caller's buffer and stay valid only as long as it does. A repeated tag: the later wins.
    bool Parse(const uint8_t* bytes, size_t size);
    bool Find(uint32_t tag, Blob& out) const;

private:
    std::vector<std::pair<uint32_t, std::vector<uint8_t>>> entries;
    std::map<uint32_t, Blob> parsed;
};

// Little-endian helpers for chunk payloads.
void AppendU32(std::vector<uint8_t>& out, uint32_t value);
uint32_t ReadU32(const uint8_t* bytes);

}  // namespace BR
