// Turtle text of the bundle: the manifest and one description per module, from the port layout.
#include <charconv>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <set>
#include <sstream>

#include "Lv2Bundle.h"

namespace BR {

Lv2BundleInfo CorvaneBundleInfo() {
    Lv2BundleInfo bundle{kCorvaneUriPrefix, kCorvaneBinary, "Corvane", {}};
    for (int i = 0; i < kNumCatalogueEntries; ++i) {
        const CatalogueEntry& entry = CatalogueEntries()[i];
        if (ModuleFactoryFunction factory = FindModuleFactory(entry))
            bundle.modules.push_back({&entry, factory});
    }
    return bundle;
}

std::string TurtleNumber(float value) {
    char text[32];
    const auto result = std::to_chars(text, text + sizeof text, value);
    std::string number(text, result.ptr);
    if (number.find_first_of(".e") == std::string::npos) number += ".0";
    return number;
}

std::string TurtleString(const std::string& text) {
    std::string out = "\"";
    for (unsigned char c : text) {
        if (c == '"' || c == '\\') {
            out += '\\';
            out += char(c);
        } else if (c == '\n') {
            out += "\\n";
        } else if (c < 0x20) {
            char escaped[8];
            std::snprintf(escaped, sizeof escaped, "\\u%04X", unsigned(c));
            out += escaped;
        } else {
            out += char(c);
        }
    }
    return out + "\"";
}

namespace {

const char* kPrefixes =
    "@prefix atom: <http://lv2plug.in/ns/ext/atom#> .\n"
    "@prefix bufsz: <http://lv2plug.in/ns/ext/buf-size#> .\n"
    "@prefix doap: <http://usefulinc.com/ns/doap#> .\n"
    "@prefix foaf: <http://xmlns.com/foaf/0.1/> .\n"
    "@prefix lv2: <http://lv2plug.in/ns/lv2core#> .\n"
    "@prefix midi: <http://lv2plug.in/ns/ext/midi#> .\n"
    "@prefix opts: <http://lv2plug.in/ns/ext/options#> .\n"
    "@prefix pg: <http://lv2plug.in/ns/ext/port-groups#> .\n"
    "@prefix pprops: <http://lv2plug.in/ns/ext/port-props#> .\n"
    "@prefix rdf: <http://www.w3.org/1999/02/22-rdf-syntax-ns#> .\n"
    "@prefix rdfs: <http://www.w3.org/2000/01/rdf-schema#> .\n"
    "@prefix state: <http://lv2plug.in/ns/ext/state#> .\n"
    "@prefix time: <http://lv2plug.in/ns/ext/time#> .\n"
    "@prefix units: <http://lv2plug.in/ns/extensions/units#> .\n"
    "@prefix urid: <http://lv2plug.in/ns/ext/urid#> .\n"
    "@prefix work: <http://lv2plug.in/ns/ext/worker#> .\n\n";

// LV2 unit of a parameter unit, or null where LV2 has none (generic, indexed, boolean, gain, pan ...).
const char* Lv2Unit(uint32_t unit) {
    switch (unit) {
        case kUnitPercent:
            return "units:pc";
        case kUnitSeconds:
            return "units:s";
        case kUnitFrequency:
            return "units:hz";
        case kUnitCents:
            return "units:cent";
        case kUnitRelativeSemitones:
            return "units:semitone12TET";
        case kUnitMIDINote:
            return "units:midiNote";
        case kUnitDecibels:
            return "units:db";
        case kUnitTempo:
            return "units:bpm";
        case kUnitBeats:
            return "units:beat";
        case kUnitMilliseconds:
            return "units:ms";
        default:
            return nullptr;
    }
}

std::string GroupUri(const std::string& pluginUri, const Lv2PortGroup& group) {
    return "<" + pluginUri + "#" + group.symbol + ">";
}

void WriteControlPort(std::ostream& out, const Lv2Port& port) {
    out << "        a lv2:InputPort , lv2:ControlPort ;\n";
    out << "        lv2:index " << port.index << " ;\n";
    out << "        lv2:symbol " << TurtleString(port.symbol) << " ;\n";
    out << "        lv2:name " << TurtleString(port.name) << " ;\n";
    if (port.kind == Lv2PortKind::Enabled) out << "        lv2:designation lv2:enabled ;\n";
    std::vector<std::string> properties;
    if (port.integer) properties.push_back("lv2:integer");
    if (port.enumeration) properties.push_back("lv2:enumeration");
    if (port.toggled) properties.push_back("lv2:toggled");
    if (port.logarithmic) properties.push_back("pprops:logarithmic");
    for (size_t i = 0; i < properties.size(); ++i)
        out << (i == 0 ? "        lv2:portProperty " : " , ") << properties[i]
            << (i + 1 == properties.size() ? " ;\n" : "");
    if (const char* unit = Lv2Unit(port.unit); unit && port.kind == Lv2PortKind::Control)
        out << "        units:unit " << unit << " ;\n";
    for (const auto& [value, label] : port.scalePoints)
        out << "        lv2:scalePoint [ rdfs:label " << TurtleString(label) << " ; rdf:value "
            << TurtleNumber(value) << " ] ;\n";
    out << "        lv2:default " << TurtleNumber(port.defaultValue) << " ;\n";
    out << "        lv2:minimum " << TurtleNumber(port.minimum) << " ;\n";
    out << "        lv2:maximum " << TurtleNumber(port.maximum) << "\n";
}

void WriteAudioPort(std::ostream& out, const Lv2Port& port, const Lv2PortLayout& layout,
                    const std::string& pluginUri) {
    out << "        a " << (port.kind == Lv2PortKind::AudioIn ? "lv2:InputPort" : "lv2:OutputPort")
        << " , lv2:AudioPort ;\n";
    out << "        lv2:index " << port.index << " ;\n";
    if (port.sideChain) out << "        lv2:portProperty lv2:isSideChain ;\n";
    if (port.group >= 0) {
        out << "        pg:group " << GroupUri(pluginUri, layout.groups[size_t(port.group)]) << " ;\n";
        out << "        lv2:designation " << (port.right ? "pg:right" : "pg:left") << " ;\n";
    }
    out << "        lv2:symbol " << TurtleString(port.symbol) << " ;\n";
    out << "        lv2:name " << TurtleString(port.name) << "\n";
}

void WriteMidiPort(std::ostream& out, const Lv2Port& port) {
    out << "        a lv2:InputPort , atom:AtomPort ;\n";
    out << "        atom:bufferType atom:Sequence ;\n";
    out << "        atom:supports midi:MidiEvent , time:Position ;\n";
    out << "        lv2:designation lv2:control ;\n";
    out << "        lv2:index " << port.index << " ;\n";
    out << "        lv2:symbol " << TurtleString(port.symbol) << " ;\n";
    out << "        lv2:name " << TurtleString(port.name) << "\n";
}

// The messages the module sends, at their frames.
void WriteMidiOutPort(std::ostream& out, const Lv2Port& port) {
    out << "        a lv2:OutputPort , atom:AtomPort ;\n";
    out << "        atom:bufferType atom:Sequence ;\n";
    out << "        atom:supports midi:MidiEvent ;\n";
    out << "        lv2:index " << port.index << " ;\n";
    out << "        lv2:symbol " << TurtleString(port.symbol) << " ;\n";
    out << "        lv2:name " << TurtleString(port.name) << "\n";
}

}  // namespace

std::string Lv2ManifestTurtle(const Lv2BundleInfo& bundle) {
    std::ostringstream out;
    out << "@prefix doap: <http://usefulinc.com/ns/doap#> .\n";
    out << "@prefix foaf: <http://xmlns.com/foaf/0.1/> .\n";
    out << "@prefix lv2: <http://lv2plug.in/ns/lv2core#> .\n";
    out << "@prefix rdfs: <http://www.w3.org/2000/01/rdf-schema#> .\n\n";
    out << "<" << bundle.ProjectUri() << ">\n";
    out << "    a doap:Project ;\n";
    out << "    doap:name " << TurtleString(bundle.projectName) << " ;\n";
    out << "    doap:maintainer [ a foaf:Organization ; foaf:name " << TurtleString(kManufacturerName)
        << " ] .\n\n";
    for (const Lv2ModuleSource& source : bundle.modules) {
        out << "<" << bundle.PluginUri(*source.entry) << ">\n";
        out << "    a lv2:Plugin ;\n";
        out << "    lv2:binary <" << bundle.binary << "> ;\n";
        out << "    rdfs:seeAlso <" << source.entry->stem << ".ttl> .\n\n";
    }
    return out.str();
}

std::string Lv2PluginTurtle(const Lv2BundleInfo& bundle, const CatalogueEntry& entry,
                            const Lv2PortLayout& layout, const std::string& moduleName) {
    const std::string uri = bundle.PluginUri(entry);
    std::ostringstream out;
    out << kPrefixes;
    for (const Lv2PortGroup& group : layout.groups) {
        out << GroupUri(uri, group) << "\n";
        out << "    a " << (group.output ? "pg:OutputGroup" : "pg:InputGroup") << " , pg:StereoGroup ;\n";
        out << "    lv2:symbol " << TurtleString(group.symbol) << " ;\n";
        out << "    rdfs:label " << TurtleString(group.label) << " .\n\n";
    }
    out << "<" << uri << ">\n";
    out << "    a lv2:Plugin , lv2:UtilityPlugin ;\n";
    out << "    doap:name " << TurtleString(moduleName) << " ;\n";
    out << "    lv2:project <" << bundle.ProjectUri() << "> ;\n";
    out << "    rdfs:comment " << TurtleString(std::string("Module id ") + entry.id) << " ;\n";
    out << "    lv2:minorVersion 6 ;\n";
    out << "    lv2:microVersion 1 ;\n";
    out << "    lv2:requiredFeature urid:map ;\n";
    out << "    lv2:optionalFeature lv2:hardRTCapable , opts:options , work:schedule ;\n";
    out << "    opts:supportedOption bufsz:maxBlockLength ;\n";
    out << "    lv2:extensionData state:interface , work:interface ;\n";
    if (!layout.groups.empty()) out << "    pg:mainOutput " << GroupUri(uri, layout.groups[0]) << " ;\n";
    for (size_t i = 0; i < layout.ports.size(); ++i) {
        const Lv2Port& port = layout.ports[i];
        out << (i == 0 ? "    lv2:port [\n" : "    ] , [\n");
        if (port.kind == Lv2PortKind::Enabled || port.kind == Lv2PortKind::Control) {
            WriteControlPort(out, port);
        } else if (port.kind == Lv2PortKind::MidiIn) {
            WriteMidiPort(out, port);
        } else if (port.kind == Lv2PortKind::MidiOut) {
            WriteMidiOutPort(out, port);
        } else {
            WriteAudioPort(out, port, layout, uri);
        }
    }
    out << "    ] .\n";
    return out.str();
}

bool WriteLv2BundleTurtle(const Lv2BundleInfo& bundle, const std::string& folder, std::string& error) {
    namespace fs = std::filesystem;
    std::error_code ec;
    fs::create_directories(folder, ec);
    if (ec) {
        error = "cannot create " + folder + ": " + ec.message();
        return false;
    }
    std::set<std::string> written;
    auto write = [&](const std::string& name, const std::string& text) {
        std::ofstream file(fs::path(folder) / name, std::ios::trunc);
        file << text;
        file.flush();
        if (!file) {
            error = "cannot write " + (fs::path(folder) / name).string();
            return false;
        }
        written.insert(name);
        return true;
    };
    for (const Lv2ModuleSource& source : bundle.modules) {
        std::unique_ptr<BrelCorvaneBase> module(source.factory());
        const Lv2PortLayout layout = BuildLv2PortLayout(*source.entry, *module);
        if (!write(std::string(source.entry->stem) + ".ttl",
                   Lv2PluginTurtle(bundle, *source.entry, layout, module->GetModuleName())))
            return false;
    }
    if (!write("manifest.ttl", Lv2ManifestTurtle(bundle))) return false;
    for (const fs::directory_entry& file : fs::directory_iterator(folder, ec))
        if (file.path().extension() == ".ttl" && !written.count(file.path().filename().string()))
            fs::remove(file.path(), ec);
    return true;
}

int RunLv2TurtleGenerator(const Lv2BundleInfo& bundle, int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s BUNDLE_FOLDER\n", argc > 0 ? argv[0] : "generator");
        return 1;
    }
    std::string error;
    if (!WriteLv2BundleTurtle(bundle, argv[1], error)) {
        std::fprintf(stderr, "%s\n", error.c_str());
        return 1;
    }
    return 0;
}

}  // namespace BR
