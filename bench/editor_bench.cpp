// The editor's render thread under Xvfb and Mesa: frames per second and time per frame of DC's plain
// panel, and DC's audio render with the editor open against the same with it closed.
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>

#include <chrono>
#include <cstdio>
#include <thread>

#include "BenchSupport.h"
#include "editor/GenericPanel.h"
#include "editor/X11Window.h"
#include "editor/ZPmanager.h"

extern char** environ;

namespace {

// An Xvfb of the benchmark's own on :57, for the life of the program.
struct Server {
    Server() {
        char* argv[] = {
            const_cast<char*>("Xvfb"), const_cast<char*>(":57"),         const_cast<char*>("-screen"),
            const_cast<char*>("0"),    const_cast<char*>("1024x768x24"), const_cast<char*>("-nolisten"),
            const_cast<char*>("tcp"),  const_cast<char*>("-noreset"),    nullptr};
        if (posix_spawnp(&pid, "Xvfb", nullptr, nullptr, argv, environ) != 0) pid = -1;
        std::this_thread::sleep_for(std::chrono::milliseconds(700));
    }
    ~Server() {
        if (pid > 0) kill(pid, SIGTERM), waitpid(pid, nullptr, 0);
    }
    pid_t pid = -1;
};

// DC's plain panel in a window, with its render thread running; the window thread is pumped by
// whoever waits on it.
struct OpenEditor {
    explicit OpenEditor(BrelCorvaneBase& module) : manager(&module) {
        BR::BuildGenericPanel(manager);
        open = window.Open(manager.designWidth, manager.designHeight, "bench", 0, ":57");
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

Server& TheServer() {
    static Server server;
    return server;
}

void BM_EditorFrame(benchmark::State& state) {
    TheServer();
    BR::Bench::ModuleRig rig("dc", 256);
    OpenEditor editor(rig.driver->Module());
    if (!editor.open) {
        state.SkipWithError("no editor window on :57");
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
    TheServer();
    BR::Bench::ModuleRig rig("dc", 256);
    OpenEditor editor(rig.driver->Module());
    if (!editor.open) {
        state.SkipWithError("no editor window on :57");
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
