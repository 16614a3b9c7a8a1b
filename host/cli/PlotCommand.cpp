// The plot options of `render` and `patch`, the names of a module's channels, and `corvane plot`.
#include <cmath>
#include <cstdio>
#include <filesystem>

#include "CommandLine.h"
#include "Plot.h"
#include "WavFile.h"

namespace BR {

bool ParsePlotOption(const std::string& option, ArgumentCursor& cursor, PlotSettings& settings) {
    if (option == "--plot") {
        settings.path = cursor.Value(option);
        if (settings.path.empty()) throw UsageError("--plot: must name a file");
    } else if (option == "--plot-size") {
        const std::string text = cursor.Value(option);
        const size_t x = text.find('x');
        if (x == std::string::npos)
            throw UsageError("--plot-size \"" + text + "\": expected WIDTHxHEIGHT, e.g. 1200x600");
        settings.width = int(ParseInteger(text.substr(0, x), "--plot-size width", 200, 8000));
        settings.height = int(ParseInteger(text.substr(x + 1), "--plot-size height", 150, 8000));
    } else if (option == "--plot-range") {
        const std::string text = cursor.Value(option);
        const size_t colon = text.find(':');
        if (colon == std::string::npos)
            throw UsageError("--plot-range \"" + text + "\": expected START:END in seconds");
        settings.start = ParseNumber(text.substr(0, colon), "--plot-range start");
        settings.end = ParseNumber(text.substr(colon + 1), "--plot-range end");
        if (settings.start < 0 || settings.end > 86400 * 365)
            throw UsageError("--plot-range: the start must not lie before 0 seconds");
        if (settings.end <= settings.start)
            throw UsageError("--plot-range: the end must lie after the start");
        settings.ranged = true;
    } else {
        return false;
    }
    return true;
}

void CheckPlotSettings(const PlotSettings& settings) {
    if (settings.path.empty()) {
        if (settings.ranged || settings.width > 0)
            throw UsageError("--plot-range and --plot-size need --plot");
        return;
    }
    std::error_code ec;
    if (std::filesystem::is_directory(settings.path, ec))
        throw UsageError("--plot: \"" + settings.path + "\" is a folder, not a file to write");
    const std::filesystem::path folder = std::filesystem::path(settings.path).parent_path();
    if (!folder.empty() && !std::filesystem::is_directory(folder, ec))
        throw UsageError("--plot: there is no folder \"" + folder.string() + "\" to write \"" +
                         settings.path + "\" in");
}

std::vector<std::string> OutputChannelNames(const CatalogueEntry& entry, int32_t numOutputs) {
    std::vector<std::string> names;
    for (int32_t c = 0; c < numOutputs; ++c) {
        const std::string side = c % 2 == 0 ? "L" : "R";
        std::string name = "Out " + std::to_string(c + 1);
        // The main pair, then the aux stems "3/4", "5/6" of the modules that have them.
        if (numOutputs >= 2 && c < 2)
            name += " (" + side + ")";
        else if (entry.auxOutputs > 0 && c / 2 <= entry.auxOutputs)
            name +=
                " (" + std::to_string(c / 2 * 2 + 1) + "/" + std::to_string(c / 2 * 2 + 2) + " " + side + ")";
        names.push_back(name);
    }
    return names;
}

std::string InstancePlotPath(const std::string& path, const std::string& name) {
    const std::filesystem::path p(path);
    const std::string stem = p.stem().string(), extension = p.extension().string();
    return (p.parent_path() / (stem + "-" + name + (extension.empty() ? ".png" : extension))).string();
}

int RunPlot(int argc, char** argv) {
    if (argc < 3 || argv[2][0] == '-') throw UsageError("plot needs exactly one WAV file");
    const std::string input = argv[2];
    PlotSettings settings;
    ArgumentCursor cursor(argc, argv, 3);
    std::string option;
    while (cursor.Next(option)) {
        if (option == "--out") {
            settings.path = cursor.Value(option);
            if (settings.path.empty()) throw UsageError("--out: must name a file");
        } else if (option == "--plot") {
            throw UsageError("plot: the picture is named by --out");
        } else if (!ParsePlotOption(option, cursor, settings)) {
            throw UsageError("plot: unknown option \"" + option + "\"");
        }
    }
    if (settings.path.empty()) settings.path = std::filesystem::path(input).stem().string() + ".png";
    CheckPlotSettings(settings);
    AudioData audio;
    try {
        audio = ReadWav(input);
    } catch (const std::runtime_error& e) {
        throw InputError(e.what());
    }
    PlotData data;
    data.title =
        std::filesystem::path(input).filename().string() + ", " + std::to_string(audio.sampleRate) + " Hz";
    data.sampleRate = audio.sampleRate;
    for (size_t c = 0; c < audio.channels.size(); ++c) {
        data.names.push_back("Channel " + std::to_string(c + 1));
        data.channels.push_back(&audio.channels[c]);
    }
    WritePlot(data, settings, settings.path);
    std::fprintf(stderr, "corvane: plotted %zu channels of %s to %s\n", audio.channels.size(), input.c_str(),
                 settings.path.c_str());
    return 0;
}

}  // namespace BR
