// `--plot` draws a PNG of the requested size in which every trace pixel lies where the samples put
// it: for each pixel column, between the least and the greatest sample of the frames the column
// covers (and the last value before them), on the lane's value range (the samples' extremes, 5 %
// apart each way) and the time axis of the layout (lanes from 40 px below the top to 48 px above
// the bottom, 16 px apart, 80 px from the left and 24 px from the right). Zoomed in with
// --plot-range, each frame holds its value over the pixels it covers. A patch plots one picture per
// instance; `corvane plot` plots any WAV.
#include <cairo.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>

#include "host/cli/WavFile.h"
#include "tests/support/RunCommand.h"

namespace {

constexpr int kLeft = 80, kRight = 24, kTop = 40, kBottom = 48, kGap = 16;

struct Picture {
    explicit Picture(const std::string& path) : surface(cairo_image_surface_create_from_png(path.c_str())) {}
    ~Picture() { cairo_surface_destroy(surface); }
    int Width() const { return cairo_image_surface_get_width(surface); }
    int Height() const { return cairo_image_surface_get_height(surface); }
    bool Ok() const { return cairo_surface_status(surface) == CAIRO_STATUS_SUCCESS; }
    // Near the colour in every byte (antialiased edges are lighter and do not count).
    bool Is(int x, int y, int r, int g, int b) const {
        const uint8_t* row =
            cairo_image_surface_get_data(surface) + y * cairo_image_surface_get_stride(surface);
        const uint32_t p = reinterpret_cast<const uint32_t*>(row)[x];
        return std::abs(int((p >> 16) & 255) - r) + std::abs(int((p >> 8) & 255) - g) +
                   std::abs(int(p & 255) - b) <
               60;
    }
    cairo_surface_t* surface;
};

struct Lane {
    double top, height, lo, hi;
    double Y(double v) const { return top + (hi - v) / (hi - lo) * height; }
};

Lane LaneOf(const std::vector<std::vector<float>>& channels, size_t c, int height, size_t first,
            size_t last) {
    const double n = double(channels.size());
    const double laneHeight = (height - kTop - kBottom - kGap * (n - 1)) / n;
    const auto [lo, hi] =
        std::minmax_element(channels[c].begin() + long(first), channels[c].begin() + long(last));
    const double pad = (*hi - *lo) * 0.05;
    return {kTop + double(c) * (laneHeight + kGap), laneHeight, *lo - pad, *hi + pad};
}

// Checks each column of channel c against the band [low, high] that `band` gives; returns the
// columns that held trace pixels.
int CheckColumns(const Picture& picture, const Lane& lane, const uint8_t* colour,
                 const std::function<std::pair<double, double>(int)>& band, const std::string& what) {
    const int plotWidth = picture.Width() - kLeft - kRight;
    int columnsWithTrace = 0, misplaced = 0;
    for (int column = 1; column < plotWidth - 1; ++column) {
        const auto [low, high] = band(column);
        bool any = false;
        for (int y = int(lane.top) + 1; y < int(lane.top + lane.height) - 1; ++y) {
            if (!picture.Is(kLeft + column, y, colour[0], colour[1], colour[2])) continue;
            any = true;
            if (y + 0.5 < low - 2.5 || y + 0.5 > high + 2.5) {
                if (++misplaced <= 5)
                    ADD_FAILURE() << what << ": column " << column << ": a trace pixel at y " << y
                                  << ", the samples say " << low << " to " << high;
            }
        }
        columnsWithTrace += any;
    }
    EXPECT_EQ(misplaced, 0) << what;
    return columnsWithTrace;
}

const uint8_t kColours[2][3] = {{31, 119, 180}, {214, 39, 40}};

}  // namespace

TEST(CliPlot, RenderTracesLieWhereTheSamplesSay) {
    const std::string f = BR::Test::MakeTempFolder();
    const auto result = BR::Test::RunCorvane(
        "render lfo --set \"Sine L=1\" --set \"Triangle R=0.8\" --set \"Speed R=3.7\" "
        "--seconds 1 --out " +
        f + "/lfo.wav --plot " + f + "/lfo.png --plot-size 900x500");
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_NE(result.err.find("corvane: plotted them to " + f + "/lfo.png\n"), std::string::npos);
    const BR::AudioData audio = BR::ReadWav(f + "/lfo.wav");
    ASSERT_EQ(audio.channels.size(), 2u);
    const Picture picture(f + "/lfo.png");
    ASSERT_TRUE(picture.Ok());
    EXPECT_EQ(picture.Width(), 900);
    EXPECT_EQ(picture.Height(), 500);
    const size_t frames = audio.Frames();
    const int plotWidth = 900 - kLeft - kRight;
    for (size_t c = 0; c < 2; ++c) {
        const Lane lane = LaneOf(audio.channels, c, 500, 0, frames);
        const std::vector<float>& s = audio.channels[c];
        const int columns = CheckColumns(
            picture, lane, kColours[c],
            [&](int column) {
                const size_t a = size_t(std::floor(double(column) / plotWidth * double(frames)));
                const size_t b =
                    std::min(frames, size_t(std::floor(double(column + 1) / plotWidth * double(frames))));
                double low = lane.Y(s[a]), high = low;
                for (size_t k = a; k < b; ++k) {
                    low = std::min(low, lane.Y(s[k]));
                    high = std::max(high, lane.Y(s[k]));
                }
                if (a > 0) {
                    low = std::min(low, lane.Y(s[a - 1]));
                    high = std::max(high, lane.Y(s[a - 1]));
                }
                return std::make_pair(low, high);
            },
            "channel " + std::to_string(c));
        EXPECT_GE(columns, plotWidth - 4) << "channel " << c << " has a trace in too few columns";
    }
    std::filesystem::remove_all(f);
}

