// Drawing a plot with cairo: lanes, axes with labels, the traces (a column's least and greatest
// sample where many frames share a pixel, held steps where a frame spans several), gate edges and
// MIDI events.
#include "Plot.h"

#include <cairo.h>
#include <fontconfig/fontconfig.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <stdexcept>

namespace BR {

namespace {

struct Range {
    double lo, hi;
};

// The lane's value range: the samples shown, 5 % apart each way; a constant gets +-0.5.
Range ValueRange(const std::vector<float>& samples, int64_t first, int64_t last) {
    double lo = INFINITY, hi = -INFINITY;
    for (int64_t k = std::max<int64_t>(first, 0); k < std::min<int64_t>(last, int64_t(samples.size())); ++k) {
        const double v = samples[size_t(k)];
        if (!std::isfinite(v)) continue;
        lo = std::min(lo, v);
        hi = std::max(hi, v);
    }
    if (!(lo <= hi)) return {-1, 1};
    if (hi - lo < 1e-9) return {lo - 0.5, hi + 0.5};
    const double pad = (hi - lo) * 0.05;
    return {lo - pad, hi + pad};
}

// Ticks at 1, 2 or 5 times a power of ten, about `count` of them over [lo, hi].
std::vector<double> Ticks(double lo, double hi, int count) {
    const double raw = (hi - lo) / std::max(count, 1);
    const double power = std::pow(10.0, std::floor(std::log10(raw)));
    double step = power;
    for (double m : {1.0, 2.0, 5.0, 10.0})
        if (power * m >= raw) {
            step = power * m;
            break;
        }
    std::vector<double> ticks;
    for (double t = std::ceil(lo / step) * step; t <= hi + step * 1e-9 && ticks.size() < 50; t += step)
        ticks.push_back(std::fabs(t) < step * 1e-9 ? 0.0 : t);
    return ticks;
}

std::string Format(double v) {
    char text[32];
    std::snprintf(text, sizeof text, "%g", v);
    return text;
}

std::string MidiLabel(const std::vector<uint8_t>& bytes) {
    if (bytes.empty()) return "";
    const int kind = bytes[0] & 0xF0;
    const int data = bytes.size() > 1 ? bytes[1] : 0;
    const int value = bytes.size() > 2 ? bytes[2] : 0;
    if (kind == 0x90 && value > 0) return "on " + std::to_string(data);
    if (kind == 0x80 || kind == 0x90) return "off " + std::to_string(data);
    if (kind == 0xB0) return "cc " + std::to_string(data);
    if (kind == 0xE0) return "bend";
    return "midi";
}

void Text(cairo_t* cr, double x, double y, const std::string& text, double alignX, double alignY) {
    cairo_text_extents_t e;
    cairo_text_extents(cr, text.c_str(), &e);
    cairo_move_to(cr, x - e.width * alignX - e.x_bearing, y - e.height * alignY - e.y_bearing);
    cairo_show_text(cr, text.c_str());
}

struct Lane {
    double top, height;
    Range range;
    double Y(double v) const { return top + (range.hi - v) / (range.hi - range.lo) * height; }
};

}  // namespace

void WritePlot(const PlotData& data, const PlotSettings& settings, const std::string& path) {
    const size_t count = std::max<size_t>(data.channels.size(), 1);
    const int width = settings.width > 0 ? settings.width : kPlotDefaultWidth;
    const int height =
        settings.height > 0 ? settings.height : kPlotTop + kPlotBottom + kPlotLaneDefault * int(count);
    int64_t frames = 0;
    for (const std::vector<float>* channel : data.channels)
        frames = std::max<int64_t>(frames, int64_t(channel->size()));
    const double rate = data.sampleRate;
    const double start = settings.ranged ? settings.start : 0.0;
    double end = settings.ranged ? settings.end : double(frames) / rate;
    if (end <= start) end = start + 1.0 / rate;
    const int64_t firstFrame = int64_t(std::floor(start * rate)), lastFrame = int64_t(std::ceil(end * rate));

    // Cairo and fontconfig keep their font caches for the whole process; they are handed back at its
    // end, once no plot is drawn any more, so that leak checkers see only what the program leaks.
    static const bool releaseAtExit = [] {
        return std::atexit([] {
                   cairo_debug_reset_static_data();
                   FcFini();
               }) == 0;
    }();
    (void)releaseAtExit;
    std::unique_ptr<cairo_surface_t, void (*)(cairo_surface_t*)> surface(
        cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height), cairo_surface_destroy);
    std::unique_ptr<cairo_t, void (*)(cairo_t*)> context(cairo_create(surface.get()), cairo_destroy);
    cairo_t* cr = context.get();
    cairo_set_source_rgb(cr, 1, 1, 1);
    cairo_paint(cr);
    cairo_select_font_face(cr, "DejaVu Sans", CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_NORMAL);

