// Voice Controller test rigs: one instance behind the host driver, and a master with voice
// instances fed by the master's first output, rendered block by block in dependency order.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "modules/sequencing/VoiceController.h"
#include "tests/support/Render.h"

namespace BR::Test {

using VoiceController = BrelCorvaneVoiceController::BrelCorvane;

inline std::vector<uint8_t> Midi(uint8_t status, uint8_t data1, uint8_t data2) {
    return {status, data1, data2};
}

struct VoiceRig {
    explicit VoiceRig(float sampleRate = 48000.0f, uint32_t maxBlockSize = kDefaultMaxBlockSize)
        : driver(MakeDriver("voicecontroller", sampleRate, maxBlockSize)),
          vc(static_cast<VoiceController&>(driver->Module())) {}

    void Set(const std::string& name, float value) {
        ASSERT_TRUE(driver->SetParameterByName(name, value)) << name;
    }
    Channels Render(uint32_t frames, uint32_t blockSize = 256, const std::vector<MidiAt>& midi = {},
                    const Channels& inputs = {}) {
        return RenderFrames(*driver, frames, blockSize, inputs, midi);
    }
    // Every note n maps to n / 128, so that pitch outputs read back as notes.
    void LinearCalibration() {
        for (int k = 0; k < kCalibrationEntries; ++k)
            vc.Calibration().notes[k].value = float(k) / 128.0f;
    }

    std::unique_ptr<HostDriver> driver;
    VoiceController& vc;
};

// A master and voices 1..n as separate instances; each block renders the master first, then every
// voice with the master's first output as its input.
struct PolyRig {
    PolyRig(int32_t polyphony, const std::vector<int32_t>& voiceNumbers, uint32_t blockSize = 256)
        : block(blockSize) {
        master = std::make_unique<VoiceRig>();
        master->Set("Poly Mode", 1);
        master->Set("Polyphony/Voice", float(polyphony));
        for (int32_t number : voiceNumbers) {
            voices.push_back(std::make_unique<VoiceRig>());
            voices.back()->Set("Poly Mode", 2);
            voices.back()->Set("Polyphony/Voice", float(number));
        }
        masterOut.assign(6, std::vector<float>());
        voiceOut.assign(voices.size(), Channels(6));
    }

    // Renders `frames` with MIDI for the master at absolute frames; appends to masterOut and voiceOut.
    void Render(uint32_t frames, const std::vector<MidiAt>& midi = {}) {
        std::vector<float> silence(block, 0.0f);
        std::vector<std::vector<float>> out(6, std::vector<float>(block));
        std::vector<TimedMidi> blockMidi;
        for (uint32_t done = 0; done < frames;) {
            const uint32_t n = std::min(block, frames - done);
            blockMidi.clear();
            for (const MidiAt& m : midi)
                if (m.frame >= done + rendered && m.frame < done + rendered + n)
                    blockMidi.push_back(
                        TimedMidi{m.frame - done - rendered, uint32_t(m.bytes.size()), m.bytes.data()});
            float* o[6];
            for (int c = 0; c < 6; ++c)
                o[c] = out[size_t(c)].data();
            const float* in[1] = {silence.data()};
            master->driver->Process(in, o, n, blockMidi.data(), uint32_t(blockMidi.size()));
            for (int c = 0; c < 6; ++c)
                masterOut[size_t(c)].insert(masterOut[size_t(c)].end(), out[size_t(c)].begin(),
                                            out[size_t(c)].begin() + n);
            const std::vector<float> markers(out[0].begin(), out[0].begin() + n);
            for (size_t v = 0; v < voices.size(); ++v) {
                const float* vin[1] = {markers.data()};
                voices[v]->driver->Process(vin, o, n, nullptr, 0);
                for (int c = 0; c < 6; ++c)
                    voiceOut[v][size_t(c)].insert(voiceOut[v][size_t(c)].end(), out[size_t(c)].begin(),
                                                  out[size_t(c)].begin() + n);
            }
            done += n;
        }
        rendered += frames;
    }

    VoiceController& Master() { return master->vc; }
    VoiceController& Voice(size_t v) { return voices[v]->vc; }

    uint32_t block;
    uint32_t rendered = 0;
    std::unique_ptr<VoiceRig> master;
    std::vector<std::unique_ptr<VoiceRig>> voices;
    Channels masterOut;
    std::vector<Channels> voiceOut;
};

}  // namespace BR::Test
