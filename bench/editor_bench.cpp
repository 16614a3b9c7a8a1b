// The editor's render thread under Xvfb and Mesa: frames per second and time per frame of DC's plain
// panel; and the audio path's cost with the editor open against the same module with no editor, in
// CPU time of the audio thread alone, the two interleaved over repetitions in one run.
#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include "BenchSupport.h"
#include "editor/GenericPanel.h"
#include "editor/PluginLuaGui.h"
#include "editor/PrivateXServer.h"
#include "editor/X11Window.h"
#include "editor/ZPmanager.h"

namespace {

// An Xvfb of the benchmark's own on a display it picks, for the life of the program; empty when it
// did not start.
const std::string& TheDisplay() {
    static BR::PrivateXServer server(true, 1024, 768);
    return server.Name();
}

// A module's editor in a window, with its render thread running and a window thread of its own that
// pumps the window's events, as a host's window thread does.
struct OpenEditor {
    // `ownPanel`: the module's panel script, as a host opens it; otherwise the plain generic panel.
    OpenEditor(BrelCorvaneBase& module, bool ownPanel) : manager(&module), gui(&module) {
        if (ownPanel)
            gui.OpenPanel(&manager);
        else
            BR::BuildGenericPanel(manager);
        const std::string& display = TheDisplay();
        open = !display.empty() &&
               window.Open(manager.designWidth, manager.designHeight, "bench", 0, display.c_str());
        if (!open) return;
        window.manager = &manager;
        manager.CreateRenderTask(&window);
    }
    ~OpenEditor() {
        StopPump();
        if (!open) return;
        manager.DestroyRenderTask();
        window.Close();
    }
    void StartPump() {
        pump = std::thread([this] {
            while (!stop.load())
                window.ProcessEvents(5);
        });
    }
    void StopPump() {
        stop = true;
        if (pump.joinable()) pump.join();
    }
    // Only while no pump thread runs.
    void WaitFrame() {
        const uint64_t target = manager.FrameCount() + 1;
        while (manager.FrameCount() < target)
            window.ProcessEvents(1);
    }
    BR::ZPmanager manager;
    BR::PluginLuaGui gui;
    BR::X11Window window;
    bool open = false;
    std::atomic<bool> stop{false};
    std::thread pump;
};

void BM_EditorFrame(benchmark::State& state) {
    BR::Bench::ModuleRig rig("dc", 256);
    OpenEditor editor(rig.driver->Module(), false);
    if (!editor.open) {
        state.SkipWithError("no editor window on the benchmark's Xvfb");
        return;
    }
    editor.WaitFrame();
    double drawn = 0;
    const auto start = std::chrono::steady_clock::now();
    for (auto _ : state) {
        editor.WaitFrame();
        drawn += editor.manager.drawTime;
    }
    state.counters["frames_per_s"] =
        benchmark::Counter(double(state.iterations()), benchmark::Counter::kIsRate);
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    state.counters["ms_per_frame"] = seconds * 1000.0 / double(state.iterations());
    state.counters["ms_drawing"] = drawn * 1000.0 / double(state.iterations());
    state.counters["smoothed_fps"] = editor.manager.framesPerSecond;
}
BENCHMARK(BM_EditorFrame)->UseRealTime()->MinTime(3.0)->Unit(benchmark::kMillisecond);

// The audio path of a module, blocks of 256 frames, timed in the CPU time of the thread that renders
// (Google Benchmark's default clock): the editor's threads are not counted, only what they cost the
// audio thread. The editor is the module's own panel, live displays included, drawing constantly.
constexpr int64_t kBlocks = 40000;
constexpr int kRepetitions = 7;

void AudioPath(benchmark::State& state, const char* stem, bool withEditor) {
    BR::Bench::ModuleRig rig(stem, 256);
    std::unique_ptr<OpenEditor> editor;
    if (withEditor) {
        editor = std::make_unique<OpenEditor>(rig.driver->Module(), true);
        if (!editor->open) {
            state.SkipWithError("no editor window on the benchmark's Xvfb");
            return;
        }
        for (int i = 0; i < 3; ++i)
            editor->WaitFrame();
        editor->StartPump();
    }
    const uint64_t framesBefore = editor ? editor->manager.FrameCount() : 0;
    const auto start = std::chrono::steady_clock::now();
    for (auto _ : state) {
        rig.Render();
        benchmark::DoNotOptimize(rig.out[0].data());
    }
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    // The frames the render thread drew while the audio ran: the editor was live, not idle.
    state.counters["editor_frames_per_s"] =
        editor ? double(editor->manager.FrameCount() - framesBefore) / seconds : 0.0;
    BR::Bench::CountFrames(state, 256);
}

void BM_LFOAudioNoEditor(benchmark::State& state) {
    AudioPath(state, "lfo", false);
}
void BM_LFOAudioEditorOpen(benchmark::State& state) {
    AudioPath(state, "lfo", true);
}
BENCHMARK(BM_LFOAudioNoEditor)->Iterations(kBlocks)->Repetitions(kRepetitions)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_LFOAudioEditorOpen)
    ->Iterations(kBlocks)
    ->Repetitions(kRepetitions)
    ->Unit(benchmark::kMicrosecond);

