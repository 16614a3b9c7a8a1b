// Progress of a long offline render on standard error: only when standard error is a terminal and
// the render is longer than kProgressSeconds of audio, one line rewritten at most ten times a second.
#pragma once

#include <chrono>
#include <cstdint>

namespace BR {

constexpr double kProgressSeconds = 5.0;

class RenderProgress {
public:
    RenderProgress(int64_t totalFrames, double sampleRate);
    ~RenderProgress();  // ends the line, at 100 % when the render got there
    RenderProgress(const RenderProgress&) = delete;
    RenderProgress& operator=(const RenderProgress&) = delete;

    void Update(int64_t framesDone) {
        if (on) Show(framesDone, false);
    }

private:
    void Show(int64_t framesDone, bool last);

    bool on;
    int64_t total;
    double sampleRate;
    int64_t done = 0;
    std::chrono::steady_clock::time_point next;
};

}  // namespace BR
