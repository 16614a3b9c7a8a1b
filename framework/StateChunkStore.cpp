// Building and parsing the tagged-blob image.
#include "StateChunkStore.h"

#include <cstring>

namespace BR {

void AppendU32(std::vector<uint8_t>& out, uint32_t value) {
    for (int shift = 0; shift < 32; shift += 8)
        out.push_back(uint8_t(value >> shift));
}

uint32_t ReadU32(const uint8_t* bytes) {
    return uint32_t(bytes[0]) | (uint32_t(bytes[1]) << 8) | (uint32_t(bytes[2]) << 16) |
           (uint32_t(bytes[3]) << 24);
}

void StateChunkStore::Add(uint32_t tag, const void* bytes, uint32_t length) {
    std::vector<uint8_t> payload((length + 3u) & ~3u, 0);
    if (length) std::memcpy(payload.data(), bytes, length);
    entries.emplace_back(tag, std::move(payload));
}

std::vector<uint8_t> StateChunkStore::Flatten() const {
    std::vector<uint8_t> image;
    uint32_t body = 0;
    for (const auto& entry : entries)
        body += 8 + uint32_t(entry.second.size());
    image.reserve(12 + body);
    AppendU32(image, kStateStoreMagic);
    AppendU32(image, kStateStoreVersion);
    AppendU32(image, body);
    for (const auto& [tag, payload] : entries) {
        AppendU32(image, tag);
        AppendU32(image, uint32_t(payload.size()));
        image.insert(image.end(), payload.begin(), payload.end());
    }
    return image;
}

bool StateChunkStore::Parse(const uint8_t* bytes, size_t size) {
    parsed.clear();
    if (!bytes || size < 12) return false;
    if (ReadU32(bytes) != kStateStoreMagic) return false;
    const uint64_t body = ReadU32(bytes + 8);
    if (body + 12 > size) return false;
    std::map<uint32_t, Blob> found;
    size_t offset = 12;
    const size_t end = size_t(12 + body);
    while (offset < end) {
        // An entry that runs past the end spoils the whole image.
        if (end - offset < 8) return false;
        const uint32_t tag = ReadU32(bytes + offset);
        const uint32_t length = ReadU32(bytes + offset + 4);
        if (length > end - offset - 8) return false;
        found[tag] = Blob{length, bytes + offset + 8};
        offset += 8 + size_t(length);
    }
    parsed = std::move(found);
    return true;
}

bool StateChunkStore::Find(uint32_t tag, Blob& out) const {
    auto it = parsed.find(tag);
    if (it == parsed.end()) return false;
    out = it->second;
    return true;
}

}  // namespace BR
