// The editor's render thread under Xvfb and Mesa: frames per second and time per frame of DC's plain
// panel, and DC's audio render with the editor open against the same with it closed.
#include <chrono>
#include <cstdio>
#include <thread>

#include "BenchSupport.h"
#include "editor/GenericPanel.h"
#include "editor/PrivateXServer.h"
#include "editor/X11Window.h"
#include "editor/ZPmanager.h"

namespace {

// An Xvfb of the benchmark's own on a display it picks, for the life of the program.
const char* TheDisplay() {
    static BR::PrivateXServer server(true, 1024, 768);
    return server.Running() ? server.Name().c_str() : nullptr;
}

// DC's plain panel in a window, with its render thread running; the window thread is pumped by
// whoever waits on it.
struct OpenEditor {
    explicit OpenEditor(BrelCorvaneBase& module) : manager(&module) {
        BR::BuildGenericPanel(manager);
        open =
            TheDisplay() && window.Open(manager.designWidth, manager.designHeight, "bench", 0, TheDisplay());
        if (!open) return;
        window.manager = &manager;
        manager.CreateRenderTask(&window);
    }
    ~OpenEditor() {
        manager.DestroyRenderTask();
        window.Close();
    }
    void WaitFrame() {
        const uint64_t target = manager.FrameCount() + 1;
        while (manager.FrameCount() < target)
            window.ProcessEvents(1);
    }
    BR::ZPmanager manager;
    BR::X11Window window;
    bool open = false;
};

void BM_EditorFrame(benchmark::State& state) {
    BR::Bench::ModuleRig rig("dc", 256);
    OpenEditor editor(rig.driver->Module());
    if (!editor.open) {
        state.SkipWithError("no editor window on a private Xvfb");
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

// DC's audio blocks with its editor drawing on its own thread meanwhile.
void BM_DCRenderEditorOpen(benchmark::State& state) {
    BR::Bench::ModuleRig rig("dc", 256);
    OpenEditor editor(rig.driver->Module());
    if (!editor.open) {
        state.SkipWithError("no editor window on a private Xvfb");
        return;
    }
    std::atomic<bool> stop{false};
    std::thread pump([&] {
        while (!stop)
            editor.window.ProcessEvents(5);
    });
    for (auto _ : state) {
        rig.Render();
        benchmark::DoNotOptimize(rig.out[0].data());
    }
    stop = true;
    pump.join();
    BR::Bench::CountFrames(state, 256);
}
BENCHMARK(BM_DCRenderEditorOpen)->UseRealTime();

void BM_DCRenderEditorClosed(benchmark::State& state) {
    BR::Bench::ModuleRig rig("dc", 256);
    for (auto _ : state) {
        rig.Render();
        benchmark::DoNotOptimize(rig.out[0].data());
    }
    BR::Bench::CountFrames(state, 256);
}
BENCHMARK(BM_DCRenderEditorClosed)->UseRealTime();

}  // namespace

int main(int argc, char** argv) {
    return BR::Bench::RunWithRatios(
        argc, argv, {{"BM_DCRenderEditorOpen/real_time", "BM_DCRenderEditorClosed/real_time"}});
}
