// The edit command: a real-time render thread paced by the clock, the editor's window on the main
// thread, and the state written once the window closes.
#include "EditCommand.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <thread>
#include <vector>

#include "CommandLine.h"
#include "EditorWindow.h"
#include "RenderJob.h"
#include "StateFile.h"

namespace BR {

namespace {
std::atomic<bool> interrupted{false};

void OnInterrupt(int) {
    interrupted = true;
}

// Renders block after block at the pace of the sample clock, with silent inputs, until told to stop.
void RenderInRealTime(HostDriver& driver, const RenderJob& job, std::atomic<bool>& stop) {
    const size_t numIn = size_t(driver.NumHostInputs()), numOut = size_t(driver.NumHostOutputs());
    const uint32_t block = std::min<uint32_t>(job.blockSize, driver.MaxBlockSize());
    std::vector<float> silence(block, 0.0f);
    std::vector<std::vector<float>> outputs(numOut, std::vector<float>(block));
    std::vector<const float*> in(std::max<size_t>(numIn, 1), silence.data());
    std::vector<float*> out(std::max<size_t>(numOut, 1), nullptr);
    for (size_t c = 0; c < numOut; ++c)
        out[c] = outputs[c].data();
    BlockClock clock(job.transport, job.sampleRate);
    driver.SetTransport(clock.Transport());
    const auto period = std::chrono::duration<double>(double(block) / job.sampleRate);
    auto due = std::chrono::steady_clock::now();
    for (int64_t done = 0; !stop; done += block) {
        const uint32_t n = clock.NextBlock(done, block);
        driver.Process(in.data(), out.data(), n, nullptr, 0);
        due += std::chrono::duration_cast<std::chrono::steady_clock::duration>(period);
        std::this_thread::sleep_until(due);
    }
    driver.SetTransport(nullptr);
}
}  // namespace

int RunEdit(int argc, char** argv) {
    RenderJob job = ParseRenderJob(argc, argv, 2);
    // The editor's render is in real time anyway: the server, scripts and base port of the
    // command line apply as they do to "render --realtime".
    const std::unique_ptr<HostDriver> owner = MakeJobDriver(job);
    HostDriver& driver = *owner;
    if (!job.stateIn.empty()) {
        try {
            RestoreStateFile(job.stateIn, driver);
        } catch (const std::runtime_error& e) {
            throw InputError(std::string("--state-in: ") + e.what());
        }
    }
    for (const auto& [name, value] : job.sets)
        ApplySetting(driver, name, value);

    std::atomic<bool> stopAudio{false};
    std::thread audio([&] { RenderInRealTime(driver, job, stopAudio); });
    int status = 0;
    {
        EditorWindow editor;
        if (!editor.Open(driver.Module(), std::string("corvane ") + driver.Module().GetModuleName())) {
            std::fprintf(stderr, "corvane: the editor cannot open: %s\n", editor.LastError().c_str());
            status = 1;
        } else {
            std::signal(SIGINT, OnInterrupt);
            std::signal(SIGTERM, OnInterrupt);
            const auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(job.seconds);
            while (!interrupted && editor.Pump(30)) {
                if (job.seconds >= 0 && std::chrono::steady_clock::now() >= end) break;
            }
            editor.Close();
        }
    }
    stopAudio = true;
    audio.join();
    if (status == 0 && !job.stateOut.empty()) WriteStateFile(job.stateOut, driver);
    return status;
}

}  // namespace BR
