// The buffer tables of a live patch and the period it renders.
#include "LiveHost.h"

#include <algorithm>

namespace BR {

LiveHost::LiveHost(const Patch& patch, const ModuleSource& modules)
    : engine(patch, modules, kMidiCapacity),
      midiSlots(kMidiCapacity),
      settings(patch.transport),
      sampleRate(patch.sampleRate) {
    const size_t count = engine.Count();
    outputs.resize(count);
    inputs.resize(count);
    for (size_t i = 0; i < count; ++i) {
        outputs[i].assign(std::max<size_t>(size_t(engine.Driver(i).NumHostOutputs()), 1), nullptr);
        inputs[i].assign(std::max<size_t>(size_t(engine.Driver(i).NumHostInputs()), 1), nullptr);
        outputTable.push_back(outputs[i].data());
        inputTable.push_back(inputs[i].data());
    }
    if (patch.midiInGiven) {
        engine.takesMidi.assign(count, false);
        for (size_t i : patch.midiIn)
            engine.takesMidi[i] = true;
    }
}

void LiveHost::Cycle(uint32_t frames, uint32_t midiCount) {
    const int64_t at = done.load(std::memory_order_relaxed);
    engine.Render(at, frames, outputTable.data(), inputTable.data(), midiSlots.data(),
                  std::min(midiCount, kMidiCapacity));
    done.store(at + frames, std::memory_order_relaxed);
}

void LiveHost::Follow(const OutsideTransport& outside) {
    DriverTransport* transport = engine.Transport();
    if (!transport) return;
    double tempo = settings.tempo, quarters = 0;
    int32_t numerator = settings.meterNumerator, denominator = settings.meterDenominator;
    if (outside.hasBeats) {
        tempo = outside.tempo;
        quarters = outside.quarters;
        numerator = outside.meterNumerator;
        denominator = outside.meterDenominator;
    } else {
        quarters = settings.position + double(outside.frame) * tempo / (60.0 * sampleRate);
    }
    const bool rollingOn = outside.rolling && transport->playing &&
                           outside.frame == transport->blockSampleLocation && tempo == transport->tempo &&
                           numerator == transport->meterNumerator &&
                           denominator == transport->meterDenominator;
    if (rollingOn) return;
    transport->playing = outside.rolling;
    transport->blockSampleLocation = outside.frame;
    transport->blockQuarter = quarters;
    transport->tempo = tempo;
    transport->meterNumerator = numerator;
    transport->meterDenominator = denominator;
}

}  // namespace BR
