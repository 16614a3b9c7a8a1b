// Reading a patch file: every value is checked where it stands, and a fault names its place.
#include <climits>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <set>

#include "CommandLine.h"
#include "InputLimits.h"
#include "MidiFile.h"
#include "PatchJob.h"
#include "PatchJson.h"
#include "modules/ModuleFactory.h"

namespace BR {

namespace {

using Json = PatchJson;

class PatchReader {
public:
    PatchReader(const std::string& path_, const ModuleSource& modules_)
        : path(path_), folder(std::filesystem::path(path_).parent_path()), modules(modules_) {}

    Patch Read();

private:
    [[noreturn]] void Fail(const std::string& place, const std::string& message) const {
        throw InputError(path + ": " + (place.empty() ? "" : place + ": ") + message);
    }
    void OnlyKeys(const Json& object, const std::string& place,
                  std::initializer_list<const char*> keys) const;
    double Number(const Json& value, const std::string& place, double minimum, double maximum) const;
    int64_t Whole(const Json& value, const std::string& place, int64_t minimum, int64_t maximum) const;
    std::string Text(const Json& value, const std::string& place) const;
    bool Boolean(const Json& value, const std::string& place) const;
    // Relative paths are taken from the patch file's folder.
    std::string Resolve(const std::string& file) const {
        const std::filesystem::path p(file);
        return p.is_absolute() || folder.empty() ? p.string() : (folder / p).string();
    }

    void ReadTransport(const Json& value, TransportSettings& transport) const;
    void ReadConnections(const Json& value, Patch& patch) const;
    void ReadInstance(const Json& value, size_t index, Patch& patch);
    PatchSource ReadSource(const Json& value, const std::string& place, Patch& patch);
    // A file the render writes: in an existing folder, and written by no other place of the patch.
    // `owner`, the instance, is named when another place writes the same file.
    std::string WritablePath(const std::string& given, const std::string& place, const std::string& owner);

