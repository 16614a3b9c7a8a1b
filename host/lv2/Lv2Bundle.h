// What one LV2 bundle carries: a URI prefix, its binary and the modules it presents, with the Turtle
// that describes them. The plug-in library and the build-time generator share this.
#pragma once

#include <string>
#include <vector>

#include "framework/ModuleCatalogue.h"
#include "host/lv2/Lv2PortLayout.h"
#include "modules/ModuleFactory.h"

namespace BR {

struct Lv2ModuleSource {
    const CatalogueEntry* entry;
    ModuleFactoryFunction factory;
};

struct Lv2BundleInfo {
    std::string uriPrefix;    // plug-in URI = prefix + stem
    std::string binary;       // file name of the shared object inside the bundle
    std::string projectName;  // doap:name of the project all plug-ins belong to
    std::vector<Lv2ModuleSource> modules;
    std::string uiUri;  // the X11 editor every plug-in offers (in ui.ttl), or empty for none

    // The prefix without its closing ':'.
    std::string ProjectUri() const { return uriPrefix.substr(0, uriPrefix.size() - 1); }
    std::string PluginUri(const CatalogueEntry& entry) const { return uriPrefix + entry.stem; }
    // Keys under which the state extension keeps the two chunks.
    std::string StateKey(const char* chunkId) const { return uriPrefix + "state#" + chunkId; }
};

constexpr const char* kCorvaneUriPrefix = "urn:brelmont:corvane:";
constexpr const char* kCorvaneBinary = "corvane.so";
// One editor UI for every plug-in of corvane.lv2; the instance it reaches decides the panel.
constexpr const char* kCorvaneUiUri = "urn:brelmont:corvane:ui";

// Every module that modules/ModuleFactory.cpp builds, in catalogue order, as corvane.lv2 presents them.
Lv2BundleInfo CorvaneBundleInfo();

// manifest.ttl: each plug-in's URI, binary and data file (<stem>.ttl).
std::string Lv2ManifestTurtle(const Lv2BundleInfo& bundle);
// ui.ttl: the editor's type, binary, required and optional host features.
std::string Lv2UiTurtle(const Lv2BundleInfo& bundle);
// <stem>.ttl for one module.
std::string Lv2PluginTurtle(const Lv2BundleInfo& bundle, const CatalogueEntry& entry,
                            const Lv2PortLayout& layout, const std::string& moduleName);
// Writes manifest.ttl and every <stem>.ttl into `folder`, removing .ttl files of modules it no longer
// carries. Makes each module once to read its table. False with a message on failure.
bool WriteLv2BundleTurtle(const Lv2BundleInfo& bundle, const std::string& folder, std::string& error);

// main() of a generator: "GENERATOR BUNDLE_FOLDER" writes the bundle's Turtle there. Exit status 0, or
// 1 with a message on standard error.
int RunLv2TurtleGenerator(const Lv2BundleInfo& bundle, int argc, char** argv);

// A float as the shortest Turtle number that reads back to the same float ("0.5", "-2.0", "1e-05").
std::string TurtleNumber(float value);
// A Turtle string literal, quotes included.
std::string TurtleString(const std::string& text);

}  // namespace BR
