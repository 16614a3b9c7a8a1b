// Making a patch's instances and rendering them block by block in the order of their dependencies,
// under one transport that moves on once every instance has rendered the block.
#include "PatchEngine.h"

#include <algorithm>

#include "CalibrationOptions.h"
#include "CommandLine.h"
#include "StateFile.h"

namespace BR {

PatchEngine::PatchEngine(const Patch& patch_, const ModuleSource& modules, size_t midiCapacity)
    : patch(patch_), maxBlock(std::min<uint32_t>(patch_.blockSize, kDefaultMaxBlockSize)) {
    size_t widest = 1;
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
        widest = std::max({widest, size_t(driver->NumHostInputs()), size_t(driver->NumHostOutputs())});
        drivers.push_back(std::move(driver));
    }
    const size_t count = drivers.size();
    takesMidi.assign(count, true);
    midi.reserve(count);
    merged.resize(count);
    pads.resize(count);
    for (size_t i = 0; i < count; ++i) {
        midi.emplace_back(patch.instances[i].events);
        merged[i].reserve(midi[i].Size() + midiCapacity);
        // Room for a whole block of padding now, so that rendering never grows a pad.
        pads[i].resize(size_t(drivers[i]->NumHostInputs()));
        for (std::vector<float>& pad : pads[i])
            pad.reserve(maxBlock);
    }
    in.assign(widest, nullptr);
    out.assign(widest, nullptr);
    clock = std::make_unique<BlockClock>(patch.transport, patch.sampleRate);
    for (auto& driver : drivers)
        driver->SetTransport(clock->Transport(), true);
}

PatchEngine::~PatchEngine() {
    for (auto& driver : drivers)
        driver->SetTransport(nullptr);
}

void PatchEngine::Render(int64_t done, int64_t frames, float* const* const* outputs,
                         const float* const* const* inputs, const TimedMidi* outsideMidi,
                         uint32_t outsideCount) {
    int64_t offset = 0;
    uint32_t outsideNext = 0;
    while (offset < frames) {
        const int64_t at = done + offset;
        const uint32_t n = clock->NextBlock(at, uint32_t(std::min<int64_t>(maxBlock, frames - offset)));
        const uint32_t outsideStart = outsideNext;
        while (outsideNext < outsideCount && int64_t(outsideMidi[outsideNext].frame) < offset + n)
            ++outsideNext;
        for (size_t i : patch.order) {
            HostDriver& driver = *drivers[i];
            const PatchInstance& instance = patch.instances[i];
            const size_t numIn = size_t(driver.NumHostInputs());
            for (size_t c = 0; c < numIn; ++c) {
                const PatchSource source = c < instance.inputs.size() ? instance.inputs[c] : PatchSource{};
                if (source.kind == PatchSource::Kind::Instance) {
                    in[c] = outputs[source.index][size_t(source.channel)] + offset;
                } else if (source.kind == PatchSource::Kind::File) {
                    in[c] = ChannelWindow(patch.files[source.index].channels[size_t(source.channel)], at, n,
                                          pads[i][c]);
                } else {
                    in[c] = inputs && inputs[i] && inputs[i][c] ? inputs[i][c] + offset : nullptr;
                }
            }
            for (size_t c = 0; c < size_t(driver.NumHostOutputs()); ++c)
                out[c] = outputs[i][c] + offset;
            const std::vector<TimedMidi>& scheduled = midi[i].Block(at, n);
            const TimedMidi* events = scheduled.data();
            uint32_t eventCount = uint32_t(scheduled.size());
            if (takesMidi[i] && outsideNext > outsideStart) {
                // Both in frame order, the scheduled first among equals; no more than was reserved.
                std::vector<TimedMidi>& both = merged[i];
                both.clear();
                size_t a = 0;
                uint32_t b = outsideStart;
                while ((a < scheduled.size() || b < outsideNext) && both.size() < both.capacity()) {
                    if (b >= outsideNext ||
                        (a < scheduled.size() &&
                         int64_t(scheduled[a].frame) <= int64_t(outsideMidi[b].frame) - offset)) {
                        both.push_back(scheduled[a++]);
                    } else {
                        TimedMidi e = outsideMidi[b++];
                        e.frame -= uint32_t(offset);
                        both.push_back(e);
                    }
                }
                events = both.data();
                eventCount = uint32_t(both.size());
            }
            driver.Process(in.data(), out.data(), n, events, eventCount);
        }
        clock->Advance(n);
        offset += n;
        if (pacer) pacer->Wait(done + offset);
        if (progress) progress->Update(done + offset);
    }
}

}  // namespace BR
