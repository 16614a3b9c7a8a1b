// Fuzz target: a WAV file through the reader of module inputs (libsndfile behind the command's own
// limits), and its first frames fed to a DC instance that multiplies its inputs.
//
// Input: the file.
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <vector>

#include "FuzzSupport.h"
#include "RenderCheck.h"
#include "host/cli/WavFile.h"
#include "modules/ModuleFactory.h"

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    BR::Fuzz::QuietStandardOutput();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string path = BR::Fuzz::WriteScratchFile("input.wav", data, size);
    BR::AudioData audio;
    try {
        audio = BR::ReadWav(path);
    } catch (const std::runtime_error&) {
        return 0;
    }
    // A file is read whole or refused: its channels come back of equal length.
    for (const std::vector<float>& channel : audio.channels)
        if (channel.size() != audio.Frames()) __builtin_trap();
    const BR::CatalogueEntry* entry = BR::FindCatalogueEntry("dc");
    BR::HostDriver driver(BR::CreateModule("dc"), *entry, 48000.0f, 256);
    driver.SetParameterByName("Input Multiply L", 1.0f);
    driver.SetParameterByName("Input Multiply R", 1.0f);
    const uint32_t frames = uint32_t(std::min<size_t>(audio.Frames(), 256));
    std::vector<const float*> inputs(size_t(driver.NumHostInputs()), nullptr);
    for (size_t c = 0; c < inputs.size() && c < audio.channels.size(); ++c)
        inputs[c] = audio.channels[c].data();
    std::vector<std::vector<float>> outputs(size_t(driver.NumHostOutputs()), std::vector<float>(frames));
    std::vector<float*> pointers;
    for (auto& output : outputs)
        pointers.push_back(output.data());
    driver.Process(inputs.data(), pointers.data(), frames, nullptr, 0);
    return 0;
}