    const double left = kPlotLeft, right = width - kPlotRight, plotWidth = right - left;
    const double areaTop = kPlotTop, areaBottom = height - kPlotBottom;
    const double laneHeight = (areaBottom - areaTop - kPlotLaneGap * double(count - 1)) / double(count);
    auto X = [&](double seconds) { return left + (seconds - start) / (end - start) * plotWidth; };

    cairo_set_source_rgb(cr, 0, 0, 0);
    cairo_set_font_size(cr, 14);
    Text(cr, width / 2.0, 20, data.title, 0.5, 0.5);
    cairo_set_font_size(cr, 11);

    const std::vector<double> timeTicks = Ticks(start, end, std::max(2, int(plotWidth / 110)));
    std::vector<Lane> lanes;
    for (size_t c = 0; c < data.channels.size(); ++c) {
        Lane lane{areaTop + double(c) * (laneHeight + kPlotLaneGap), laneHeight,
                  ValueRange(*data.channels[c], firstFrame, lastFrame)};
        lanes.push_back(lane);
        // Frame, grid and value axis.
        cairo_set_line_width(cr, 1);
        cairo_set_source_rgb(cr, 0.9, 0.9, 0.9);
        for (double t : timeTicks) {
            cairo_move_to(cr, std::round(X(t)) + 0.5, lane.top);
            cairo_line_to(cr, std::round(X(t)) + 0.5, lane.top + lane.height);
        }
        const std::vector<double> valueTicks =
            Ticks(lane.range.lo, lane.range.hi, std::max(2, int(lane.height / 40)));
        for (double v : valueTicks) {
            cairo_move_to(cr, left, std::round(lane.Y(v)) + 0.5);
            cairo_line_to(cr, right, std::round(lane.Y(v)) + 0.5);
        }
        cairo_stroke(cr);
        cairo_set_source_rgb(cr, 0, 0, 0);
        cairo_rectangle(cr, left - 0.5, lane.top - 0.5, plotWidth + 1, lane.height + 1);
        cairo_stroke(cr);
        for (double v : valueTicks) {
            cairo_move_to(cr, left - 5, std::round(lane.Y(v)) + 0.5);
            cairo_line_to(cr, left - 0.5, std::round(lane.Y(v)) + 0.5);
            cairo_stroke(cr);
            Text(cr, left - 8, lane.Y(v), Format(v), 1.0, 0.5);
        }
        // The name in black, so that only the trace has the trace's colour.
        Text(cr, left + 6, lane.top + 4, c < data.names.size() ? data.names[c] : "", 0.0, 0.0);
    }
    // The axes' names and the time axis under the last lane.
    cairo_set_source_rgb(cr, 0, 0, 0);
    for (double t : timeTicks) {
        cairo_move_to(cr, std::round(X(t)) + 0.5, areaBottom);
        cairo_line_to(cr, std::round(X(t)) + 0.5, areaBottom + 5);
        cairo_stroke(cr);
        Text(cr, X(t), areaBottom + 8, Format(t), 0.5, 0.0);
    }
    cairo_set_font_size(cr, 12);
    Text(cr, left + plotWidth / 2, height - 8, "seconds", 0.5, 1.0);
    cairo_save(cr);
    cairo_translate(cr, 14, (areaTop + areaBottom) / 2);
    cairo_rotate(cr, -M_PI / 2);
    Text(cr, 0, 0, "value", 0.5, 0.5);
    cairo_restore(cr);
    cairo_set_font_size(cr, 10);

    // MIDI events: a dashed line through every lane, labelled above the first.
    cairo_set_source_rgb(cr, 0.55, 0.25, 0.65);
    const double dash[2] = {3, 3};
    size_t labelled = 0;
    double lastLabel = -1e9;
    for (const PlotMidi& event : data.midi) {
        const double x = X(double(event.frame) / rate);
        if (x < left || x > right) continue;
        cairo_set_dash(cr, dash, 2, 0);
        cairo_move_to(cr, std::round(x) + 0.5, areaTop);
        cairo_line_to(cr, std::round(x) + 0.5, areaBottom);
        cairo_stroke(cr);
        cairo_set_dash(cr, nullptr, 0, 0);
        if (x - lastLabel > 40 && labelled < 200) {
            Text(cr, x, areaTop - 3, MidiLabel(event.bytes), 0.5, 1.0);
            lastLabel = x;
            ++labelled;
        }
    }

