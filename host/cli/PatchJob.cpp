// Rendering a patch: instances in the order of their dependencies, block by block, under one
// transport that moves on once every instance has rendered the block.
#include "PatchJob.h"

#include <algorithm>

#include "CalibrationOptions.h"
#include "CommandLine.h"
#include "StateFile.h"
#include "host/HostDriver.h"

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

int64_t RunPatch(const Patch& patch, const ModuleSource& modules, const RemoteSettings& remote) {
    ApplyRemoteSettings(remote);
    const size_t count = patch.instances.size();
    const uint32_t maxBlock = std::min<uint32_t>(patch.blockSize, kDefaultMaxBlockSize);
    std::vector<std::unique_ptr<HostDriver>> drivers;
    for (const PatchInstance& instance : patch.instances) {
        std::unique_ptr<BrelCorvaneBase> module = CreateScriptedModule(
            [&] { return modules.create(*instance.entry); }, instance.scripts, instance.name);
        if (!module)
            throw InputError(patch.path + ": " + instance.place + ".module: \"" + instance.entry->stem +
                             "\" could not be made");
        auto driver = std::make_unique<HostDriver>(std::move(module), *instance.entry,
                                                   float(patch.sampleRate), maxBlock);
        // As a host does: the saved state first, then the patch's own settings.
        if (!instance.statePath.empty()) {
            try {
                RestoreStateFile(instance.statePath, *driver);
            } catch (const std::runtime_error& e) {
                throw InputError(patch.path + ": " + instance.place + ".state: " + e.what());
            }
        }
        for (const PatchSetting& setting : instance.sets) {
            try {
                ApplySetting(*driver, setting.name, setting.value, setting.place);
            } catch (const UsageError& e) {
                throw InputError(patch.path + ": " + e.what());
            }
        }
        for (const PropertySetting& property : instance.properties) {
            try {
                ApplyPropertySetting(*driver, property, patch.path + ": " + property.source);
            } catch (const UsageError& e) {
                throw InputError(e.what());
            }
        }
        if (!instance.calibrationPath.empty())
            LoadCalibrationOption(*driver, instance.calibrationPath,
                                  patch.path + ": " + instance.place + ".calibration");
        drivers.push_back(std::move(driver));
    }

    std::vector<AudioData> outputs(count);
    std::vector<MidiSchedule> midi;
    midi.reserve(count);
    std::vector<std::vector<std::vector<float>>> pads(count);
    for (size_t i = 0; i < count; ++i) {
        outputs[i].sampleRate = int(patch.sampleRate);
        outputs[i].channels.assign(size_t(drivers[i]->NumHostOutputs()),
                                   std::vector<float>(size_t(patch.frames), 0.0f));
        midi.emplace_back(patch.instances[i].events);
        pads[i].resize(size_t(drivers[i]->NumHostInputs()));
    }

    BlockClock clock(patch.transport, patch.sampleRate);
    for (auto& driver : drivers)
        driver->SetTransport(clock.Transport(), true);
    std::vector<const float*> in;
    std::vector<float*> out;
    const RealTimePacer pacer(remote.realtime, patch.sampleRate);
    for (int64_t done = 0; done < patch.frames;) {
        const uint32_t n = clock.NextBlock(done, uint32_t(std::min<int64_t>(maxBlock, patch.frames - done)));
        for (size_t i : patch.order) {
            HostDriver& driver = *drivers[i];
            const PatchInstance& instance = patch.instances[i];
            in.assign(std::max<size_t>(size_t(driver.NumHostInputs()), 1), nullptr);
            for (size_t c = 0; c < instance.inputs.size() && c < size_t(driver.NumHostInputs()); ++c) {
                const PatchSource& source = instance.inputs[c];
                if (source.kind == PatchSource::Kind::Instance) {
                    in[c] = outputs[source.index].channels[size_t(source.channel)].data() + done;
                } else if (source.kind == PatchSource::Kind::File) {
                    in[c] = ChannelWindow(patch.files[source.index].channels[size_t(source.channel)], done, n,
                                          pads[i][c]);
                }
            }
            out.assign(std::max<size_t>(size_t(driver.NumHostOutputs()), 1), nullptr);
            for (size_t c = 0; c < size_t(driver.NumHostOutputs()); ++c)
                out[c] = outputs[i].channels[c].data() + done;
            const std::vector<TimedMidi>& blockMidi = midi[i].Block(done, n);
            driver.Process(in.data(), out.data(), n, blockMidi.data(), uint32_t(blockMidi.size()));
        }
        clock.Advance(n);
        done += n;
        pacer.Wait(done);
    }
    for (auto& driver : drivers)
        driver->SetTransport(nullptr);
    for (size_t i = 0; i < count; ++i)
        WriteWav(patch.instances[i].outPath, outputs[i]);
    return patch.frames;
}

}  // namespace BR
