// Fuzz target: a patch file read and checked whole as `corvane patch` does before it renders: the JSON
// with its bounds, every key and value, the modules, the order of instances feeding each other, and
// the MIDI, WAV, state and calibration files it names (small good ones lie beside it as "in.mid",
// "in.wav", "m.state" and "vco.txt").
//
// Input: the file.
#include <cstdint>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <string>

#include "FuzzSupport.h"
#include "host/HostDriver.h"
#include "host/cli/PatchJob.h"
#include "host/cli/StateFile.h"
#include "host/cli/WavFile.h"
#include "modules/ModuleFactory.h"

namespace {

void WriteText(const std::string& name, const std::string& text) {
    BR::Fuzz::WriteScratchFile(name, reinterpret_cast<const uint8_t*>(text.data()), text.size());
}

// The files a patch may name, each small and good.
void WriteNeighbours() {
    const uint8_t midi[] = {'M', 'T', 'h', 'd', 0,  0, 0,    6,  0,   0,  0,    1,  0, 96, 'M',  'T',  'r',
                            'k', 0,   0,   0,   12, 0, 0x90, 60, 100, 48, 0x80, 60, 0, 0,  0xFF, 0x2F, 0};
    BR::Fuzz::WriteScratchFile("in.mid", midi, sizeof midi);
    BR::AudioData audio;
    audio.sampleRate = 48000;
    audio.channels.assign(2, std::vector<float>(64, 0.25f));
    BR::WriteWav(BR::Fuzz::ScratchFolder() + "/in.wav", audio);
    WriteText("vco.txt", "Corvane Calibration Data\nversion: 1\n48 0.1\n60 0.2\n72 0.3\n");
    const BR::CatalogueEntry* entry = BR::FindCatalogueEntry("dc");
    BR::HostDriver driver(BR::CreateModule("dc"), *entry, 48000.0f, 256);
    BR::WriteStateFile(BR::Fuzz::ScratchFolder() + "/m.state", driver);
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    BR::Fuzz::QuietStandardOutput();
    WriteNeighbours();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string path = BR::Fuzz::WriteScratchFile("patch.json", data, size);
    try {
        const BR::Patch patch = BR::ParsePatch(path);
        // A patch that passes names only instances that exist and inputs within their outputs.
        for (const BR::PatchInstance& instance : patch.instances)
            for (const BR::PatchSource& source : instance.inputs)
                if (source.kind == BR::PatchSource::Kind::Instance && source.index >= patch.instances.size())
                    __builtin_trap();
        if (patch.order.size() != patch.instances.size()) __builtin_trap();
    } catch (const std::runtime_error&) {
    }
    return 0;
}
