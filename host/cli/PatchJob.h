// A patch: several instances in one process, fed by each other, by WAV files or by silence, rendered
// block by block in the order of their dependencies under one shared transport, one WAV each.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "Plot.h"
#include "PropertyOptions.h"
#include "RemoteOptions.h"
#include "RenderPieces.h"
#include "WavFile.h"
#include "framework/ModuleCatalogue.h"

namespace BR {

// Where one module input comes from.
struct PatchSource {
    enum class Kind { Silence, Instance, File };
    Kind kind = Kind::Silence;
    size_t index = 0;     // the instance, or the file in Patch::files
    int32_t channel = 0;  // output channel of the instance, or channel of the file, from 0
};

struct PatchSetting {
    std::string name;
    std::string value;  // as text: a number, "on"/"off", or a value name
    std::string place;  // instances[0].set."Output Positive L"
};

struct PatchInstance {
    std::string name;
    std::string place;  // instances[0]
    const CatalogueEntry* entry = nullptr;
    std::vector<PatchSetting> sets;
    std::vector<PropertySetting> properties;  // set after `sets`; `source` holds the place
    std::vector<MidiEventSpec> events;        // from "midi" and "events" together
    std::vector<PatchSource> inputs;          // one per module input; silence past the list
    std::string statePath;                    // absolute or from the working folder; empty for none
    std::string calibrationPath;              // loaded after the settings and properties; empty for none
    std::vector<std::string> scripts;         // user scripts run after the per-user folder's
    std::string outPath;
    std::string midiOutPath;  // the MIDI the instance sends, as a Standard MIDI File; empty for none
};

struct Patch {
    std::string path;  // the patch file, as given: every message starts with it
    double sampleRate = 48000;
    uint32_t blockSize = 256;
    int64_t frames = 48000;
    TransportSettings transport;
    std::vector<PatchInstance> instances;
    std::vector<AudioData> files;  // input WAVs, each read once
    std::vector<size_t> order;     // instances in rendering order: every source before what it feeds
    // Live only: connections made at start, each from an output port to an input port, one side an
    // instance's channel ("v1:0") and the other a port of another client ("system:playback_3").
    struct Connection {
        std::string from, to;
        bool fromInstance;  // which side names an instance
        size_t instance = 0;
        int32_t channel = 0;
        std::string place;  // connect[2]
    };
    std::vector<Connection> connections;
    std::vector<size_t> midiIn;  // instances fed by the live MIDI input port
    bool midiInGiven = false;    // without "midi_in", every instance is fed
    // Live on JACK only: the modules follow JACK's transport (its frame and play state, and its bar,
    // beat and tempo when a timebase master gives them), drive it as its timebase master with the
    // patch's transport, or run the patch's transport on their own as an offline render does.
    enum class JackTransport { Follow, Master, Own };
    JackTransport jackTransport = JackTransport::Follow;
};

// How the module names of a patch become modules: the catalogue and this build's factories, unless a
// test brings modules of its own.
struct ModuleSource {
    std::function<const CatalogueEntry*(const std::string& stemOrId)> find;
    std::function<std::unique_ptr<BrelCorvaneBase>(const CatalogueEntry& entry)> create;
};
const ModuleSource& BuiltModules();

// Reads and checks a patch file, with its MIDI and WAV files. Throws InputError naming the file and
// the place in it ("patch.json: instances[1].inputs[0]: ...").
Patch ParsePatch(const std::string& path, const ModuleSource& modules = BuiltModules());
// Renders and writes one WAV per instance (and with `plot.path`, one plot per instance at
// InstancePlotPath); returns the frames rendered. Settings and states that a module refuses end it
// with an InputError before anything is written.
int64_t RunPatch(const Patch& patch, const ModuleSource& modules = BuiltModules(),
                 const RemoteSettings& remote = {}, const PlotSettings& plot = {});

// Fills `order`, or throws InputError at the input that closes a loop of instances feeding each other.
void OrderInstances(Patch& patch);

}  // namespace BR
