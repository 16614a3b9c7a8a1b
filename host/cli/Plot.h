// Plots of rendered channels as PNG pictures, drawn with cairo: one lane per channel, each a trace
// over time with its own value axis, time in seconds below, gate edges and MIDI events marked.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "framework/ModuleCatalogue.h"

namespace BR {

class ArgumentCursor;

struct PlotSettings {
    std::string path;           // where to write; empty: no plot
    int width = 0;              // pixels; 0: kPlotDefaultWidth
    int height = 0;             // pixels; 0: kPlotTop + kPlotBottom + kPlotLaneDefault per channel
    bool ranged = false;        // --plot-range given
    double start = 0, end = 0;  // seconds
};

// The picture's layout in pixels. Lanes stack from kPlotTop to height - kPlotBottom, kPlotLaneGap
// apart; each spans x from kPlotLeft to width - kPlotRight. Time t maps linearly onto that span,
// a lane's value range [lo, hi] onto its height (hi at the top): lo and hi are the least and the
// greatest sample shown, moved apart by 5 % of their distance each way (a constant v shows as
// v - 0.5 .. v + 0.5).
constexpr int kPlotDefaultWidth = 1000;
constexpr int kPlotLaneDefault = 160;
constexpr int kPlotLeft = 80, kPlotRight = 24, kPlotTop = 40, kPlotBottom = 48, kPlotLaneGap = 16;
// The colour of channel k's trace is kPlotColours[k % 6] (red, green, blue bytes).
constexpr uint8_t kPlotColours[6][3] = {{31, 119, 180},  {214, 39, 40}, {44, 160, 44},
                                        {148, 103, 189}, {140, 86, 75}, {23, 190, 207}};

struct PlotMidi {
    int64_t frame;
    std::vector<uint8_t> bytes;
};

struct PlotData {
    std::string title;
    double sampleRate = 48000;
    std::vector<std::string> names;                   // one per channel
    std::vector<const std::vector<float>*> channels;  // the samples, from frame 0
    std::vector<PlotMidi> midi;
};

// Takes "--plot FILE.png", "--plot-size WxH" and "--plot-range START:END"; false for other options.
bool ParsePlotOption(const std::string& option, ArgumentCursor& cursor, PlotSettings& settings);
// Throws UsageError when a plot is asked for that cannot be written (no such folder, a range past
// the render's end is allowed), before anything is rendered.
void CheckPlotSettings(const PlotSettings& settings);
// "Out 1 (L)", "Out 2 (R)", "Out 3 (3/4 L)", ... or "Out 1" for a module's output channels.
std::vector<std::string> OutputChannelNames(const CatalogueEntry& entry, int32_t numOutputs);
// Draws and writes the PNG; throws std::runtime_error when it cannot be written.
void WritePlot(const PlotData& data, const PlotSettings& settings, const std::string& path);
// Where a patch's instance `name` is plotted: "plot.png" -> "plot-NAME.png".
std::string InstancePlotPath(const std::string& path, const std::string& name);

// `corvane plot FILE.wav --out FILE.png [--plot-size WxH] [--plot-range START:END]`.
int RunPlot(int argc, char** argv);

}  // namespace BR
