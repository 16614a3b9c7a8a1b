// The built corvane.so exports lv2_descriptor alone and names every built module; the bundle's
// Turtle in the build tree is what the tables give now (generated at build time, never by hand).
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <lv2/core/lv2.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "framework/ModuleServices.h"
#include "host/lv2/Lv2Bundle.h"
#include "remote/RemoteServices.h"
#include "tests/support/RunCommand.h"
#include "tests/support/ScopedEnvironment.h"

namespace {

std::string BundleFolder() {
    // The corvane command is build/host/corvane; the bundle is build/host/lv2/corvane.lv2.
    const char* binary = std::getenv("CORVANE_BINARY");
    return binary ? (std::filesystem::path(binary).parent_path() / "lv2" / "corvane.lv2").string() : "";
}

std::string ReadFile(const std::string& path) {
    std::ifstream in(path);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

}  // namespace

TEST(Lv2SharedObject, ExportsOneDescriptorPerBuiltModule) {
    const std::string folder = BundleFolder();
    ASSERT_FALSE(folder.empty()) << "CORVANE_BINARY is not set";
    // Kept mapped after dlclose, as a host keeps a plug-in library for the process's life: the
    // library's process-wide tables, made once at load, stay reachable for the leak checker.
    void* library = dlopen((folder + "/corvane.so").c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
    ASSERT_NE(library, nullptr) << dlerror();
    using DescriptorFunction = const LV2_Descriptor* (*)(uint32_t);
    auto descriptor = reinterpret_cast<DescriptorFunction>(dlsym(library, "lv2_descriptor"));
    ASSERT_NE(descriptor, nullptr);
    EXPECT_EQ(dlsym(library, "_ZN2BR16InstanceRegistry11AddInstanceEP15BrelCorvaneBase"), nullptr);

    const BR::Lv2BundleInfo bundle = BR::CorvaneBundleInfo();
    uint32_t count = 0;
    while (const LV2_Descriptor* d = descriptor(count)) {
        ASSERT_LT(count, bundle.modules.size());
        EXPECT_EQ(std::string(d->URI), bundle.PluginUri(*bundle.modules[count].entry));
        ++count;
    }
    EXPECT_EQ(count, bundle.modules.size());
    dlclose(library);
}

TEST(Lv2SharedObject, BuiltTurtleIsWhatTheTablesGive) {
    const std::string folder = BundleFolder();
    const BR::Lv2BundleInfo bundle = BR::CorvaneBundleInfo();
    EXPECT_EQ(ReadFile(folder + "/manifest.ttl"), BR::Lv2ManifestTurtle(bundle));
    size_t files = 0;
    for (const auto& file : std::filesystem::directory_iterator(folder))
        files += file.path().extension() == ".ttl";
    // One per module, the manifest, and the editor UI's ui.ttl.
    EXPECT_EQ(files, bundle.modules.size() + 2);
    EXPECT_EQ(ReadFile(folder + "/ui.ttl"), BR::Lv2UiTurtle(bundle));
    // As the generator makes them: with the script host and its built-in scripts only (the Quantizer's
    // "Scale" rows follow the scale list), no user's preferences or scripts.
    BR::Test::ScopedEnvironment environment;
    environment.Set("XDG_CONFIG_HOME", BR::Test::MakeTempFolder().c_str());
    environment.Set("XDG_DATA_HOME", BR::Test::MakeTempFolder().c_str());
    BR::InstallRemoteServices();
    for (const BR::Lv2ModuleSource& source : bundle.modules) {
        std::unique_ptr<BrelCorvaneBase> module(source.factory());
        const std::string expected = BR::Lv2PluginTurtle(
            bundle, *source.entry, BR::BuildLv2PortLayout(*source.entry, *module), module->GetModuleName());
        EXPECT_EQ(ReadFile(folder + "/" + source.entry->stem + ".ttl"), expected) << source.entry->stem;
    }
    BR::SetModuleServicesFactory(nullptr);
}
