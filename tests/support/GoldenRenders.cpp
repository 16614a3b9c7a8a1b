// The reference render cases and their rendering and hashing through the host driver.
#include "GoldenRenders.h"

#include <algorithm>
#include <cinttypes>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "host/DriverTransport.h"

// The case list leaves trailing fields at their defaults on purpose.
#pragma GCC diagnostic ignored "-Wmissing-field-initializers"

namespace BR::Test {

namespace {

using Settings = std::vector<std::pair<std::string, float>>;
using Input = GoldenCase::Input;

// Note-on/off pairs: `count` notes from `first`, one every `spacing` frames, each held `length` frames,
// pitches taken in turn from `notes`, velocities rising.
std::vector<MidiAt> Notes(uint32_t first, uint32_t spacing, uint32_t length, uint32_t count,
                          const std::vector<uint8_t>& notes, uint8_t channel = 0) {
    std::vector<MidiAt> midi;
    for (uint32_t k = 0; k < count; ++k) {
        const uint8_t note = notes[k % notes.size()];
        const uint8_t velocity = uint8_t(40 + (k * 23) % 87);
        midi.push_back({first + k * spacing, {uint8_t(0x90 | channel), note, velocity}});
        midi.push_back({first + k * spacing + length, {uint8_t(0x80 | channel), note, 0}});
    }
    std::stable_sort(midi.begin(), midi.end(),
                     [](const MidiAt& a, const MidiAt& b) { return a.frame < b.frame; });
    return midi;
}

std::vector<MidiAt> Join(std::vector<MidiAt> a, const std::vector<MidiAt>& b) {
    a.insert(a.end(), b.begin(), b.end());
    std::stable_sort(a.begin(), a.end(), [](const MidiAt& x, const MidiAt& y) { return x.frame < y.frame; });
    return a;
}

Settings StepPattern(const char* lane, int count, float scale) {
    Settings rows;
    for (int k = 1; k <= count; ++k)
        rows.push_back({"Step " + std::to_string(k) + " " + lane, scale * std::sin(0.7f * float(k))});
    return rows;
}

Settings Concat(Settings a, const Settings& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

std::vector<GoldenCase> MakeCases() {
    std::vector<GoldenCase> cases;
    auto add = [&](GoldenCase c) { cases.push_back(std::move(c)); };

    // DC
    add({"dc_defaults_sines", "dc", {}, {}, {}, Input::Sines});
    add({"dc_levels_smoothing_changes",
         "dc",
         {{"Output Positive L", 0.6f},
          {"Output Symmetric L", -0.2f},
          {"Multiplier L", 1.5f},
          {"Input Add L", 0.3f},
          {"Input Multiply L", 0.5f},
          {"Output Symmetric R", 0.8f},
          {"Multiplier R", -1.0f},
          {"Input Multiply R", 1.0f},
          {"Smoothing L", 5.0f},
          {"Smoothing R", -3.0f}},
         {},
         {{2300, "Output Positive L", 0.1f},
          {4500, "Multiplier R", 2.0f},
          {5300, "Smoothing L", -1.0f},
          {7300, "Input Add R", 0.7f}},
         Input::Sines});

    // Function
    add({"function_both_lanes",
         "Function",
         {{"Enable L", 1},
          {"Function L", 1},
          {"Input Scale L", 1.5f},
          {"Output Offset L", 0.1f},
          {"Enable R", 1},
          {"Function R", 3},
          {"Input Offset R", -0.3f},
          {"Output Scale R", -0.7f}},
         {},
         {{3300, "Function L", 2}, {6700, "Enable R", 0}},
         Input::Sines});

    // LFO
    add({"lfo_free_waves",
         "lfo",
         {{"Speed L", 3.0f},
          {"Sine L", 1.0f},
          {"Triangle L", 0.3f},
          {"Speed R", 11.0f},
          {"Square R", 0.6f},
          {"Saw R", -0.4f},
          {"Pulse Width R", 30.0f},
          {"Asymmetry L", 40.0f},
          {"Phase R", 90.0f}},
         {},
         {{3001, "Speed L", 7.5f}, {6700, "Pulse Width R", 70.0f}},
         Input::Silence});
    add({"lfo_tempo_swing_notes",
         "lfo",
         {{"Sync L", 1},
          {"Beat Divisor L", 3},
          {"Beats L", 1},
          {"Saw L", 1.0f},
          {"Swing L", 70.0f},
          {"Sync R", 2},
          {"Random R", 1.0f},
          {"Triplet R", 1},
          {"Reset By Note L", 1},
          {"Smoothing R", 4.0f}},
         Notes(1500, 2100, 400, 4, {60, 64}),
         {{5300, "Swing Type L", 1}},
         Input::Silence,
         true,
         133.0,
         0.5});
    add({"lfo_inputs_noise",
         "lfo",
         {{"Input Mode L", 1},
          {"Noise L", 0.5f},
          {"Sine L", 0.5f},
          {"Input Mode R", 2},
          {"Speed Multiplier R", 2},
          {"Triangle R", 1.0f},
          {"Offset R", 0.2f},
          {"Smoothing L", -2.0f}},
         {},
         {{4500, "Noise L", 0.1f}},
         Input::Sines});

    // Step LFO
    add({"steplfo_transport_pattern",
         "steplfo",
         Concat(StepPattern("L", 16, 0.9f),
                {{"Beat Divisor L", 3}, {"Asymmetry L", 20.0f}, {"Offset R", 0.3f}}),
         {},
         {{4400, "Step 3 L", -0.5f}, {6700, "Length In Steps L", 7}},
         Input::Silence,
         true,
         140.0,
         1.25,
         {{5300, false}, {7300, true}}});
    add({"steplfo_free_interpolated",
         "steplfo",
         Concat(Concat(StepPattern("L", 12, 1.0f), StepPattern("R", 24, -0.6f)), {{"Sync L", 0},
                                                                                  {"Speed L", 9.0f},
                                                                                  {"Interpolation L", 1},
                                                                                  {"Length In Steps L", 12},
                                                                                  {"Smoothing L", 3.0f},
                                                                                  {"Sync R", 1},
                                                                                  {"Start Step R", 5},
                                                                                  {"Length In Steps R", 20},
                                                                                  {"Swing R", 65.0f},
                                                                                  {"Range Mode R", 0},
                                                                                  {"Multiplier R", 1.5f},
                                                                                  {"Gate Length R", 40.0f},
                                                                                  {"Reset By Note L", 1}}),
         Notes(2000, 3000, 500, 3, {48}),
         {{5555, "Speed L", 2.0f}},
         Input::Sines,
         true,
         100.0,
         0.0});
    add({"steplfo_triggers_random_dac",
         "steplfo",
         Concat(StepPattern("L", 8, 0.7f), {{"Sync L", 4},
                                            {"Trigger Input L", 3},
                                            {"Reset Input L", 4},
                                            {"Length In Steps L", 8},
                                            {"Random Enable L", 1},
                                            {"Randomness L", 0.4f},
                                            {"Register Length L", 12},
                                            {"DAC Enable R", 1},
                                            {"DAC Bits R", 6},
                                            {"DAC Bit 1 R", 0.5f},
                                            {"DAC Bit 2 R", -0.25f},
                                            {"DAC Bit 4 R", 0.8f},
                                            {"Random Enable R", 1},
                                            {"Random Mode R", 1},
                                            {"Sync R", 0},
                                            {"Speed R", 15.0f},
                                            {"Input Mode R", 1}}),
         {},
         {{3500, "Randomness L", -0.3f}, {6500, "DAC Scale R", 4.0f}},
         Input::Gates,
         true,
         120.0,
         0.0});

    // Sync
    add({"sync_defaults_transport", "sync", {}, {}, {}, Input::Silence, true, 120.0, 0.0, {{6700, false}}});
    add({"sync_ppqn_swing_offset",
         "sync",
         {{"PPQN", 24},
          {"Swing", 62.0f},
          {"Offset", 3.5f},
          {"Trigger Length", 1.0f},
          {"Clock Low", -0.5f},
          {"Run Signal Type", 2},
          {"Divisor", 2},
          {"Skip First Clock", 1}},
         {},
         {{5300, "PPQN", 4}},
         Input::Silence,
         true,
         150.0,
         2.3,
         {{3300, false}, {4500, true}}});
    add({"sync_fsk_multiplier",
         "sync",
         {{"Enable FSK", 1}, {"Multiplier", 3}, {"Run Output", 5}, {"Mute Clocks", 0}},
         {},
         {},
         Input::Silence,
         true,
         90.0,
         0.0});

    // Trigger
    add({"trigger_gate_notes",
         "trigger",
         {{"Min Voltage", -0.5f}, {"Max Voltage", 0.8f}},
         Notes(100, 700, 300, 12, {60, 62, 60}),
         {{4500, "Max Voltage", 0.3f}},
         Input::Silence});
    add({"trigger_pulse_velocity",
         "trigger",
         {{"Output Mode", 1}, {"Trigger Length", 2.0f}, {"Smoothing", 1.0f}},
         Notes(50, 811, 200, 10, {60}),
         {{4500, "Output Mode", 3}},
         Input::Silence});
    add({"trigger_envelope_notes",
         "trigger",
         {{"Output Mode", 2},
          {"Env 1 Time A1", 0.005f},
          {"Env 1 Level A1", 0.7f},
          {"Env 1 Time A2", 0.01f},
          {"Env 1 Time A3", 0.02f},
          {"Env 1 Time R1", 0.01f},
          {"Env 1 Time R2", 0.03f},
          {"Env 1 Type A2", 0},
          {"Env 1 Velocity Depth", 0.5f}},
         Join(Notes(200, 1700, 900, 5, {60}), {{3000, {0xB0, 1, 64}}, {6100, {0xE0, 0, 90}}}),
         {{5300, "Env 1 Sustain", 0.2f}, {5300, "Env 1 Shape R1", 0.9f}},
         Input::Silence});
    add({"trigger_cv_gates",
         "trigger",
         {{"CV Trigger Enable", 1},
          {"CV Trigger Threshold", 0.25f},
          {"Output Mode", 2},
          {"Env 1 Time R1", 0.002f}},
         {},
         {{4500, "CV Trigger Threshold", -0.1f}},
         Input::Gates});

    // Voice Controller
    Settings allSignals;
    const char* sources[8] = {"Offset", "Pitch", "Gate", "Env1", "Env2", "Env3", "Trigger", "Velocity"};
    for (int o = 1; o <= 6; ++o) {
        for (int k = 0; k < 8; ++k)
            allSignals.push_back(
                {"Output " + std::to_string(o) + " " + sources[k], 0.1f + 0.01f * float(k + o)});
        allSignals.push_back({"Output " + std::to_string(o) + " Smoothing", o % 2 ? 2.0f : -2.0f});
    }
    add({"voice_defaults_notes",
         "voicecontroller",
         {},
         Notes(10, 900, 600, 9, {60, 67, 55}),
         {{2500, "Output 1 Offset", 0.3f}, {4500, "Gate Open Voltage", 0.5f}},
         Input::Silence});
    add({"voice_all_signals_glide",
         "voicecontroller",
         Concat(allSignals, {{"Portamento Mode", 1},
                             {"Portamento Time", 0.5f},
                             {"Trigger Length", 10.0f},
                             {"Pitch LFO Depth", 20.0f},
                             {"Env 2 Time A2", 0.05f},
                             {"Note Priority", 1},
                             {"Transpose", 3}}),
         Join(Notes(0, 1300, 2000, 7, {48, 60, 52, 72}),
              {{2500, {0xE0, 0, 100}}, {5200, {0xB0, 1, 90}}, {7000, {0xE0, 0, 30}}}),
         {{3300, "Output 2 Env1", -0.6f}, {6700, "Portamento Mode", 3}},
         Input::Silence});
    GoldenCase master{"voice_master_three_voices",
                      "voicecontroller",
                      {{"Poly Mode", 1}, {"Polyphony/Voice", 3}},
                      Notes(20, 500, 1400, 16, {60, 64, 67, 71, 48}),
                      {},
                      Input::Silence};
    master.voices = 3;
    master.voiceSettings = Concat(allSignals, {{"Env 1 Time R1", 0.02f}});
    add(master);

    // Quantizer
    add({"quantizer_manual_smoothing",
         "quantizer",
         {{"Enable L", 1},
          {"Steps L", 12},
          {"Offset L", 25.0f},
          {"Transpose L", 3},
          {"Smoothing L", 2.0f},
          {"Enable R", 1},
          {"Steps R", 7},
          {"Steps Fine R", 0.5f},
          {"Smoothing R", -4.0f}},
         {},
         {{3300, "Steps L", 24}, {5300, "Transpose R", -5}, {6700, "Enable L", 0}},
         Input::Sines});
    add({"quantizer_calibrated_scales",
         "quantizer",
         {{"Enable L", 1},
          {"Mode L", 1},
          {"Enable Scale L", 1},
          {"Key L", 2},
          {"Scale L", 1},
          {"Enable R", 1},
          {"Mode R", 1},
          {"Transpose R", 2},
          {"Smoothing R", 1.0f}},
         {},
         {{2500, "Key L", 7}, {4500, "Enable Scale R", 1}, {6700, "Mode L", 0}},
         Input::Sines});

    // Gate controllers: note channels, gate groups with trigger lengths, inputs to gates, clock
    const std::vector<MidiAt> gateNotes =
        Join(Notes(30, 600, 350, 12, {60, 64, 55, 72}), Notes(90, 450, 200, 16, {36, 37, 38, 41, 43}, 1));
    add({"ardent_notes_groups_clock",
         "ardentcontroller",
         {{"Output 4", 17},
          {"Ch 1 Vel Output", 2},
          {"Ch 1 Note Priority", 1},
          {"Ch 2 MIDI Channel", 1},
          {"Gates 5 MIDI Channel", 2},
          {"Gates 5 Base Note", 36},
          {"Trigger 5/2 Length", 3.0f},
          {"MIDI Out Clock", 1},
          {"MIDI Clock Swing", 60.0f},
          {"Input 1", 1},
          {"Input Mode 1", 1},
          {"Input 1 To Gate", 9},
          {"Input Thru", 0}},
         gateNotes,
         {{2500, "Output 4", 200}, {4500, "Input 1", 3}, {6100, "Ch 1 Gate Output", 12}},
         Input::Sines,
         true,
         128.0,
         0.25,
         {{5500, false}, {7100, true}}});
    add({"basalt_groups_inputs_clock",
         "basaltcontroller",
         {{"Output 2", 33},
          {"Gates 1 MIDI Channel", 1},
          {"Gates 1 Base Note", 60},
          {"Gates 6 MIDI Channel", 2},
          {"Gates 6 Base Note", 36},
          {"Trigger 6/3 Length", 2.0f},
          {"MIDI Out Clock", 1},
          {"Use MIDI SPP", 1},
          {"MIDI Out MIDI Channel", 1},
          {"MIDI Out Polyphony", 2},
          {"Input 3 To Gate", 20},
          {"Input 8 To Gate", 41},
          {"Input Thru", 2}},
         gateNotes,
         {{3000, "Output 2", 90}, {5200, "Input 3 To Gate", 2}, {6600, "MIDI Clock Swing", 70.0f}},
         Input::Sines,
         true,
         96.0,
         1.0,
         {{4800, false}, {6000, true}}});

    // SMUX
    add({"smux_flips",
         "smux",
         {{"Flip R", 1}},
         {},
         {{3001, "Flip L", 1}, {6002, "Flip R", 0}},
         Input::Sines});

    // Follower
    add({"follower_pitch_envelope",
         "follower",
         {{"Env Attack", 5.0f},
          {"Env Release", 80.0f},
          {"Output Pitch R", 0.5f},
          {"Output Env L", 0.3f},
          {"Smoothing L", 2.0f},
          {"Lowpass Cutoff", 300.0f}},
         {},
         {{3300, "Env Gain", 24.0f}, {5300, "Pitch Mode", 1}, {7000, "Highpass Cutoff", 20.0f}},
         Input::Sines});

    // CV To MIDI: its audio passes through; the messages leave through its ring
    add({"cvtomidi_cc_notes",
         "cvtomidi",
         {{"Enable CC L", 1}, {"Send CC L", 7}, {"Enable Note R", 1}, {"Max Rate R", 200.0f}},
         {},
         {{4500, "Enable L", 0}, {6000, "Pitch Slope R", 24.0f}},
         Input::Sines});

    // The other hardware modules
    add({"acencoder_levels",
         "acencoder",
         {{"Enable L", 1}, {"Min Output Level L", 0.2f}, {"Enable R", 1}, {"Input Polarity R", 1}},
         {},
         {{4500, "Max Output Level R", 0.5f}},
         Input::Sines});
    add({"cvinput_modes",
         "cvinput",
         {{"Mode L", 1}, {"Level L", 0.5f}, {"Smoothing L", 3.0f}, {"Mode R", 2}, {"Scale R", -2.0f}},
         {},
         {{4500, "Level L", 0.9f}, {6000, "Scale R", 1.5f}},
         Input::Sines});
    add({"cinder_defaults", "cindercombiner", {}, {}, {}, Input::Sines});
    add({"dunmore_defaults", "dunmorecombiner", {}, {}, {}, Input::Sines});
    return cases;
}

void FillInputs(Channels& in, Input kind) {
    for (size_t c = 0; c < in.size(); ++c) {
        for (size_t i = 0; i < in[c].size(); ++i) {
            const double t = double(i) / 48000.0;
            if (kind == Input::Sines) {
                in[c][i] = float(0.8 * std::sin(2.0 * M_PI * (3.0 + 5.0 * double(c)) * t + 0.3 * double(c)));
            } else if (kind == Input::Gates) {
                const uint32_t period = 700 + 130 * uint32_t(c);
                in[c][i] = (i + 37 * c) % period < period / 3 ? 1.0f : -0.2f;
            }
        }
    }
}

void ApplySettings(HostDriver& driver, const std::vector<std::pair<std::string, float>>& settings) {
    for (const auto& [row, value] : settings)
        if (!driver.SetParameterByName(row, value))
            std::fprintf(stderr, "golden: no row \"%s\"\n", row.c_str());
}

struct Instance {
    std::unique_ptr<HostDriver> driver;
    Channels in, out;
    std::vector<const float*> inPointers;
    std::vector<float*> outPointers;
};

void Hash(uint64_t& hash, const Channels& channels) {
    for (const auto& channel : channels) {
        for (float v : channel) {
            uint32_t bits;
            std::memcpy(&bits, &v, sizeof bits);
            for (int b = 0; b < 4; ++b) {
                hash ^= (bits >> (8 * b)) & 0xFFu;
                hash *= 1099511628211ull;
            }
        }
    }
}

}  // namespace

const std::vector<uint32_t>& GoldenBlockSizes() {
    static const std::vector<uint32_t> sizes{1, 7, 32, 256, 1024};
    return sizes;
}

const std::vector<GoldenCase>& GoldenCases() {
    static const std::vector<GoldenCase> cases = MakeCases();
    return cases;
}

uint64_t RenderGoldenHash(const GoldenCase& goldenCase, uint32_t blockSize, const GoldenSetter& setter) {
    const uint32_t frames = kGoldenFrames;
    std::vector<Instance> instances(size_t(1 + goldenCase.voices));
    for (size_t k = 0; k < instances.size(); ++k) {
        Instance& instance = instances[k];
        instance.driver = MakeDriver(goldenCase.stem, 48000.0f, 1024);
        if (!instance.driver) return 0;
        if (k == 0) {
            ApplySettings(*instance.driver, goldenCase.settings);
        } else {
            instance.driver->SetParameterByName("Poly Mode", 2);
            instance.driver->SetParameterByName("Polyphony/Voice", float(k));
            ApplySettings(*instance.driver, goldenCase.voiceSettings);
        }
        instance.in.assign(size_t(instance.driver->NumHostInputs()), std::vector<float>(frames, 0.0f));
        if (k == 0) FillInputs(instance.in, goldenCase.input);
        instance.out.assign(size_t(instance.driver->NumHostOutputs()), std::vector<float>(frames, 0.0f));
        instance.inPointers.resize(std::max<size_t>(instance.in.size(), 1));
        instance.outPointers.resize(std::max<size_t>(instance.out.size(), 1));
    }
    DriverTransport transport;
    transport.tempo = goldenCase.tempo;
    transport.blockQuarter = goldenCase.startQuarter;
    transport.blockSampleLocation =
        int64_t(std::llround(goldenCase.startQuarter * 60.0 * 48000.0 / goldenCase.tempo));
    if (goldenCase.transport) instances[0].driver->SetTransport(&transport);

    size_t nextChange = 0, nextPlay = 0;
    std::vector<TimedMidi> blockMidi;
    for (uint32_t done = 0; done < frames;) {
        const uint32_t n = std::min(blockSize, frames - done);
        while (nextChange < goldenCase.changes.size() && goldenCase.changes[nextChange].frame <= done) {
            const GoldenChange& change = goldenCase.changes[nextChange++];
            if (setter) {
                setter(*instances[0].driver, change.row, change.value);
            } else {
                instances[0].driver->SetParameterByName(change.row, change.value);
            }
        }
        while (nextPlay < goldenCase.playChanges.size() && goldenCase.playChanges[nextPlay].first <= done)
            transport.playing = goldenCase.playChanges[nextPlay++].second;
        blockMidi.clear();
        for (const MidiAt& m : goldenCase.midi)
            if (m.frame >= done && m.frame < done + n)
                blockMidi.push_back(TimedMidi{m.frame - done, uint32_t(m.bytes.size()), m.bytes.data()});
        for (size_t k = 0; k < instances.size(); ++k) {
            Instance& instance = instances[k];
            for (size_t c = 0; c < instance.in.size(); ++c)
                instance.inPointers[c] = instance.in[c].data() + done;
            if (k > 0) instance.inPointers[0] = instances[0].out[0].data() + done;
            for (size_t c = 0; c < instance.out.size(); ++c)
                instance.outPointers[c] = instance.out[c].data() + done;
            if (k == 0) {
                instance.driver->Process(instance.inPointers.data(), instance.outPointers.data(), n,
                                         blockMidi.data(), uint32_t(blockMidi.size()));
            } else {
                instance.driver->Process(instance.inPointers.data(), instance.outPointers.data(), n, nullptr,
                                         0);
            }
        }
        done += n;
    }
    uint64_t hash = 14695981039346656037ull;
    for (const Instance& instance : instances)
        Hash(hash, instance.out);
    return hash;
}

std::string GoldenHashPath() {
    const char* source = std::getenv("CORVANE_SOURCE_DIR");
    return std::string(source && *source ? source : CORVANE_GOLDEN_SOURCE_DIR) + "/" + kGoldenHashFile;
}

std::string GoldenLine(const std::string& caseName, uint32_t blockSize, uint64_t hash) {
    char text[160];
    std::snprintf(text, sizeof text, "%s %u %016" PRIx64, caseName.c_str(), blockSize, hash);
    return text;
}

}  // namespace BR::Test