// Keeps every repetition's CPU time per iteration, by benchmark name.
class RepetitionReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs)
            if (run.run_type == Run::RT_Iteration && !run.error_occurred)
                times[run.run_name.function_name].push_back(run.GetAdjustedCPUTime());
        ConsoleReporter::ReportRuns(runs);
    }
    std::map<std::string, std::vector<double>> times;
};

double Median(std::vector<double> v) {
    std::sort(v.begin(), v.end());
    const size_t n = v.size();
    return n % 2 ? v[n / 2] : 0.5 * (v[n / 2 - 1] + v[n / 2]);
}

}  // namespace

int main(int argc, char** argv) {
    // The two cases alternate in random order over their repetitions, so that a change of the
    // machine's load during the run falls on both; a command line may still say otherwise.
    std::vector<char*> args(argv, argv + argc);
    char interleave[] = "--benchmark_enable_random_interleaving=true";
    args.insert(args.begin() + 1, interleave);
    int count = int(args.size());
    benchmark::Initialize(&count, args.data());
    if (benchmark::ReportUnrecognizedArguments(count, args.data())) return 1;
    TheDisplay();  // started before the timing, not inside the first benchmark
    RepetitionReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    const auto closed = reporter.times.find("BM_LFOAudioNoEditor");
    const auto open = reporter.times.find("BM_LFOAudioEditorOpen");
    if (closed != reporter.times.end() && open != reporter.times.end() && !closed->second.empty() &&
        !open->second.empty()) {
        const auto [closedMin, closedMax] = std::minmax_element(closed->second.begin(), closed->second.end());
        const auto [openMin, openMax] = std::minmax_element(open->second.begin(), open->second.end());
        const double closedMedian = Median(closed->second), openMedian = Median(open->second);
        // The times are in the benchmarks' unit, microseconds per block.
        std::printf(
            "\nAudio thread CPU time per block of 256 frames, measured in this run (%zu and %zu "
            "repetitions, interleaved):\n",
            closed->second.size(), open->second.size());
        std::printf("  no editor:   median %.4f us, range %.4f to %.4f us\n", closedMedian, *closedMin,
                    *closedMax);
        std::printf("  editor open: median %.4f us, range %.4f to %.4f us\n", openMedian, *openMin, *openMax);
        std::printf("  ratio editor open / no editor (medians) = %.3f\n", openMedian / closedMedian);
        std::printf(
            "  noise: the no-editor repetitions spread over %.1f %% of their median, the editor-open "
            "ones over %.1f %%\n",
            100.0 * (*closedMax - *closedMin) / closedMedian, 100.0 * (*openMax - *openMin) / openMedian);
    }
    benchmark::Shutdown();
    return 0;
}