TEST(CliPlot, ARangeHoldsEachFrameOverItsPixels) {
    const std::string f = BR::Test::MakeTempFolder();
    const auto result = BR::Test::RunCorvane(
        "render lfo --set \"Sine L=1\" --set \"Speed L=20\" --seconds 1 --out " + f + "/lfo.wav --plot " + f +
        "/zoom.png --plot-size 1000x400 --plot-range 0.1:0.105");
    ASSERT_EQ(result.status, 0) << result.err;
    const BR::AudioData audio = BR::ReadWav(f + "/lfo.wav");
    const Picture picture(f + "/zoom.png");
    ASSERT_TRUE(picture.Ok());
    EXPECT_EQ(picture.Width(), 1000);
    EXPECT_EQ(picture.Height(), 400);
    const int plotWidth = 1000 - kLeft - kRight;
    const Lane lane = LaneOf(audio.channels, 0, 400, 4800, 5040);  // frames 4800 to 5040 are shown
    const std::vector<float>& s = audio.channels[0];
    const int columns = CheckColumns(
        picture, lane, kColours[0],
        [&](int column) {
            // The frame this column's middle belongs to, and at its left edge the one before.
            const double at = 4800 + (column + 0.5) / plotWidth * 240;
            const size_t k = size_t(at);
            const bool edge = at - double(k) < 240.0 / plotWidth;
            const double y = lane.Y(s[k]), before = edge ? lane.Y(s[k - 1]) : y;
            return std::make_pair(std::min(y, before), std::max(y, before));
        },
        "zoomed");
    EXPECT_GE(columns, plotWidth - 4);
    std::filesystem::remove_all(f);
}

TEST(CliPlot, APatchPlotsEachInstanceAndPlotReadsAnyWav) {
    const std::string f = BR::Test::MakeTempFolder();
    std::ofstream(f + "/p.json") << R"({"instances": [{"name": "lfo", "module": "lfo"},
      {"name": "vc", "module": "voicecontroller", "events": ["4800:903C64", "24000:803C00"]}]})";
    auto result = BR::Test::RunCorvane("patch " + f + "/p.json --plot " + f + "/p.png");
    ASSERT_EQ(result.status, 0) << result.err;
    const Picture lfo(f + "/p-lfo.png"), vc(f + "/p-vc.png");
    ASSERT_TRUE(lfo.Ok());
    ASSERT_TRUE(vc.Ok());
    EXPECT_EQ(lfo.Width(), 1000);
    EXPECT_EQ(lfo.Height(), 40 + 48 + 2 * 160);
    EXPECT_EQ(vc.Height(), 40 + 48 + 6 * 160);
    EXPECT_NE(result.err.find("corvane: plotted them to " + f + "/p-vc.png\n"), std::string::npos);

    result = BR::Test::RunCorvane("plot " + f + "/vc.wav --out " + f + "/w.png --plot-size 640x480");
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.err, "corvane: plotted 6 channels of " + f + "/vc.wav to " + f + "/w.png\n");
    const Picture w(f + "/w.png");
    EXPECT_EQ(w.Width(), 640);
    EXPECT_EQ(w.Height(), 480);

    result = BR::Test::RunCorvane("plot " + f + "/none.wav --out " + f + "/x.png");
    EXPECT_EQ(result.status, 2);
    EXPECT_FALSE(std::filesystem::exists(f + "/x.png"));
    result = BR::Test::RunCorvane("render dc --plot " + f + "/nofolder/x.png --out " + f + "/d.wav");
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err.rfind("corvane: --plot: there is no folder", 0), 0u) << result.err;
    EXPECT_FALSE(std::filesystem::exists(f + "/d.wav"));
    result = BR::Test::RunCorvane("render dc --plot-range 2:1 --plot " + f + "/x.png --out " + f + "/d.wav");
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err.rfind("corvane: --plot-range: the end must lie after the start\n", 0), 0u)
        << result.err;
    std::filesystem::remove_all(f);
}
