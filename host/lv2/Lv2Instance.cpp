// Instantiation, port connection and the audio-thread block of one LV2 plug-in.
#include "Lv2Instance.h"

#include <lv2/atom/util.h>
#include <lv2/options/options.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>

namespace BR {

namespace {
// Some hosts hand out features without a URI (lv2file); they are passed over.
const void* FindFeature(const LV2_Feature* const* features, const char* uri) {
    for (const LV2_Feature* const* f = features; f && *f; ++f)
        if ((*f)->URI && std::strcmp((*f)->URI, uri) == 0) return (*f)->data;
    return nullptr;
}
}  // namespace

Lv2Instance::Lv2Instance(const Lv2BundleInfo& bundle_, const Lv2ModuleSource& source_, double sampleRate)
    : bundle(bundle_), source(source_), transport(sampleRate) {}

Lv2Instance::~Lv2Instance() = default;

std::unique_ptr<Lv2Instance> Lv2Instance::Create(const Lv2BundleInfo& bundle, const Lv2ModuleSource& source,
                                                 double sampleRate, const LV2_Feature* const* features) {
    const std::string uri = bundle.PluginUri(*source.entry);
    const auto* map = static_cast<const LV2_URID_Map*>(FindFeature(features, LV2_URID__map));
    if (!map) {
        std::fprintf(stderr, "%s: the host offers no urid:map; not instantiated\n", uri.c_str());
        return nullptr;
    }
    if (!(sampleRate > 0.0)) {
        std::fprintf(stderr, "%s: sample rate %g is not usable; not instantiated\n", uri.c_str(), sampleRate);
        return nullptr;
    }
    std::unique_ptr<Lv2Instance> self(new Lv2Instance(bundle, source, sampleRate));
    self->urids.Map(*map, bundle.StateKey("elck"), bundle.StateKey("Chnk"));
    self->schedule = static_cast<const LV2_Worker_Schedule*>(FindFeature(features, LV2_WORKER__schedule));
    if (const auto* options =
            static_cast<const LV2_Options_Option*>(FindFeature(features, LV2_OPTIONS__options)))
        for (const LV2_Options_Option* o = options; o->key; ++o)
            if (o->key == self->urids.maxBlockLength && o->type == self->urids.atomInt && o->value) {
                const int32_t length = *static_cast<const int32_t*>(o->value);
                if (length > 0) self->maxBlock = std::min<uint32_t>(uint32_t(length), kLargestMaxBlock);
            }

    std::unique_ptr<BrelCorvaneBase> module(source.factory());
    if (!module || module->NumInputs() > kMaxModuleChannels || module->NumOutputs() > kMaxModuleChannels) {
        std::fprintf(stderr, "%s: the module cannot be made; not instantiated\n", uri.c_str());
        return nullptr;
    }
    self->layout = BuildLv2PortLayout(*source.entry, *module);
    self->driver =
        std::make_unique<HostDriver>(std::move(module), *source.entry, float(sampleRate), self->maxBlock);
    BrelCorvaneBase& m = self->driver->Module();

    const Lv2PortLayout& layout = self->layout;
    self->controlPorts.assign(layout.numControls, nullptr);
    self->lastSeen.resize(layout.numControls);
    self->controlParameter.resize(layout.numControls);
    for (uint32_t k = 0; k < layout.numControls; ++k) {
        const Lv2Port& port = layout.ports[k];
        // A port left at its described default changes nothing: the module keeps its own default.
        self->lastSeen[k] = port.defaultValue;
        std::string identifier =
            port.kind == Lv2PortKind::Enabled ? BrelAuBase::MasterBypassIdentifier() : std::string(port.name);
        if (identifier.size() >= 32) identifier.resize(31);
        self->controlParameter[k] = m.GetParameterIndex(identifier);
    }
    self->audioIn.assign(layout.numAudioIn, nullptr);
    self->audioOut.assign(layout.numAudioOut, nullptr);
    self->events.resize(kMaxEvents);
    self->spanEvents.resize(kMaxEvents);
    self->positions.resize(kMaxPositions);
    self->inputCopies.assign(layout.numAudioIn, std::vector<float>(self->maxBlock, 0.0f));
    if (layout.midiOut != Lv2PortLayout::kNoPort) self->sentMidi.Attach(*self->driver);
    const int32_t numParameters = m.GetNumberOfParameters();
    self->notifyPending.reset(new std::atomic<uint8_t>[size_t(std::max(numParameters, 1))]);
    for (int32_t i = 0; i < numParameters; ++i)
        self->notifyPending[size_t(i)].store(0);
    return self;
}

void Lv2Instance::ConnectPort(uint32_t port, void* data) {
    if (port < layout.numControls) {
        controlPorts[port] = static_cast<const float*>(data);
        controlsLaidOut = false;
    } else if (port >= layout.firstAudioIn && port < layout.firstAudioIn + layout.numAudioIn) {
        const uint32_t input = port - layout.firstAudioIn;
        if (audioIn[input] == data) return;
        audioIn[input] = static_cast<const float*>(data);
        if (!outputsMoved) UpdateInPlace(input);  // else Run works out every input
    } else if (port >= layout.firstAudioOut && port < layout.firstAudioOut + layout.numAudioOut) {
        float*& slot = audioOut[port - layout.firstAudioOut];
        if (slot == data) return;
        slot = static_cast<float*>(data);
        outputsMoved = true;
    } else if (port == layout.midiIn) {
        midiIn = static_cast<const LV2_Atom_Sequence*>(data);
    } else if (port == layout.midiOut) {
        midiOut = static_cast<LV2_Atom_Sequence*>(data);
    }
}

void Lv2Instance::UpdateInPlace(uint32_t input) {
    const float* buffer = audioIn[input];
    bool shared = false;
    for (const float* out : audioOut)
        shared = shared || (buffer && buffer == out);
    inPlaceInputs = shared ? inPlaceInputs | (1u << input) : inPlaceInputs & ~(1u << input);
}

void Lv2Instance::LayOutControls() {
    // Hosts mostly keep their control values side by side; then one comparison of the whole run
    // tells a block in which no port moved, whatever the number of ports.
    const size_t n = controlPorts.size();
    controlsContiguous = n != 0 && controlPorts[0];
    for (size_t k = 1; k < n && controlsContiguous; ++k)
        controlsContiguous = controlPorts[k] == controlPorts[0] + k;
    controlsLaidOut = true;
}

void Lv2Instance::ReadControls(bool resync) {
    bool anyPending = false;
    BrelCorvaneBase& module = driver->Module();
    for (uint32_t k = 0; k < layout.numControls; ++k) {
        const float* port = controlPorts[k];
        if (!port) continue;
        const float value = *port;
        if (value == lastSeen[k] || !std::isfinite(value)) continue;
        lastSeen[k] = value;
        const int32_t parameter = controlParameter[k];
        if (resync || parameter < 0) continue;
        // lv2:enabled is the inverse of Master Bypass.
        const float parameterValue = k == 0 ? (value > 0.0f ? 0.0f : 1.0f) : value;
        if (schedule) {
            module.StoreParameterValue(parameter, parameterValue);
            if (parameter > 0) {
                notifyPending[size_t(parameter)].store(1, std::memory_order_release);
                anyPending = true;
            }
        } else {
            // No worker (offline hosts): the notifications run here, as the framework's own setter does.
            module.SetParameterValue(parameter, parameterValue);
        }
    }
    if (anyPending && !workScheduled.exchange(true)) {
        const uint32_t message = 0;
        if (schedule->schedule_work(schedule->handle, sizeof message, &message) != LV2_WORKER_SUCCESS)
            workScheduled.store(false);  // tried again at the next block
    }
}

LV2_Worker_Status Lv2Instance::Work() {
    workScheduled.store(false);
    BrelCorvaneBase& module = driver->Module();
    const int32_t numParameters = module.GetNumberOfParameters();
    for (int32_t i = 1; i < numParameters; ++i)
        if (notifyPending[size_t(i)].exchange(0)) module.NotifyParameterValue(i);
    return LV2_WORKER_SUCCESS;
}

void Lv2Instance::CollectEvents(uint32_t frames) {
    numEvents = numPositions = 0;
    if (!midiIn || midiIn->atom.type != urids.atomSequence) return;
    LV2_ATOM_SEQUENCE_FOREACH(midiIn, event) {
        // Frames outside the block land on its nearest end.
        const int64_t time = event->time.frames;
        const uint32_t frame = uint32_t(std::clamp<int64_t>(time, 0, frames > 0 ? frames - 1 : 0));
        if (event->body.type == urids.midiEvent) {
            if (numEvents < kMaxEvents && event->body.size > 0)
                events[numEvents++] = TimedMidi{
                    frame, event->body.size, static_cast<const uint8_t*>(LV2_ATOM_BODY_CONST(&event->body))};
        } else if (event->body.type == urids.atomObject || event->body.type == urids.atomBlank) {
            Lv2Position position;
            const auto* object = reinterpret_cast<const LV2_Atom_Object*>(&event->body);
            if (!ParseLv2Position(object, urids, position)) continue;
            // Positions past the room keep the latest in the last slot.
            const uint32_t slot = std::min(numPositions, kMaxPositions - 1);
            positions[slot] = TimedPosition{frame, position};
            numPositions = slot + 1;
        }
    }
}

void Lv2Instance::Run(uint32_t frames) {
    if (midiOut) {
        // The host sets the size to the room it gives; the port holds an empty sequence until the end.
        midiOutCapacity = midiOut->atom.size >= sizeof(LV2_Atom_Sequence_Body) ? midiOut->atom.size : 0;
        midiOut->atom.type = urids.atomSequence;
        if (midiOutCapacity == 0) {
            midiOut->atom.size = 0;  // not even room for the header: an empty atom, read as no events
        } else {
            lv2_atom_sequence_clear(midiOut);
            midiOut->body.unit = 0;  // times in frames
            midiOut->body.pad = 0;
        }
    }
    if (outputsMoved) {
        outputMissing = false;
        for (float* out : audioOut)
            outputMissing = outputMissing || !out;
        for (uint32_t i = 0; i < layout.numAudioIn; ++i)
            UpdateInPlace(i);
        outputsMoved = false;
    }
    if (outputMissing) return;  // nowhere to render to
    sentMidi.Clear();
    runStart = driver->RenderedFrames();
    // A plain load first: an exchange at every block would be a locked instruction at every block.
    const bool resync = resyncControls.load(std::memory_order_relaxed) &&
                        resyncControls.exchange(false, std::memory_order_acquire);
    if (!ControlsUnchanged()) ReadControls(resync);
    if (midiIn && midiIn->atom.size > sizeof(LV2_Atom_Sequence_Body)) {
        CollectEvents(frames);
    } else {
        numEvents = numPositions = 0;  // an empty sequence, or none
    }

    if (numPositions == 0) {
        // Most blocks carry no position: one span at the transport as it stands, and most carry no
        // MIDI and have inputs apart from outputs: then the host's own buffers go to the driver.
        if (transport.Known() && !driver->Transport()) driver->SetTransport(&transport.Driver());
        if (numEvents == 0 && inPlaceInputs == 0)
            driver->Process(audioIn.data(), audioOut.data(), frames, nullptr, 0);
        else if (frames != 0)
            RenderSpan(0, frames);
        if (sentMidi.Count() != 0) WriteSentMidi(frames);
        return;
    }
    uint32_t start = 0, nextPosition = 0;
    while (start < frames) {
        bool wrapped = false;
        while (nextPosition < numPositions && positions[nextPosition].frame <= start)
            wrapped = transport.Apply(positions[nextPosition++].position) || wrapped;
        if (transport.Known() && !driver->Transport()) driver->SetTransport(&transport.Driver());
        uint32_t end = nextPosition < numPositions ? positions[nextPosition].frame : frames;
        if (!wrapped) {
            RenderSpan(start, end);
        } else {
            // A wrap shows its loop range for one module block; then the range is gone and the
            // position runs on from where the host put it.
            end = std::min(end, start + maxBlock);
            DriverTransport& t = transport.Driver();
            const int64_t location = t.blockSampleLocation + (t.playing ? end - start : 0);
            const double quarter = t.QuarterAt(location);
            RenderSpan(start, end);
            t.blockSampleLocation = location;
            t.blockQuarter = quarter;
            transport.EndWrapBlock();
        }
        start = end;
    }
    // A block of no frames still moves the transport to where the host says.
    while (nextPosition < numPositions)
        if (transport.Apply(positions[nextPosition++].position)) transport.EndWrapBlock();
    if (transport.Known() && !driver->Transport()) driver->SetTransport(&transport.Driver());
    WriteSentMidi(frames);
}

void Lv2Instance::WriteSentMidi(uint32_t frames) {
    if (!midiOut || midiOutCapacity == 0 || frames == 0 || sentMidi.Count() == 0) return;
    const SentMidi* sent = sentMidi.Sorted();
    struct {
        LV2_Atom_Event header;
        uint8_t bytes[3];
    } event{};
    event.header.body.type = urids.midiEvent;
    event.header.body.size = 3;
    for (size_t m = 0; m < sentMidi.Count(); ++m) {
        event.header.time.frames = int64_t(std::min<uint64_t>(sent[m].frame - runStart, frames - 1));
        std::memcpy(event.bytes, sent[m].bytes, 3);
        // A port too small for all loses the rest.
        if (!lv2_atom_sequence_append_event(midiOut, midiOutCapacity, &event.header)) break;
    }
}

void Lv2Instance::RenderSpan(uint32_t from, uint32_t to) {
    const uint32_t numIn = layout.numAudioIn, numOut = layout.numAudioOut;
    const bool inPlace = inPlaceInputs != 0;

    const float* in[kMaxModuleChannels];
    float* out[kMaxModuleChannels];
    uint32_t cursor = 0;
    while (cursor < numEvents && events[cursor].frame < from)
        ++cursor;
    for (uint32_t piece = from; piece < to;) {
        // A host that renders in place gets its inputs copied first, a module block at a time.
        const uint32_t n = inPlace ? std::min(to - piece, maxBlock) : to - piece;
        for (uint32_t i = 0; i < numIn; ++i) {
            in[i] = audioIn[i] ? audioIn[i] + piece : nullptr;
            if (inPlace && audioIn[i]) {
                std::memcpy(inputCopies[i].data(), in[i], n * sizeof(float));
                in[i] = inputCopies[i].data();
            }
        }
        for (uint32_t o = 0; o < numOut; ++o)
            out[o] = audioOut[o] + piece;
        uint32_t count = 0;
        while (cursor < numEvents && events[cursor].frame < piece + n) {
            spanEvents[count] = events[cursor++];
            spanEvents[count++].frame -= piece;
        }
        driver->Process(in, out, n, spanEvents.data(), count);
        piece += n;
    }
}

}  // namespace BR
