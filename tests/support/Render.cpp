// Whole-buffer rendering through the host driver for module tests.
#include "Render.h"

#include <algorithm>

#include "modules/ModuleFactory.h"

namespace BR::Test {

std::unique_ptr<HostDriver> MakeDriver(const std::string& stem, float sampleRate, uint32_t maxBlockSize) {
    const CatalogueEntry* entry = FindCatalogueEntry(stem);
    if (!entry) return nullptr;
    auto module = CreateModule(stem);
    if (!module) return nullptr;
    return std::make_unique<HostDriver>(std::move(module), *entry, sampleRate, maxBlockSize);
}

Channels RenderFrames(HostDriver& driver, uint32_t frames, uint32_t blockSize, const Channels& inputs,
                      const std::vector<MidiAt>& midi) {
    const size_t numIn = size_t(driver.NumHostInputs()), numOut = size_t(driver.NumHostOutputs());
    Channels in(numIn, std::vector<float>(frames, 0.0f));
    for (size_t c = 0; c < numIn && c < inputs.size(); ++c)
        std::copy_n(inputs[c].begin(), std::min<size_t>(frames, inputs[c].size()), in[c].begin());
    Channels out(numOut, std::vector<float>(frames, 0.0f));
    std::vector<const float*> inPointers(std::max<size_t>(numIn, 1));
    std::vector<float*> outPointers(std::max<size_t>(numOut, 1));
    std::vector<TimedMidi> blockMidi;
    blockMidi.reserve(midi.size());
    for (uint32_t done = 0; done < frames;) {
        const uint32_t n = std::min(blockSize, frames - done);
        for (size_t c = 0; c < numIn; ++c)
            inPointers[c] = in[c].data() + done;
        for (size_t c = 0; c < numOut; ++c)
            outPointers[c] = out[c].data() + done;
        blockMidi.clear();
        for (const MidiAt& m : midi)
            if (m.frame >= done && m.frame < done + n)
                blockMidi.push_back(TimedMidi{m.frame - done, uint32_t(m.bytes.size()), m.bytes.data()});
        driver.Process(inPointers.data(), outPointers.data(), n, blockMidi.data(),
                       uint32_t(blockMidi.size()));
        done += n;
    }
    return out;
}

}  // namespace BR::Test
