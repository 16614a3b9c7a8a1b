// A small LV2 host that runs Corvane's plug-ins beside Debian's blop plug-ins that do the same job,
// with the same activity (a gate toggling at the same rate, comparable control values, the same block
// sizes), and prints the time per frame of each and the ratios measured in this one run.
// Usage: peer_bench [--seconds S] [--repeats N] [--only TEXT] [--block N]  (--only: plug-ins whose label
//        holds TEXT; --block: this block size alone, at most 256, instead of 32, 64 and 256)
//        peer_bench --outputs 1  (prints every plug-in's output over one gate period instead of timing)
#include <lilv/lilv.h>
#include <lv2/atom/atom.h>
#include <lv2/buf-size/buf-size.h>
#include <lv2/options/options.h>
#include <lv2/urid/urid.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <map>
#include <memory>
#include <string>
#include <vector>

// The setup lists leave trailing fields at their defaults on purpose.
#pragma GCC diagnostic ignored "-Wmissing-field-initializers"

namespace {

constexpr double kRate = 48000.0;
constexpr uint32_t kMaxBlock = 256;
constexpr uint32_t kGatePeriod = 4800;   // frames: the gate is high for half of it, 10 Hz at 48 kHz
constexpr uint32_t kSinePeriod = 16000;  // frames: a 3 Hz sine at 48 kHz

struct UridMap {
    std::map<std::string, LV2_URID> ids;
    static LV2_URID Map(LV2_URID_Map_Handle handle, const char* uri) {
        auto& ids = static_cast<UridMap*>(handle)->ids;
        auto it = ids.find(uri);
        if (it != ids.end()) return it->second;
        const LV2_URID id = LV2_URID(ids.size() + 1);
        ids.emplace(uri, id);
        return id;
    }
};

// What a plug-in is given: control values by symbol, and which audio or CV inputs carry the gate or a
// constant 1 (all others read silence).
struct Setup {
    std::string label;
    std::string uri;
    std::map<std::string, float> controls;
    std::vector<std::string> gateInputs;
    std::vector<std::string> highInputs;
    int baseline = -1;  // index of the blop plug-in this one is measured against, -1 for a blop one
    int channels = 1;   // signals it renders for the one the blop plug-in renders
    std::vector<std::string> sineInputs;  // inputs that read a 3 Hz sine from -1 to 1
};

double ThreadSeconds() {
    timespec t{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return double(t.tv_sec) + 1e-9 * double(t.tv_nsec);
}

class Runner {
public:
    Runner(LilvWorld* world, const LilvPlugins* plugins, const Setup& setup,
           const LV2_Feature* const* features, const std::vector<float>& gate, const std::vector<float>& sine)
        : setup(setup), gate(gate), sine(sine) {
        LilvNode* uri = lilv_new_uri(world, setup.uri.c_str());
        plugin = lilv_plugins_get_by_uri(plugins, uri);
        lilv_node_free(uri);
        if (!plugin) return;
        instance = lilv_plugin_instantiate(plugin, kRate, features);
        if (!instance) return;
        LilvNode* inputClass = lilv_new_uri(world, LV2_CORE__InputPort);
        LilvNode* controlClass = lilv_new_uri(world, LV2_CORE__ControlPort);
        LilvNode* atomClass = lilv_new_uri(world, LV2_ATOM__AtomPort);
        const uint32_t numPorts = lilv_plugin_get_num_ports(plugin);
        controls.assign(numPorts, 0.0f);
        ones.assign(kMaxBlock, 1.0f);
        zeros.assign(kMaxBlock, 0.0f);
        for (uint32_t p = 0; p < numPorts; ++p) {
            const LilvPort* port = lilv_plugin_get_port_by_index(plugin, p);
            const std::string symbol = lilv_node_as_string(lilv_port_get_symbol(plugin, port));
            const bool input = lilv_port_is_a(plugin, port, inputClass);
            if (lilv_port_is_a(plugin, port, controlClass)) {
                LilvNode* def = nullptr;
                lilv_port_get_range(plugin, port, &def, nullptr, nullptr);
                controls[p] = def ? lilv_node_as_float(def) : 0.0f;
                lilv_node_free(def);
                auto it = setup.controls.find(symbol);
                if (it != setup.controls.end()) {
                    controls[p] = it->second;
                    ++controlsSet;
                }
                lilv_instance_connect_port(instance, p, &controls[p]);
            } else if (lilv_port_is_a(plugin, port, atomClass)) {
                atoms.push_back(std::make_unique<Sequence>());
                atoms.back()->input = input;
                atoms.back()->Reset();
                lilv_instance_connect_port(instance, p, &atoms.back()->header);
                atomPorts.push_back({p, atoms.back().get()});
            } else if (input) {
                const bool isGate = std::count(setup.gateInputs.begin(), setup.gateInputs.end(), symbol) != 0;
                const bool isHigh = std::count(setup.highInputs.begin(), setup.highInputs.end(), symbol) != 0;
                const bool isSine = std::count(setup.sineInputs.begin(), setup.sineInputs.end(), symbol) != 0;
                if (isGate) gatePorts.push_back(p);
                if (isSine) sinePorts.push_back(p);
                lilv_instance_connect_port(instance, p, isHigh ? ones.data() : zeros.data());
                gatesFound += isGate;
                sinesFound += isSine;
            } else {
                outputs.emplace_back(kMaxBlock, 0.0f);
                lilv_instance_connect_port(instance, p, outputs.back().data());
            }
        }
        lilv_node_free(inputClass);
        lilv_node_free(controlClass);
        lilv_node_free(atomClass);
        lilv_instance_activate(instance);
    }
    ~Runner() {
        if (instance) {
            lilv_instance_deactivate(instance);
            lilv_instance_free(instance);
        }
    }
    bool Valid() const { return instance != nullptr; }
    bool AllSet() const {
        return controlsSet == setup.controls.size() && gatesFound == setup.gateInputs.size() &&
               sinesFound == setup.sineInputs.size();
    }

    // Renders `frames` in blocks of `block`; returns the CPU seconds this thread spent on it (on a
    // shared machine the wall clock also counts the time other processes held the core).
    double Render(uint64_t frames, uint32_t block) {
        const double start = ThreadSeconds();
        for (uint64_t done = 0; done < frames; done += block) {
            const float* g = gate.data() + (position % kGatePeriod);
            for (uint32_t p : gatePorts)
                lilv_instance_connect_port(instance, p, const_cast<float*>(g));
            const float* w = sine.data() + (position % kSinePeriod);
            for (uint32_t p : sinePorts)
                lilv_instance_connect_port(instance, p, const_cast<float*>(w));
            for (auto& [p, sequence] : atomPorts)
                sequence->Reset();
            lilv_instance_run(instance, block);
            position += block;
        }
        return ThreadSeconds() - start;
    }
    float LastOutput() const { return outputs.empty() ? 0.0f : outputs[0][0]; }

private:
    struct Sequence {
        LV2_Atom_Sequence header;
        uint8_t space[4096];
        bool input = true;
        void Reset() {
            header.atom.type = 0;
            header.body.unit = 0;
            header.body.pad = 0;
            // An input is an empty sequence; an output offers its whole space.
            header.atom.size = input ? sizeof(LV2_Atom_Sequence_Body) : sizeof space;
        }
    };

    Setup setup;
    const std::vector<float>& gate;
    const std::vector<float>& sine;
    const LilvPlugin* plugin = nullptr;
    LilvInstance* instance = nullptr;
    std::vector<float> controls, ones, zeros;
    std::vector<std::vector<float>> outputs;
    std::vector<std::unique_ptr<Sequence>> atoms;
    std::vector<std::pair<uint32_t, Sequence*>> atomPorts;
    std::vector<uint32_t> gatePorts, sinePorts;
    size_t controlsSet = 0, gatesFound = 0, sinesFound = 0;
    uint64_t position = 0;
};

std::vector<Setup> Pairs() {
    std::vector<Setup> setups;
    // Envelopes: attack 10 ms to 1, decay 50 ms to a sustain of 0.5, release 100 ms, on the gate. The
    // blop envelope starts its attack only at a rising edge of its trigger input while its gate is
    // high (with a silent trigger it never leaves 0): both read the gate.
    setups.push_back({"blop adsr_gt",
                      "http://drobilla.net/plugins/blop/adsr_gt",
                      {{"attack", 0.01f}, {"decay", 0.05f}, {"sustain", 0.5f}, {"release", 0.1f}},
                      {"gate", "trigger"},
                      {}});
    setups.push_back({"Corvane Trigger (CV gate, envelope)",
                      "urn:brelmont:corvane:trigger",
                      {{"output_mode", 2},
                       {"cv_trigger_enable", 1},
                       {"cv_trigger_threshold", 0.5f},
                       {"env_1_time_a1", 0.01f},
                       {"env_1_level_a1", 1.0f},
                       {"env_1_time_a2", 0.05f},
                       {"env_1_level_a2", 0.5f},
                       {"env_1_time_a3", 0.0f},
                       {"env_1_sustain", 0.5f},
                       {"env_1_time_r1", 0.1f},
                       {"env_1_level_r1", 0.0f},
                       {"env_1_time_r2", 0.0f}},
                      {"in_1"},
                      {},
                      0});
    // The same with parabolic segments, the envelope's other curve type, at the default shape 0.5.
    Setup parabolic = setups.back();
    parabolic.label = "Corvane Trigger (parabolic segments)";
    for (const char* segment : {"a1", "a2", "a3", "r1", "r2"})
        parabolic.controls[std::string("env_1_type_") + segment] = 0.0f;
    setups.push_back(parabolic);
    // Parabolic segments of shape 1 are straight lines, the segments the blop envelope draws: the
    // like-for-like pair.
    Setup straight = parabolic;
    straight.label = "Corvane Trigger (straight segments)";
    for (const char* segment : {"a1", "a2", "a3", "r1", "r2"})
        straight.controls[std::string("env_1_shape_") + segment] = 1.0f;
    setups.push_back(straight);
    // Oscillators: a 5 Hz triangle (Corvane's LFO renders both of its channels).
    setups.push_back({"blop triangle",
                      "http://drobilla.net/plugins/blop/triangle",
                      {{"freq", 5.0f}, {"slope", 0.5f}},
                      {},
                      {}});
    const int triangle = int(setups.size()) - 1;
    setups.push_back({"Corvane LFO (triangle, 2 channels)",
                      "urn:brelmont:corvane:lfo",
                      {{"speed_l", 5.0f}, {"triangle_l", 1.0f}, {"speed_r", 5.0f}, {"triangle_r", 1.0f}},
                      {},
                      {},
                      triangle,
                      2});
    // Sequencers: 64 steps, one step on for each rising edge of the gate, values -1..1.
    Setup blopSequencer{"blop sequencer_64",
                        "http://drobilla.net/plugins/blop/sequencer_64",
                        {{"steps", 64.0f}},
                        {"trigger"},
                        {"gate"}};
    // "Trig Free" jumps to the next step at each trigger and runs to that step's end at its speed, then
    // waits: at 2000 steps a second it waits nearly all the time, as a sequencer does.
    Setup stepLFO{"Corvane Step LFO (Trig Free, 2 lanes)",
                  "urn:brelmont:corvane:steplfo",
                  {{"sync_l", 4},
                   {"speed_l", 20.0f},
                   {"speed_multiplier_l", 3},
                   {"speed_r", 20.0f},
                   {"speed_multiplier_r", 3},
                   {"trigger_input_l", 1},
                   {"signal_input_l", 0},
                   {"length_in_steps_l", 64},
                   {"sync_r", 4},
                   {"trigger_input_r", 1},
                   {"signal_input_r", 0},
                   {"length_in_steps_r", 64}},
                  {"in_1"},
                  {}};
    for (int k = 0; k < 64; ++k) {
        char symbol[32];
        const float value = std::sin(0.7f * float(k));
        std::snprintf(symbol, sizeof symbol, "val%02d", k);
        blopSequencer.controls[symbol] = value;
        std::snprintf(symbol, sizeof symbol, "step_%d_l", k + 1);
        stepLFO.controls[symbol] = value;
        std::snprintf(symbol, sizeof symbol, "step_%d_r", k + 1);
        stepLFO.controls[symbol] = value;
    }
    setups.push_back(blopSequencer);
    stepLFO.baseline = int(setups.size()) - 1;
    stepLFO.channels = 2;
    setups.push_back(stepLFO);

    // Quantisers: a 3 Hz sine from -1 to 1 onto 20 evenly spaced levels from -1 to 1. Corvane's
    // Quantizer quantises its left channel on a grid of 19 steps across the same span (20 levels) and
    // passes its right one through.
    Setup blopQuantiser{"blop quantiser_50",
                        "http://drobilla.net/plugins/blop/quantiser_50",
                        {{"min", -1.0f}, {"max", 1.0f}, {"steps", 20.0f}},
                        {},
                        {},
                        -1,
                        1,
                        {"in"}};
    for (int k = 0; k < 20; ++k) {
        char symbol[32];
        std::snprintf(symbol, sizeof symbol, "val%02d", k);
        blopQuantiser.controls[symbol] = -1.0f + 2.0f * float(k) / 19.0f;
    }
    setups.push_back(blopQuantiser);
    setups.push_back({"Corvane Quantizer (grid, left channel)",
                      "urn:brelmont:corvane:quantizer",
                      {{"enable_l", 1}, {"mode_l", 0}, {"steps_l", 19.0f}},
                      {},
                      {},
                      int(setups.size()) - 1,
                      1,
                      {"in_1"}});
    return setups;
}

}  // namespace

int main(int argc, char** argv) {
    double seconds = 1.0;
    int repeats = 9;
    std::string only;
    uint32_t onlyBlock = 0;
    bool showOutputs = false;
    for (int i = 1; i + 1 < argc; i += 2) {
        if (std::strcmp(argv[i], "--outputs") == 0) showOutputs = std::atoi(argv[i + 1]) != 0;
        if (std::strcmp(argv[i], "--seconds") == 0) seconds = std::atof(argv[i + 1]);
        if (std::strcmp(argv[i], "--repeats") == 0) repeats = std::atoi(argv[i + 1]);
        if (std::strcmp(argv[i], "--only") == 0) only = argv[i + 1];
        if (std::strcmp(argv[i], "--block") == 0) onlyBlock = uint32_t(std::atoi(argv[i + 1]));
    }
    if (!(seconds > 0.0) || repeats < 1 || onlyBlock > kMaxBlock) {
        std::fprintf(stderr, "usage: peer_bench [--seconds S] [--repeats N] [--only TEXT] [--block N<=%u]\n",
                     kMaxBlock);
        return 2;
    }

    LilvWorld* world = lilv_world_new();
    lilv_world_load_all(world);
    LilvNode* bundle = lilv_new_file_uri(world, nullptr, CORVANE_LV2_BUNDLE "/");
    lilv_world_load_bundle(world, bundle);
    lilv_node_free(bundle);
    const LilvPlugins* plugins = lilv_world_get_all_plugins(world);

    UridMap urids;
    LV2_URID_Map map{&urids, &UridMap::Map};
    const int32_t maxBlock = int32_t(kMaxBlock);
    const LV2_URID intType = UridMap::Map(&urids, LV2_ATOM__Int);
    LV2_Options_Option options[] = {
        {LV2_OPTIONS_INSTANCE, 0, UridMap::Map(&urids, LV2_BUF_SIZE__maxBlockLength), sizeof maxBlock,
         intType, &maxBlock},
        {LV2_OPTIONS_INSTANCE, 0, 0, 0, 0, nullptr}};
    LV2_Feature mapFeature{LV2_URID__map, &map};
    LV2_Feature optionsFeature{LV2_OPTIONS__options, options};
    const LV2_Feature* features[] = {&mapFeature, &optionsFeature, nullptr};

    // The gate, long enough to be read from any place in its period by a block of up to kMaxBlock.
    std::vector<float> gate(kGatePeriod + kMaxBlock);
    for (size_t i = 0; i < gate.size(); ++i)
        gate[i] = (i % kGatePeriod) < kGatePeriod / 2 ? 1.0f : 0.0f;

    std::vector<float> sine(kSinePeriod + kMaxBlock);
    for (size_t i = 0; i < sine.size(); ++i)
        sine[i] = float(std::sin(2.0 * M_PI * double(i % kSinePeriod) / double(kSinePeriod)));

    const std::vector<Setup> setups = Pairs();
    std::vector<std::unique_ptr<Runner>> runners;
    for (const Setup& setup : setups) {
        runners.push_back(std::make_unique<Runner>(world, plugins, setup, features, gate, sine));
        if (!runners.back()->Valid() || !runners.back()->AllSet()) {
            std::fprintf(stderr, "peer_bench: cannot run %s (%s) with its settings\n", setup.label.c_str(),
                         setup.uri.c_str());
            return 1;
        }
    }

    if (showOutputs) {
        // Every plug-in's first output at each millisecond over one period of the gate, after two
        // periods in which they settle: shows that each does its job under this activity, and which of
        // the Trigger's segment shapes does what the blop envelope does.
        for (auto& runner : runners)
            runner->Render(2 * kGatePeriod, 48);
        std::printf("%4s", "ms");
        for (size_t k = 0; k < setups.size(); ++k)
            std::printf(" %9zu", k + 1);
        std::printf("\n");
        for (uint32_t ms = 0; ms < kGatePeriod / 48; ++ms) {
            std::printf("%4u", ms);
            for (auto& runner : runners) {
                runner->Render(48, 48);
                std::printf(" %9.5f", double(runner->LastOutput()));
            }
            std::printf("\n");
        }
        for (size_t k = 0; k < setups.size(); ++k)
            std::printf("%zu: %s\n", k + 1, setups[k].label.c_str());
        runners.clear();
        lilv_world_free(world);
        return 0;
    }

    std::printf(
        "Activity: 48 kHz; a gate of 10 Hz (high 50 ms, low 50 ms) into the envelope gates and the\n"
        "sequencer triggers; envelopes A 10 ms to 1, D 50 ms to sustain 0.5, R 100 ms (the Trigger once\n"
        "with its default exponential segments, once with parabolic ones); sequencers of 64 steps\n"
        "(sin(0.7 k)) stepping on each rising edge; oscillators a 5 Hz triangle; quantisers a 3 Hz sine\n"
        "onto 20 levels from -1 to 1. Corvane's LFO and Step LFO render both their channels (\"per\n"
        "channel\": against two blop instances). Each figure: the least CPU time of %d runs of %.1f s of\n"
        "audio, runs interleaved between plug-ins.\n\n",
        repeats, seconds);
    const uint64_t frames = uint64_t(seconds * kRate);
    std::printf("%-40s %6s %12s\n", "plug-in", "block", "ns/frame");
    const std::vector<uint32_t> blocks =
        onlyBlock != 0 ? std::vector<uint32_t>{onlyBlock} : std::vector<uint32_t>{32u, 64u, 256u};
    for (uint32_t block : blocks) {
        std::vector<double> best(runners.size(), 1e30);
        auto chosen = [&](size_t k) {
            return only.empty() || setups[k].label.find(only) != std::string::npos;
        };
        for (int r = 0; r < repeats; ++r)
            for (size_t k = 0; k < runners.size(); ++k)
                if (chosen(k)) best[k] = std::min(best[k], runners[k]->Render(frames, block));
        for (size_t k = 0; k < runners.size(); ++k)
            if (chosen(k))
                std::printf("%-40s %6u %12.2f\n", setups[k].label.c_str(), block,
                            best[k] * 1e9 / double(frames));
        for (size_t k = 0; k < runners.size(); ++k)
            if (setups[k].baseline >= 0 && chosen(k) && chosen(size_t(setups[k].baseline))) {
                const double ratio = best[k] / best[size_t(setups[k].baseline)];
                std::printf("  ratio %-38s / %-18s = %.2f  (block %u)", setups[k].label.c_str(),
                            setups[size_t(setups[k].baseline)].label.c_str(), ratio, block);
                // Per signal: against as many blop instances as it renders channels.
                if (setups[k].channels > 1)
                    std::printf(", per channel %.2f", ratio / double(setups[k].channels));
                std::printf("\n");
            }
        std::printf("\n");
    }
    runners.clear();
    lilv_world_free(world);
    return 0;
}
