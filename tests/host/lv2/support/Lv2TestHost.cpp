// The in-process test host.
#include "Lv2TestHost.h"

#include <lv2/atom/util.h>
#include <lv2/buf-size/buf-size.h>
#include <lv2/midi/midi.h>
#include <lv2/time/time.h>

#include <algorithm>
#include <cstring>
#include <stdexcept>

#include "tests/host/lv2/probe/HostProbe.h"
#include "tests/support/AllocationCounter.h"

namespace BR::Test {

const Lv2Library& CorvaneLibrary() {
    static const Lv2Library library(CorvaneBundleInfo());
    return library;
}

const Lv2Library& ProbeLibrary() {
    static const Lv2Library library(BrelCorvaneHostProbe::ProbeBundleInfo());
    return library;
}

Lv2TestHost::Lv2TestHost(const Lv2Library& library, const std::string& uri, HostOptions options_)
    : hostOptions(options_) {
    for (uint32_t i = 0; const LV2_Descriptor* d = library.Descriptor(i); ++i)
        if (uri == d->URI) descriptor = d;
    if (!descriptor) throw std::runtime_error("no plug-in " + uri);

    mapFeature = {LV2_URID__map, &map};
    unmapFeature = {LV2_URID__unmap, &unmap};
    features = {&mapFeature, &unmapFeature};
    if (hostOptions.maxBlockLength) {
        maxBlock = *hostOptions.maxBlockLength;
        options.push_back({LV2_OPTIONS_INSTANCE, 0, Map(LV2_BUF_SIZE__maxBlockLength), sizeof(int32_t),
                           Map(LV2_ATOM__Int), &maxBlock});
        options.push_back({LV2_OPTIONS_INSTANCE, 0, 0, 0, 0, nullptr});
        optionsFeature = {LV2_OPTIONS__options, options.data()};
        features.push_back(&optionsFeature);
    }
    if (hostOptions.worker) {
        scheduleFeature = {LV2_WORKER__schedule, &schedule};
        features.push_back(&scheduleFeature);
    }
    features.push_back(nullptr);
    handle = descriptor->instantiate(descriptor, hostOptions.sampleRate, "/nowhere/", features.data());
    if (!handle) return;
    worker = static_cast<const LV2_Worker_Interface*>(descriptor->extension_data(LV2_WORKER__interface));

    const Lv2PortLayout& layout = Instance().Layout();
    controls.resize(layout.numControls);
    for (uint32_t k = 0; k < layout.numControls; ++k)
        controls[k] = layout.ports[k].defaultValue;
    inputs.assign(layout.numAudioIn, std::vector<float>(hostOptions.capacity, 0.0f));
    outputs.assign(layout.numAudioOut, std::vector<float>(hostOptions.capacity, 0.0f));
    sequence.resize(1 << 16);
    descriptor->activate(handle);
}

Lv2TestHost::~Lv2TestHost() {
    if (!handle) return;
    descriptor->deactivate(handle);
    descriptor->cleanup(handle);
}

LV2_URID Lv2TestHost::Map(const std::string& uri) {
    for (size_t i = 0; i < uris.size(); ++i)
        if (uris[i] == uri) return LV2_URID(i + 1);
    uris.push_back(uri);
    return LV2_URID(uris.size());
}

LV2_URID Lv2TestHost::MapUri(LV2_URID_Map_Handle h, const char* uri) {
    return static_cast<Lv2TestHost*>(h)->Map(uri);
}

const char* Lv2TestHost::UnmapUri(LV2_URID_Unmap_Handle h, LV2_URID urid) {
    auto* self = static_cast<Lv2TestHost*>(h);
    return urid >= 1 && urid <= self->uris.size() ? self->uris[urid - 1].c_str() : nullptr;
}

LV2_Worker_Status Lv2TestHost::Schedule(LV2_Worker_Schedule_Handle h, uint32_t, const void*) {
    auto* self = static_cast<Lv2TestHost*>(h);
    ++self->scheduled;
    ++self->pendingWork;
    return LV2_WORKER_SUCCESS;
}

void Lv2TestHost::RunWork() {
    for (; pendingWork > 0; --pendingWork)
        worker->work(handle, nullptr, nullptr, 0, nullptr);
}

uint32_t Lv2TestHost::PortIndex(const std::string& symbol) const {
    for (const Lv2Port& port : const_cast<Lv2TestHost*>(this)->Instance().Layout().ports)
        if (port.symbol == symbol) return port.index;
    throw std::runtime_error("no port " + symbol);
}

float& Lv2TestHost::Control(const std::string& symbol) {
    const uint32_t index = PortIndex(symbol);
    if (index >= controls.size()) throw std::runtime_error(symbol + " is no control port");
    return controls[index];
}

void Lv2TestHost::AddMidi(uint32_t frame, std::vector<uint8_t> bytes) {
    events.push_back({frame, uint32_t(events.size()), Map(LV2_MIDI__MidiEvent), std::move(bytes)});
}

void Lv2TestHost::AddPosition(uint32_t frame, const PositionFields& f) {
    uint8_t buffer[512];
    LV2_Atom_Forge forge;
    lv2_atom_forge_init(&forge, &map);
    lv2_atom_forge_set_buffer(&forge, buffer, sizeof buffer);
    LV2_Atom_Forge_Frame object;
    lv2_atom_forge_object(&forge, &object, 0, Map(LV2_TIME__Position));
    if (f.frame) lv2_atom_forge_key(&forge, Map(LV2_TIME__frame)), lv2_atom_forge_long(&forge, *f.frame);
    if (f.speed) lv2_atom_forge_key(&forge, Map(LV2_TIME__speed)), lv2_atom_forge_float(&forge, *f.speed);
    if (f.bpm)
        lv2_atom_forge_key(&forge, Map(LV2_TIME__beatsPerMinute)), lv2_atom_forge_float(&forge, *f.bpm);
    if (f.bar) lv2_atom_forge_key(&forge, Map(LV2_TIME__bar)), lv2_atom_forge_long(&forge, *f.bar);
    if (f.barBeat)
        lv2_atom_forge_key(&forge, Map(LV2_TIME__barBeat)), lv2_atom_forge_float(&forge, *f.barBeat);
    if (f.beat) lv2_atom_forge_key(&forge, Map(LV2_TIME__beat)), lv2_atom_forge_double(&forge, *f.beat);
    if (f.beatsPerBar)
        lv2_atom_forge_key(&forge, Map(LV2_TIME__beatsPerBar)), lv2_atom_forge_float(&forge, *f.beatsPerBar);
    if (f.beatUnit)
        lv2_atom_forge_key(&forge, Map(LV2_TIME__beatUnit)), lv2_atom_forge_int(&forge, *f.beatUnit);
    lv2_atom_forge_pop(&forge, &object);
    const auto* atom = reinterpret_cast<const LV2_Atom*>(buffer);
    events.push_back(
        {frame, uint32_t(events.size()), atom->type,
         std::vector<uint8_t>(buffer + sizeof(LV2_Atom), buffer + sizeof(LV2_Atom) + atom->size)});
}

void Lv2TestHost::Run(uint32_t frames) {
    if (frames > hostOptions.capacity) throw std::runtime_error("Run longer than the host's capacity");
    const Lv2PortLayout& layout = Instance().Layout();
    // The sequence: header, then events in frame order, in the order added for equal frames. (Not
    // std::stable_sort: its buffer comes from the nothrow new, which the allocation counter lacks.)
    std::sort(events.begin(), events.end(), [](const Event& a, const Event& b) {
        return a.frame != b.frame ? a.frame < b.frame : a.order < b.order;
    });
    auto* seq = reinterpret_cast<LV2_Atom_Sequence*>(sequence.data());
    seq->atom.type = Map(LV2_ATOM__Sequence);
    seq->body.unit = 0;
    seq->body.pad = 0;
    uint32_t size = sizeof(LV2_Atom_Sequence_Body);
    for (const Event& e : events) {
        auto* ev = reinterpret_cast<LV2_Atom_Event*>(sequence.data() + sizeof(LV2_Atom) + size);
        ev->time.frames = e.frame;
        ev->body.type = e.type;
        ev->body.size = uint32_t(e.body.size());
        std::memcpy(ev + 1, e.body.data(), e.body.size());
        size += uint32_t(lv2_atom_pad_size(sizeof(LV2_Atom_Event) + e.body.size()));
    }
    seq->atom.size = size;
    events.clear();

    for (uint32_t k = 0; k < layout.numControls; ++k)
        descriptor->connect_port(handle, k, &controls[k]);
    for (uint32_t c = 0; c < layout.numAudioIn; ++c)
        descriptor->connect_port(handle, layout.firstAudioIn + c, inputs[c].data());
    for (uint32_t c = 0; c < layout.numAudioOut; ++c)
        descriptor->connect_port(handle, layout.firstAudioOut + c,
                                 inPlace && c < layout.numAudioIn ? inputs[c].data() : outputs[c].data());
    descriptor->connect_port(handle, layout.midiIn, sequence.data());
    if (layout.midiOut != Lv2PortLayout::kNoPort) {
        // As hosts do for output sequences: the atom's size is the room there is.
        outSequence.assign(sizeof(LV2_Atom) + midiOutCapacity + 64, 0xEE);
        auto* out = reinterpret_cast<LV2_Atom_Sequence*>(outSequence.data());
        out->atom.type = 0;
        out->atom.size = midiOutCapacity;
        descriptor->connect_port(handle, layout.midiOut, outSequence.data());
    }
    AllocationScope scope;
    descriptor->run(handle, frames);
    lastRunAllocations = scope.Count();
}

std::vector<Lv2TestHost::SentEvent> Lv2TestHost::SentMidi() {
    std::vector<SentEvent> sent;
    if (outSequence.empty()) return sent;
    const auto* seq = reinterpret_cast<const LV2_Atom_Sequence*>(outSequence.data());
    if (seq->atom.type != Map(LV2_ATOM__Sequence))
        throw std::runtime_error("the MIDI output port holds no sequence");
    if (seq->atom.size > midiOutCapacity)
        throw std::runtime_error("the MIDI output sequence overran its room");
    const LV2_URID midiEvent = Map(LV2_MIDI__MidiEvent);
    LV2_ATOM_SEQUENCE_FOREACH(seq, ev) {
        if (ev->body.type != midiEvent) throw std::runtime_error("an event of another type than MIDI");
        const auto* bytes = static_cast<const uint8_t*>(LV2_ATOM_BODY_CONST(&ev->body));
        sent.push_back({ev->time.frames, std::vector<uint8_t>(bytes, bytes + ev->body.size)});
    }
    // The bytes past the sequence are as the host left them.
    for (size_t i = sizeof(LV2_Atom) + midiOutCapacity; i < outSequence.size(); ++i)
        if (outSequence[i] != 0xEE) throw std::runtime_error("the plug-in wrote past the MIDI output's room");
    return sent;
}

LV2_State_Status Lv2TestHost::Save(StateMap& state) {
    const auto* iface =
        static_cast<const LV2_State_Interface*>(descriptor->extension_data(LV2_STATE__interface));
    struct Context {
        Lv2TestHost* host;
        StateMap* state;
    } context{this, &state};
    auto store = [](LV2_State_Handle h, uint32_t key, const void* value, size_t size, uint32_t type,
                    uint32_t) -> LV2_State_Status {
        auto* c = static_cast<Context*>(h);
        const auto* bytes = static_cast<const uint8_t*>(value);
        (*c->state)[c->host->uris[key - 1]] = Value{type, std::vector<uint8_t>(bytes, bytes + size)};
        return LV2_STATE_SUCCESS;
    };
    return iface->save(handle, store, &context, LV2_STATE_IS_POD | LV2_STATE_IS_PORTABLE, nullptr);
}

LV2_State_Status Lv2TestHost::Restore(const StateMap& state) {
    const auto* iface =
        static_cast<const LV2_State_Interface*>(descriptor->extension_data(LV2_STATE__interface));
    struct Context {
        Lv2TestHost* host;
        const StateMap* state;
    } context{this, &state};
    auto retrieve = [](LV2_State_Handle h, uint32_t key, size_t* size, uint32_t* type,
                       uint32_t* flags) -> const void* {
        auto* c = static_cast<Context*>(h);
        auto it = c->state->find(c->host->uris[key - 1]);
        if (it == c->state->end()) return nullptr;
        *size = it->second.bytes.size();
        *type = it->second.type;
        *flags = LV2_STATE_IS_POD | LV2_STATE_IS_PORTABLE;
        return it->second.bytes.data();
    };
    return iface->restore(handle, retrieve, &context, 0, nullptr);
}

}  // namespace BR::Test
