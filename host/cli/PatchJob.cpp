// Rendering a patch: instances in the order of their dependencies, block by block, under one
// transport that moves on once every instance has rendered the block.
#include "PatchJob.h"

#include <algorithm>

#include "CommandLine.h"
#include "MidiFileOut.h"
#include "PatchEngine.h"
#include "Progress.h"

namespace BR {

namespace {

// Depth-first search along "takes input from", on a stack of its own so that no chain of instances
// can exhaust the call stack; on meeting an instance that is still being visited, the input just
// followed closes a loop.
struct LoopFinder {
    const Patch& patch;
    std::vector<int> mark;  // 0 unvisited, 1 on the path, 2 done
    std::vector<size_t> path;
    std::vector<size_t> order;

    void Visit(size_t first) {
        struct Step {
            size_t instance;
            size_t nextInput;
        };
        std::vector<Step> stack{{first, 0}};
        mark[first] = 1;
        path.push_back(first);
        while (!stack.empty()) {
            const size_t i = stack.back().instance;
            const PatchInstance& instance = patch.instances[i];
            if (stack.back().nextInput < instance.inputs.size()) {
                const size_t k = stack.back().nextInput++;
                const PatchSource& source = instance.inputs[k];
                if (source.kind != PatchSource::Kind::Instance) continue;
                if (mark[source.index] == 1) Report(i, k, source.index);
                if (mark[source.index] == 0) {
                    mark[source.index] = 1;
                    path.push_back(source.index);
                    stack.push_back({source.index, 0});
                }
                continue;
            }
            path.pop_back();
            mark[i] = 2;
            order.push_back(i);  // after everything it takes input from
            stack.pop_back();
        }
    }

    [[noreturn]] void Report(size_t consumer, size_t input, size_t producer) const {
        std::string loop;
        auto from = std::find(path.begin(), path.end(), producer);
        for (auto it = from; it != path.end(); ++it)
            loop += patch.instances[*it].name + " <- ";
        loop += patch.instances[producer].name;
        const PatchInstance& instance = patch.instances[consumer];
        const PatchSource& source = instance.inputs[input];
        throw InputError(patch.path + ": " + instance.place + ".inputs[" + std::to_string(input) + "]: \"" +
                         patch.instances[producer].name + ":" + std::to_string(source.channel) +
                         "\" closes a loop: " + loop +
                         " (\"<-\" reads \"takes input from\"); instances cannot feed each other in a loop");
    }
};

}  // namespace

void OrderInstances(Patch& patch) {
    LoopFinder finder{patch, std::vector<int>(patch.instances.size(), 0), {}, {}};
    for (size_t i = 0; i < patch.instances.size(); ++i)
        if (finder.mark[i] == 0) finder.Visit(i);
    patch.order = std::move(finder.order);
}

int64_t RunPatch(const Patch& patch, const ModuleSource& modules, const RemoteSettings& remote,
                 const PlotSettings& plot) {
    CheckPlotSettings(plot);
    ApplyRemoteSettings(remote);
    PatchEngine engine(patch, modules);
    const size_t count = engine.Count();
    // Offline: each capture keeps the whole render's messages for its file.
    std::vector<std::unique_ptr<ModuleMidiCapture>> midiOut(count);
    for (size_t i = 0; i < count; ++i) {
        const PatchInstance& instance = patch.instances[i];
        if (instance.midiOutPath.empty()) continue;
        midiOut[i] = std::make_unique<ModuleMidiCapture>(4096, true);
        if (!midiOut[i]->Attach(engine.Driver(i)))
            throw InputError(patch.path + ": " + instance.place + ".midi_out: " + instance.entry->moduleName +
                             " sends no MIDI (CV To MIDI does)");
    }
    std::vector<AudioData> outputs(count);
    std::vector<std::vector<float*>> at(count);
    std::vector<float* const*> table(count);
    for (size_t i = 0; i < count; ++i) {
        outputs[i].sampleRate = int(patch.sampleRate);
        outputs[i].channels.assign(size_t(engine.Driver(i).NumHostOutputs()),
                                   std::vector<float>(size_t(patch.frames), 0.0f));
        at[i].assign(std::max<size_t>(outputs[i].channels.size(), 1), nullptr);
        table[i] = at[i].data();
    }
    for (size_t i = 0; i < count; ++i)
        for (size_t c = 0; c < outputs[i].channels.size(); ++c)
            at[i][c] = outputs[i].channels[c].data();
    // One stretch of the whole length: the engine cuts it into blocks exactly as a loop of blocks
    // would, and paces each block when asked.
    const RealTimePacer pacer(remote.realtime, patch.sampleRate);
    engine.SetPacer(&pacer);
    {
        RenderProgress progress(patch.frames, patch.sampleRate);
        engine.SetProgress(&progress);
        engine.Render(0, patch.frames, table.data(), nullptr);
        engine.SetProgress(nullptr);
    }
    for (size_t i = 0; i < count; ++i)
        WriteWav(patch.instances[i].outPath, outputs[i]);
    if (!plot.path.empty()) {
        for (size_t i = 0; i < count; ++i) {
            const PatchInstance& instance = patch.instances[i];
            PlotData data;
            data.title = instance.name + " (" + engine.Driver(i).Module().GetModuleName() + "), " +
                         std::to_string(int(patch.sampleRate)) + " Hz";
            data.sampleRate = patch.sampleRate;
            data.names = OutputChannelNames(*instance.entry, int32_t(outputs[i].channels.size()));
            for (const std::vector<float>& channel : outputs[i].channels)
                data.channels.push_back(&channel);
            for (const MidiEventSpec& event : instance.events)
                data.midi.push_back({int64_t(event.frame), event.bytes});
            WritePlot(data, plot, InstancePlotPath(plot.path, instance.name));
        }
    }
    for (size_t i = 0; i < count; ++i) {
        if (!midiOut[i]) continue;
        // Every driver of the patch starts at frame 0 with the patch.
        const SentMidi* sorted = midiOut[i]->Sorted();
        const std::vector<SentMidi> sent(sorted, sorted + midiOut[i]->Count());
        midiOut[i]->Detach();
        WriteMidiFile(patch.instances[i].midiOutPath, sent, int64_t(patch.sampleRate),
                      uint64_t(patch.frames));
    }
    return patch.frames;
}

}  // namespace BR