    std::string path;
    std::filesystem::path folder;
    const ModuleSource& modules;
    std::map<std::string, size_t> names;      // instance name -> index
    std::map<std::string, size_t> fileIndex;  // resolved WAV path -> index in Patch::files
    std::map<std::string, std::string> outs;  // resolved output path -> place that writes it
    uint64_t inputSamples = 0;                // of every input WAV, for the memory limit
    size_t eventCount = 0;                    // of every instance, for the limit
};

void PatchReader::OnlyKeys(const Json& object, const std::string& place,
                           std::initializer_list<const char*> keys) const {
    if (!object.is_object()) Fail(place, "expected an object");
    for (const auto& item : object.items()) {
        bool known = false;
        std::string list;
        for (const char* key : keys) {
            known = known || item.key() == key;
            list += std::string(list.empty() ? "" : ", ") + key;
        }
        if (!known)
            Fail(place.empty() ? item.key() : place + "." + item.key(),
                 "unknown key; expected one of " + list);
    }
}

double PatchReader::Number(const Json& value, const std::string& place, double minimum,
                           double maximum) const {
    if (!value.is_number()) Fail(place, "expected a number");
    const double number = value.get<double>();
    if (!std::isfinite(number) || number < minimum || number > maximum) {
        char text[128];
        std::snprintf(text, sizeof text, "%g is outside %g..%g", number, minimum, maximum);
        Fail(place, text);
    }
    return number;
}

int64_t PatchReader::Whole(const Json& value, const std::string& place, int64_t minimum,
                           int64_t maximum) const {
    const double number = Number(value, place, double(minimum), double(maximum));
    if (number != std::floor(number)) Fail(place, "expected a whole number");
    return int64_t(number);
}

std::string PatchReader::Text(const Json& value, const std::string& place) const {
    if (!value.is_string()) Fail(place, "expected a string");
    return value.get<std::string>();
}

bool PatchReader::Boolean(const Json& value, const std::string& place) const {
    if (!value.is_boolean()) Fail(place, "expected true or false");
    return value.get<bool>();
}

void PatchReader::ReadTransport(const Json& value, TransportSettings& transport) const {
    if (value.is_null()) {
        transport.present = false;
        return;
    }
    OnlyKeys(value, "transport", {"tempo", "position", "playing", "meter", "loop"});
    if (value.contains("tempo")) {
        transport.tempo = Number(value["tempo"], "transport.tempo", kMinTempo, kMaxTempo);
    }
    if (value.contains("position"))
        transport.position =
            Number(value["position"], "transport.position", -kMaxPositionQuarters, kMaxPositionQuarters);
    if (value.contains("playing")) transport.playing = Boolean(value["playing"], "transport.playing");
    if (value.contains("meter")) {
        const std::string meter = Text(value["meter"], "transport.meter");
        int numerator = 0, denominator = 0;
        char rest = 0;
        if (std::sscanf(meter.c_str(), "%d/%d%c", &numerator, &denominator, &rest) != 2 || numerator < 1 ||
            numerator > 64 || denominator < 1 || denominator > 64)
            Fail("transport.meter", "\"" + meter + "\": expected N/D with both from 1 to 64, e.g. \"6/8\"");
        transport.meterNumerator = numerator;
        transport.meterDenominator = denominator;
    }
    if (value.contains("loop")) {
        const Json& loop = value["loop"];
        if (!loop.is_array() || loop.size() != 2)
            Fail("transport.loop", "expected [START, END] in quarter notes");
        transport.loopStart =
            Number(loop[0], "transport.loop[0]", -kMaxPositionQuarters, kMaxPositionQuarters);
        transport.loopEnd = Number(loop[1], "transport.loop[1]", -kMaxPositionQuarters, kMaxPositionQuarters);
        if (transport.loopEnd <= transport.loopStart)
            Fail("transport.loop", "the end must lie after the start");
        transport.looping = true;
    }
}

PatchSource PatchReader::ReadSource(const Json& value, const std::string& place, Patch& patch) {
    PatchSource source;
    if (value.is_null()) return source;
    const std::string text = Text(value, place);
    const size_t colon = text.rfind(':');
    if (colon == std::string::npos || colon == 0 || colon + 1 == text.size())
        Fail(place, "\"" + text + "\": expected \"INSTANCE:CHANNEL\", \"FILE.wav:CHANNEL\" or null");
    const std::string name = text.substr(0, colon);
    int64_t channel = 0;
    try {
        channel = ParseInteger(text.substr(colon + 1), "channel", 0, 1023);
    } catch (const UsageError& e) {
        Fail(place, "\"" + text + "\": " + e.what());
    }
    source.channel = int32_t(channel);
    auto named = names.find(name);
    if (named != names.end()) {
        source.kind = PatchSource::Kind::Instance;
        source.index = named->second;
        const PatchInstance& from = patch.instances[source.index];
        if (channel >= from.entry->numOutputs)
            Fail(place, "\"" + text + "\": instance \"" + name + "\" (" + from.entry->moduleName + ") has " +
                            std::to_string(from.entry->numOutputs) + " outputs, numbered from 0");
        return source;
    }
    // Not an instance (whether listed before or after): a WAV file.
    const std::string file = Resolve(name);
    std::error_code ec;
    if (!std::filesystem::is_regular_file(file, ec))
        Fail(place, "\"" + text + "\": no instance is named \"" + name + "\", and there is no file \"" +
                        file + "\"");
    auto known = fileIndex.find(file);
    if (known == fileIndex.end()) {
        AudioData audio;
        try {
            audio = ReadWav(file);
        } catch (const std::runtime_error& e) {
            Fail(place, e.what());
        }
        inputSamples += uint64_t(audio.Frames()) * audio.channels.size();
        if (inputSamples > kMaxInputSamples)
            Fail(place, "\"" + file + "\" brings the audio inputs of the patch past " +
                            std::to_string(kMaxInputSamples) + " samples (frames times channels), the limit");
        if (audio.sampleRate != int(patch.sampleRate))
            Fail(place, "\"" + file + "\" runs at " + std::to_string(audio.sampleRate) +
                            " Hz, the patch at " + std::to_string(int(patch.sampleRate)) + " Hz");
        known = fileIndex.emplace(file, patch.files.size()).first;
        patch.files.push_back(std::move(audio));
    }
    source.kind = PatchSource::Kind::File;
    source.index = known->second;
    const size_t channels = patch.files[source.index].channels.size();
    if (size_t(channel) >= channels)
        Fail(place, "\"" + text + "\": \"" + file + "\" has " + std::to_string(channels) +
                        " channels, numbered from 0");
    return source;
}

void PatchReader::ReadInstance(const Json& value, size_t index, Patch& patch) {
    PatchInstance& instance = patch.instances[index];
    const std::string& place = instance.place;
    if (value.contains("set")) {
        const Json& set = value["set"];
        if (!set.is_object()) Fail(place + ".set", "expected an object of \"ROW NAME\": value");
        for (const auto& item : set.items()) {
            PatchSetting setting{item.key(), "", place + ".set.\"" + item.key() + "\""};
            if (item.value().is_number()) {
                char text[40];
                std::snprintf(text, sizeof text, "%.17g", item.value().get<double>());
                setting.value = text;
            } else if (item.value().is_boolean()) {
                setting.value = item.value().get<bool>() ? "on" : "off";
            } else if (item.value().is_string()) {
                setting.value = item.value().get<std::string>();
            } else {
                Fail(setting.place, "expected a number, true/false or a value name");
            }
            instance.sets.push_back(std::move(setting));
        }
    }
    if (value.contains("properties")) {
        const Json& properties = value["properties"];
        if (!properties.is_array())
            Fail(place + ".properties", "expected an array of ID numbers and \"ID=VALUE\" texts");
        for (size_t k = 0; k < properties.size(); ++k) {
            const std::string at = place + ".properties[" + std::to_string(k) + "]";
            const Json& item = properties[k];
            std::string text;
            if (item.is_number()) {
                text = std::to_string(Whole(item, at, 0, UINT32_MAX));
            } else if (item.is_string()) {
                text = item.get<std::string>();
            } else {
                Fail(at, "expected an ID number or an \"ID=VALUE\" text");
            }
            try {
                instance.properties.push_back(ParsePropertySetting(text, "property"));
            } catch (const UsageError& e) {
                Fail(at, e.what());
            }
            instance.properties.back().source = at;
        }
    }
    if (value.contains("midi")) {
        const std::string file = Resolve(Text(value["midi"], place + ".midi"));
        try {
            instance.events = ReadMidiFile(file, patch.sampleRate);
        } catch (const std::runtime_error& e) {
            Fail(place + ".midi", e.what());
        }
        if (eventCount + instance.events.size() > kMaxPatchEvents)
            Fail(place + ".midi",
                 "brings the events of the patch past " + std::to_string(kMaxPatchEvents) + ", the limit");
    }
    if (value.contains("events")) {
        const Json& events = value["events"];
        if (!events.is_array()) Fail(place + ".events", "expected an array of \"FRAME:HEXBYTES\"");
        if (eventCount + instance.events.size() + events.size() > kMaxPatchEvents)
            Fail(place + ".events",
                 "brings the events of the patch past " + std::to_string(kMaxPatchEvents) + ", the limit");
        for (size_t k = 0; k < events.size(); ++k) {
            const std::string at = place + ".events[" + std::to_string(k) + "]";
            try {
                instance.events.push_back(ParseEvent(Text(events[k], at), "event"));
            } catch (const UsageError& e) {
                if (dynamic_cast<const InputError*>(&e)) throw;
                Fail(at, e.what());
            }
        }
    }
    if (value.contains("inputs")) {
        const Json& inputs = value["inputs"];
        if (!inputs.is_array()) Fail(place + ".inputs", "expected an array of sources");
        if (inputs.size() > size_t(std::max(instance.entry->numInputs, 0)))
            Fail(place + ".inputs", "lists " + std::to_string(inputs.size()) + " sources, but " +
                                        instance.entry->moduleName + " has " +
                                        std::to_string(instance.entry->numInputs) + " inputs");
        for (size_t k = 0; k < inputs.size(); ++k)
            instance.inputs.push_back(
                ReadSource(inputs[k], place + ".inputs[" + std::to_string(k) + "]", patch));
    }
    eventCount += instance.events.size();
    if (value.contains("state")) instance.statePath = Resolve(Text(value["state"], place + ".state"));
    if (value.contains("calibration"))
        instance.calibrationPath = Resolve(Text(value["calibration"], place + ".calibration"));
    if (value.contains("scripts")) {
        const Json& scripts = value["scripts"];
        if (!scripts.is_array()) Fail(place + ".scripts", "expected an array of Lua files");
        for (size_t k = 0; k < scripts.size(); ++k) {
            const std::string at = place + ".scripts[" + std::to_string(k) + "]";
            instance.scripts.push_back(Resolve(Text(scripts[k], at)));
            CheckScripts({instance.scripts.back()}, path + ": " + at);
        }
    }
    instance.outPath =
        WritablePath(value.contains("out") ? Text(value["out"], place + ".out") : instance.name + ".wav",
                     place + ".out", place);
    if (value.contains("midi_out"))
        instance.midiOutPath =
            WritablePath(Text(value["midi_out"], place + ".midi_out"), place + ".midi_out", place);
}

std::string PatchReader::WritablePath(const std::string& given, const std::string& place,
                                      const std::string& owner) {
    if (given.empty()) Fail(place, "must name a file");
    const std::string file = Resolve(given);
    std::error_code ec;
    if (std::filesystem::is_directory(file, ec))
        Fail(place, "\"" + file + "\" is a folder, not a file to write");
    const std::filesystem::path outFolder = std::filesystem::path(file).parent_path();
    if (!outFolder.empty() && !std::filesystem::is_directory(outFolder, ec))
        Fail(place, "there is no folder \"" + outFolder.string() + "\" to write \"" + file + "\" in");
    const auto [other, fresh] = outs.emplace(file, owner);
    if (!fresh) Fail(place, "\"" + file + "\" is written by " + other->second + " already");
    return file;
}

Patch PatchReader::Read() {
    const Json root = ParsePatchJson(path);
    OnlyKeys(root, "",
             {"rate", "block", "seconds", "frames", "transport", "instances", "connect", "midi_in",
              "jack_transport"});
    Patch patch;
    patch.path = path;
    if (root.contains("rate")) patch.sampleRate = double(Whole(root["rate"], "rate", 1000, 768000));
    if (root.contains("block")) patch.blockSize = uint32_t(Whole(root["block"], "block", 1, 1 << 20));
    if (root.contains("seconds") && root.contains("frames")) Fail("frames", "give either seconds or frames");
    patch.frames = int64_t(patch.sampleRate);
    if (root.contains("seconds"))
        patch.frames = int64_t(std::llround(Number(root["seconds"], "seconds", 0, 86400) * patch.sampleRate));
    if (root.contains("frames")) patch.frames = Whole(root["frames"], "frames", 0, int64_t(1) << 34);
    if (root.contains("transport")) ReadTransport(root["transport"], patch.transport);
    if (root.contains("jack_transport")) {
        const std::string mode = Text(root["jack_transport"], "jack_transport");
        if (mode == "follow")
            patch.jackTransport = Patch::JackTransport::Follow;
        else if (mode == "master")
            patch.jackTransport = Patch::JackTransport::Master;
        else if (mode == "own")
            patch.jackTransport = Patch::JackTransport::Own;
        else
            Fail("jack_transport", "\"" + mode + "\": expected \"follow\", \"master\" or \"own\"");
    }

    if (!root.contains("instances")) Fail("instances", "missing: a patch needs at least one instance");
    const Json& instances = root["instances"];
    if (!instances.is_array() || instances.empty()) Fail("instances", "expected a non-empty array");
    if (instances.size() > kMaxPatchInstances)
        Fail("instances", "lists " + std::to_string(instances.size()) +
                              " instances; a patch may hold at most " + std::to_string(kMaxPatchInstances));
    // Names and modules first, so that inputs may name instances listed after them.
    for (size_t i = 0; i < instances.size(); ++i) {
        PatchInstance instance;
        instance.place = "instances[" + std::to_string(i) + "]";
        const Json& value = instances[i];
        OnlyKeys(value, instance.place,
                 {"name", "module", "set", "properties", "midi", "events", "inputs", "state", "calibration",
                  "scripts", "out", "midi_out"});
        if (!value.contains("name")) Fail(instance.place + ".name", "missing");
        instance.name = Text(value["name"], instance.place + ".name");
        if (instance.name.empty()) Fail(instance.place + ".name", "must not be empty");
        if (!names.emplace(instance.name, i).second)
            Fail(instance.place + ".name", "\"" + instance.name + "\" names another instance already");
        if (!value.contains("module")) Fail(instance.place + ".module", "missing");
        const std::string module = Text(value["module"], instance.place + ".module");
        instance.entry = modules.find(module);
        if (!instance.entry && FindCatalogueEntry(module))
            Fail(instance.place + ".module", "module \"" + module + "\" is not available in this build");
        if (!instance.entry)
            Fail(instance.place + ".module",
                 "unknown module \"" + module + "\"; \"corvane list\" shows the modules");
        patch.instances.push_back(std::move(instance));
    }
    // Every output is held in memory until the end: the limit applies to all of them together.
    uint64_t outputs = 0;
    for (const PatchInstance& instance : patch.instances)
        outputs += uint64_t(std::max(instance.entry->numOutputs, 1));
    if (uint64_t(patch.frames) * outputs > kMaxRenderSamples)
        Fail(root.contains("seconds") ? "seconds" : "frames",
             std::to_string(patch.frames) + " frames of " + std::to_string(outputs) +
                 " output channels in all exceed the limit of " + std::to_string(kMaxRenderSamples) +
                 " samples held in memory");
    for (size_t i = 0; i < instances.size(); ++i)
        ReadInstance(instances[i], i, patch);
    OrderInstances(patch);
    if (root.contains("connect")) ReadConnections(root["connect"], patch);
    if (root.contains("midi_in")) {
        const Json& list = root["midi_in"];
        if (!list.is_array()) Fail("midi_in", "expected an array of instance names");
        patch.midiInGiven = true;
        for (size_t k = 0; k < list.size(); ++k) {
            const std::string at = "midi_in[" + std::to_string(k) + "]";
            const std::string name = Text(list[k], at);
            const auto it = names.find(name);
            if (it == names.end()) Fail(at, "no instance is named \"" + name + "\"");
            patch.midiIn.push_back(it->second);
        }
    }
    return patch;
}

void PatchReader::ReadConnections(const Json& value, Patch& patch) const {
    if (!value.is_array()) Fail("connect", "expected an array of [FROM, TO] pairs");
    if (value.size() > kMaxPatchInstances * 64) Fail("connect", "lists too many connections");
    for (size_t k = 0; k < value.size(); ++k) {
        const std::string place = "connect[" + std::to_string(k) + "]";
        const Json& pair = value[k];
        if (!pair.is_array() || pair.size() != 2)
            Fail(place, "expected [FROM, TO], e.g. [\"v1:0\", \"system:playback_1\"]");
        Patch::Connection c;
        c.place = place;
        c.from = Text(pair[0], place + "[0]");
        c.to = Text(pair[1], place + "[1]");
        // Which side is ours: the one whose part before the last colon names an instance.
        auto ours = [&](const std::string& text, size_t& instance, int32_t& channel, bool output) {
            const size_t colon = text.rfind(':');
            if (colon == std::string::npos)
                Fail(place, "\"" + text + "\": expected \"INSTANCE:CHANNEL\" or \"CLIENT:PORT\"");
            const auto it = names.find(text.substr(0, colon));
            if (it == names.end()) return false;
            instance = it->second;
            const CatalogueEntry& entry = *patch.instances[instance].entry;
            const int32_t count = output ? entry.numOutputs : entry.numInputs;
            try {
                channel = int32_t(ParseInteger(text.substr(colon + 1), "channel", 0, 1023));
            } catch (const UsageError& e) {
                Fail(place, "\"" + text + "\": " + e.what());
            }
            if (channel >= count)
                Fail(place, "\"" + text + "\": instance \"" + text.substr(0, colon) + "\" (" +
                                entry.moduleName + ") has " + std::to_string(count) +
                                (output ? " outputs" : " inputs"));
            return true;
        };
        size_t instance = 0;
        int32_t channel = 0;
        const bool fromOurs = ours(c.from, instance, channel, true);
        size_t toInstance = 0;
        int32_t toChannel = 0;
        const bool toOurs = ours(c.to, toInstance, toChannel, false);
        if (fromOurs == toOurs)
            Fail(place, fromOurs ? "connects two instances: use \"inputs\" for that"
                                 : "names no instance: one side must be \"INSTANCE:CHANNEL\"");
        c.fromInstance = fromOurs;
        c.instance = fromOurs ? instance : toInstance;
        c.channel = fromOurs ? channel : toChannel;
        patch.connections.push_back(c);
    }
}

}  // namespace

const ModuleSource& BuiltModules() {
    static const ModuleSource source{[](const std::string& stemOrId) -> const CatalogueEntry* {
                                         const CatalogueEntry* entry = FindCatalogueEntry(stemOrId);
                                         return entry && FindModuleFactory(*entry) ? entry : nullptr;
                                     },
                                     [](const CatalogueEntry& entry) {
                                         return std::unique_ptr<BrelCorvaneBase>(FindModuleFactory(entry)());
                                     }};
    return source;
}

Patch ParsePatch(const std::string& path, const ModuleSource& modules) {
    return PatchReader(path, modules).Read();
}

}  // namespace BR
