// Writing, checking and restoring state files.
#include "StateFile.h"

#include <zlib.h>

#include <cstring>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include "InputLimits.h"
#include "framework/StateChunkStore.h"

namespace BR {

namespace {

constexpr char kMagic[8] = {'C', 'o', 'r', 'v', 'S', 't', 'a', 't'};
constexpr size_t kHeaderBytes = 8 + 4 + 4 + 4;
constexpr size_t kChunkHeaderBytes = 4 + 4 + 4;
constexpr uint32_t kMaxChunks = 64;

uint32_t Crc(const uint8_t* bytes, size_t size) {
    return uint32_t(crc32(crc32(0L, Z_NULL, 0), bytes, uInt(size)));
}

std::string TagText(uint32_t tag) {
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8) {
        const char c = char(tag >> shift);
        text += c >= 32 && c < 127 ? c : '?';
    }
    return text;
}

}  // namespace

SavedState CaptureState(BrelCorvaneBase& module, const CatalogueEntry& entry) {
    SavedState state{IdAsTag(entry.id), {}};
    for (int32_t index = 0; index < module.GetNumberOfChunks(); ++index) {
        uint32_t id = 0, size = 0;
        if (module.GetChunkIDFromIndex(index, &id) != kNoErr) continue;
        if (module.GetChunkSize(id, &size) != kNoErr) continue;
        ChunkRecord record{};
        if (module.GetChunk(id, &record) != kNoErr || record.data.size() != size) continue;
        state.chunks.push_back(SavedChunk{id, record.version, std::move(record.data)});
    }
    return state;
}

std::vector<uint8_t> EncodeState(const SavedState& state) {
    std::vector<uint8_t> bytes(kMagic, kMagic + sizeof kMagic);
    AppendU32(bytes, kStateFileVersion);
    AppendU32(bytes, state.moduleId);
    AppendU32(bytes, uint32_t(state.chunks.size()));
    for (const SavedChunk& chunk : state.chunks) {
        AppendU32(bytes, chunk.id);
        AppendU32(bytes, chunk.version);
        AppendU32(bytes, uint32_t(chunk.data.size()));
        bytes.insert(bytes.end(), chunk.data.begin(), chunk.data.end());
    }
    AppendU32(bytes, Crc(bytes.data(), bytes.size()));
    return bytes;
}

SavedState DecodeState(const std::vector<uint8_t>& bytes) {
    if (bytes.size() < sizeof kMagic || std::memcmp(bytes.data(), kMagic, sizeof kMagic) != 0)
        throw std::runtime_error("not a Corvane state file");
    if (bytes.size() < kHeaderBytes + 4) throw std::runtime_error("truncated: the header is incomplete");
    const uint32_t version = ReadU32(bytes.data() + 8);
    if (version != kStateFileVersion)
        throw std::runtime_error("format version " + std::to_string(version) +
                                 " is not known; this build reads " + std::to_string(kStateFileVersion));
    SavedState state{ReadU32(bytes.data() + 12), {}};
    const uint32_t count = ReadU32(bytes.data() + 16);
    if (count > kMaxChunks)
        throw std::runtime_error("damaged: it claims " + std::to_string(count) + " chunks");
    size_t at = kHeaderBytes;
    for (uint32_t i = 0; i < count; ++i) {
        if (bytes.size() - at < kChunkHeaderBytes + 4)
            throw std::runtime_error("truncated: chunk " + std::to_string(i + 1) + " of " +
                                     std::to_string(count) + " is missing");
        SavedChunk chunk{ReadU32(bytes.data() + at), ReadU32(bytes.data() + at + 4), {}};
        const uint32_t size = ReadU32(bytes.data() + at + 8);
        at += kChunkHeaderBytes;
        if (bytes.size() - at < uint64_t(size) + 4)
            throw std::runtime_error("truncated: chunk \"" + TagText(chunk.id) + "\" should hold " +
                                     std::to_string(size) + " bytes");
        chunk.data.assign(bytes.begin() + std::ptrdiff_t(at), bytes.begin() + std::ptrdiff_t(at + size));
        at += size;
        state.chunks.push_back(std::move(chunk));
    }
    if (bytes.size() != at + 4)
        throw std::runtime_error("damaged: " + std::to_string(bytes.size() - at - 4) +
                                 " bytes follow the last chunk");
    if (ReadU32(bytes.data() + at) != Crc(bytes.data(), at))
        throw std::runtime_error("damaged: the checksum does not match its contents");
    return state;
}

void WriteStateFile(const std::string& path, HostDriver& driver) {
    const std::vector<uint8_t> bytes = EncodeState(CaptureState(driver.Module(), driver.Entry()));
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(bytes.data()), std::streamsize(bytes.size()));
    if (!out.flush()) throw std::runtime_error("cannot write \"" + path + "\"");
}

void RestoreStateFile(const std::string& path, HostDriver& driver) {
    CheckFileSize(path, kMaxStateFileBytes, "state files");
    std::ifstream in(path, std::ios::binary);
    if (!in) throw std::runtime_error("cannot read \"" + path + "\"");
    const std::vector<uint8_t> bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    SavedState state;
    try {
        state = DecodeState(bytes);
    } catch (const std::runtime_error& e) {
        throw std::runtime_error("\"" + path + "\" is refused: " + e.what());
    }
    const CatalogueEntry& entry = driver.Entry();
    if (state.moduleId != IdAsTag(entry.id)) {
        const std::string id = TagText(state.moduleId);
        const CatalogueEntry* other = FindCatalogueEntry(id);
        throw std::runtime_error("\"" + path + "\" holds the state of \"" + id + "\"" +
                                 (other ? std::string(" (") + other->moduleName + ")" : "") + ", not of \"" +
                                 entry.id + "\" (" + entry.moduleName + ")");
    }
    // Every chunk is checked before any is handed over; "elck" is checked whole by SetChunk itself
    // and set first, so that a refusal there leaves everything as it was.
    const SavedChunk* controls = nullptr;
    const SavedChunk* chunky = nullptr;
    for (const SavedChunk& chunk : state.chunks) {
        if (chunk.id == kChunkIdControls && !controls) {
            controls = &chunk;
        } else if (chunk.id == kChunkIdChunky && !chunky) {
            chunky = &chunk;
            StateChunkStore store;
            if (!store.Parse(chunk.data.data(), chunk.data.size()))
                throw std::runtime_error("\"" + path + "\" is refused: its \"Chnk\" chunk is damaged");
        } else {
            throw std::runtime_error("\"" + path + "\" is refused: chunk \"" + TagText(chunk.id) +
                                     "\" is unknown or repeated");
        }
    }
    BrelCorvaneBase& module = driver.Module();
    if (controls) {
        ChunkRecord record{};
        record.chunkId = controls->id;
        record.version = controls->version;
        record.size = uint32_t(controls->data.size());
        record.data = controls->data;
        if (module.SetChunk(record.chunkId, &record) != kNoErr)
            throw std::runtime_error("\"" + path + "\" is refused: its \"elck\" chunk is damaged");
    }
    if (chunky) {
        ChunkRecord record{};
        record.chunkId = chunky->id;
        record.version = chunky->version;
        record.size = uint32_t(chunky->data.size());
        record.data = chunky->data;
        module.SetChunk(record.chunkId, &record);
    }
}

}  // namespace BR