    for (size_t c = 0; c < data.channels.size(); ++c) {
        const std::vector<float>& samples = *data.channels[c];
        const Lane& lane = lanes[c];
        const int64_t first = std::max<int64_t>(firstFrame, 0);
        const int64_t last = std::min<int64_t>(lastFrame, int64_t(samples.size()));
        if (first >= last) continue;
        cairo_save(cr);
        cairo_rectangle(cr, left, lane.top, plotWidth, lane.height);
        cairo_clip(cr);
        const uint8_t* colour = kPlotColours[c % 6];
        cairo_set_source_rgb(cr, colour[0] / 255.0, colour[1] / 255.0, colour[2] / 255.0);
        // Two pixels wide: every column then holds at least one pixel the trace covers whole.
        cairo_set_line_width(cr, 2.0);
        cairo_set_line_join(cr, CAIRO_LINE_JOIN_BEVEL);
        auto value = [&](int64_t k) {
            const float v = samples[size_t(k)];
            return std::isfinite(v) ? lane.Y(v) : lane.top + lane.height / 2;
        };
        const double framesPerPixel = (end - start) * rate / plotWidth;
        if (framesPerPixel <= 1.0) {
            // Each frame holds its value until the next.
            cairo_move_to(cr, X(double(first) / rate), value(first));
            for (int64_t k = first; k < last; ++k) {
                cairo_line_to(cr, X(double(k) / rate), value(k));
                cairo_line_to(cr, X(double(k + 1) / rate), value(k));
            }
        } else {
            // Per pixel column: from the last value before it, its first, least, greatest and last.
            bool begun = false;
            for (int column = 0; column < int(plotWidth); ++column) {
                const int64_t a = std::max<int64_t>(
                    first, int64_t(std::floor((start + (end - start) * column / plotWidth) * rate)));
                const int64_t b = std::min<int64_t>(
                    last, int64_t(std::floor((start + (end - start) * (column + 1) / plotWidth) * rate)));
                if (a >= b) continue;
                double lo = value(a), hi = lo;
                for (int64_t k = a + 1; k < b; ++k) {
                    const double y = value(k);
                    lo = std::min(lo, y);
                    hi = std::max(hi, y);
                }
                const double x = left + column + 0.5;
                if (!begun) cairo_move_to(cr, x, value(a));
                begun = true;
                cairo_line_to(cr, x, value(a));
                cairo_line_to(cr, x, lo);
                cairo_line_to(cr, x, hi);
                cairo_line_to(cr, x, value(b - 1));
            }
        }
        cairo_stroke(cr);
        // Gate edges: a channel of two levels gets a triangle at the lane's top at each change,
        // pointing up where it rises and down where it falls.
        float levels[2] = {0, 0};
        int distinct = 0;
        for (int64_t k = first; k < last && distinct <= 2; ++k) {
            const float v = samples[size_t(k)];
            if (distinct == 0 || (v != levels[0] && (distinct == 1 || v != levels[1]))) {
                if (distinct < 2) levels[distinct] = v;
                ++distinct;
            }
        }
        if (distinct == 2) {
            cairo_set_source_rgb(cr, 1.0, 0.5, 0.05);
            size_t marks = 0;
            for (int64_t k = first + 1; k < last && marks < 2000; ++k) {
                if (samples[size_t(k)] == samples[size_t(k - 1)]) continue;
                const bool rising = samples[size_t(k)] > samples[size_t(k - 1)];
                const double x = X(double(k) / rate), y = lane.top + 2;
                cairo_move_to(cr, x - 4, rising ? y + 7 : y);
                cairo_line_to(cr, x + 4, rising ? y + 7 : y);
                cairo_line_to(cr, x, rising ? y : y + 7);
                cairo_close_path(cr);
                cairo_fill(cr);
                ++marks;
            }
        }
        cairo_restore(cr);
    }
    cairo_surface_flush(surface.get());
    if (cairo_surface_write_to_png(surface.get(), path.c_str()) != CAIRO_STATUS_SUCCESS)
        throw std::runtime_error("cannot write the plot \"" + path + "\"");
}

}  // namespace BR
