// The progress line of a long render.
#include "Progress.h"

#include <unistd.h>

#include <cstdio>

namespace BR {

RenderProgress::RenderProgress(int64_t totalFrames, double sampleRate_)
    : on(isatty(STDERR_FILENO) == 1 && double(totalFrames) > kProgressSeconds * sampleRate_),
      total(totalFrames),
      sampleRate(sampleRate_),
      next(std::chrono::steady_clock::now()) {}

RenderProgress::~RenderProgress() {
    if (on) Show(done, true);
}

void RenderProgress::Show(int64_t framesDone, bool last) {
    done = framesDone;
    const auto now = std::chrono::steady_clock::now();
    if (!last && now < next) return;
    next = now + std::chrono::milliseconds(100);
    std::fprintf(stderr, "\rcorvane: rendering %3d%% (%.1f of %.1f s)%s", int(done * 100 / total),
                 double(done) / sampleRate, double(total) / sampleRate, last ? "\n" : "");
    std::fflush(stderr);
}

}  // namespace BR
