// Fuzz target: a Standard MIDI File through the reader the offline jobs use, and the first events it
// gives played into a Voice Controller's block, each at its frame where that falls inside the block.
//
// Input: the file.
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <vector>

#include "FuzzSupport.h"
#include "RenderCheck.h"
#include "host/cli/MidiFile.h"
#include "modules/ModuleFactory.h"

namespace {

constexpr uint32_t kFrames = 256;
constexpr size_t kMaxPlayed = 256;
BR::HostDriver* driver = nullptr;  // kept between inputs, as a host keeps its instance

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    BR::Fuzz::QuietStandardOutput();
    driver = new BR::HostDriver(BR::CreateModule("voicecontroller"),
                                *BR::FindCatalogueEntry("voicecontroller"), 48000.0f, 256);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string path = BR::Fuzz::WriteScratchFile("input.mid", data, size);
    std::vector<BR::MidiEventSpec> events;
    try {
        events = BR::ReadMidiFile(path, 48000.0);
    } catch (const std::runtime_error&) {
        return 0;
    }
    std::vector<BR::TimedMidi> played;
    for (const BR::MidiEventSpec& event : events) {
        if (played.size() == kMaxPlayed || event.frame >= kFrames) break;
        played.push_back({uint32_t(event.frame), uint32_t(event.bytes.size()), event.bytes.data()});
    }
    BR::Fuzz::RenderAndCheck(*driver, kFrames, played.data(), uint32_t(played.size()));
    return 0;
}
