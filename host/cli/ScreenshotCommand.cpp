// "corvane screenshot STEM --out FILE.png": a module's panel drawn off screen and written as a PNG.
#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "CommandLine.h"
#include "EditCommand.h"
#include "RenderPieces.h"
#include "StateFile.h"
#include "editor/PanelScreenshot.h"
#include "framework/ModuleCatalogue.h"
#include "host/HostDriver.h"
#include "modules/ModuleFactory.h"

namespace BR {

namespace {
void RenderSilence(HostDriver& driver, double seconds) {
    // Null inputs read as silence; the outputs share one scratch buffer, channel after channel.
    const uint32_t block = driver.MaxBlockSize();
    const size_t numOut = size_t(std::max(driver.NumHostOutputs(), 1));
    std::vector<const float*> inputs(size_t(std::max(driver.NumHostInputs(), 1)), nullptr);
    std::vector<float> scratch(numOut * block);
    std::vector<float*> outputs;
    for (size_t c = 0; c < numOut; ++c)
        outputs.push_back(scratch.data() + c * block);
    for (auto left = uint64_t(seconds * 48000.0); left > 0;) {
        const auto frames = uint32_t(std::min<uint64_t>(left, block));
        driver.Process(inputs.data(), outputs.data(), frames, nullptr, 0);
        left -= frames;
    }
}
}  // namespace

int RunScreenshot(int argc, char** argv) {
    if (argc < 3 || argv[2][0] == '-') throw UsageError("screenshot needs a module stem");
    const std::string stem = argv[2];
    std::string out, display, stateIn;
    double seconds = 0;
    std::vector<std::pair<std::string, std::string>> sets;
    for (int i = 3; i < argc; ++i) {
        const std::string option = argv[i];
        auto value = [&]() -> std::string {
            if (i + 1 >= argc) throw UsageError(option + " needs a value");
            return argv[++i];
        };
        if (option == "--out") {
            out = value();
        } else if (option == "--display") {
            display = value();
        } else if (option == "--seconds") {
            seconds = ParseNumber(value(), "--seconds");
            if (!(seconds >= 0 && seconds <= 600))
                throw UsageError("--seconds: expected a time from 0 to 600 seconds, got \"" +
                                 std::string(argv[i]) + "\"");
        } else if (option == "--state-in") {
            stateIn = value();
        } else if (option == "--set") {
            const std::string setting = value();
            const size_t equals = setting.find('=');
            if (equals == std::string::npos)
                throw UsageError("--set: expected \"NAME=VALUE\", got \"" + setting + "\"");
            sets.emplace_back(setting.substr(0, equals), setting.substr(equals + 1));
        } else {
            throw UsageError("screenshot: unknown option \"" + option + "\"");
        }
    }
    if (out.empty()) throw UsageError("screenshot needs --out FILE.png");
    const CatalogueEntry* entry = FindCatalogueEntry(stem);
    if (!entry) throw UsageError("unknown module \"" + stem + "\"; \"corvane list\" shows the modules");
    std::unique_ptr<BrelCorvaneBase> module = CreateModule(stem);
    if (!module) throw UsageError("module \"" + stem + "\" is not available in this build");
    HostDriver driver(std::move(module), *entry, 48000.0f);
    if (!stateIn.empty()) {
        try {
            RestoreStateFile(stateIn, driver);
        } catch (const std::runtime_error& e) {
            throw InputError(std::string("--state-in: ") + e.what());
        }
    }
    for (const auto& [name, valueText] : sets)
        ApplySetting(driver, name, valueText);
    // Live displays show the state the module reaches after rendering this long (silent input).
    RenderSilence(driver, seconds);
    // Off screen: a private Xvfb unless a display is named.
    const PanelPicture picture = RenderPanel(driver.Module(), display.empty() ? nullptr : display.c_str());
    if (picture.rgb.empty()) {
        std::fprintf(stderr, "corvane: screenshot: %s\n", picture.error.c_str());
        return 1;
    }
    if (!picture.error.empty())
        std::fprintf(stderr, "corvane: the panel script reported: %s", picture.error.c_str());
    if (!WritePng(out, picture.rgb, picture.width, picture.height))
        throw InputError("--out: cannot write \"" + out + "\"");
    return 0;
}

}  // namespace BR
