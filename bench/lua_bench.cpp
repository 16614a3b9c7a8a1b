// One MIDI event through a Lua callback against the same event with no script: a block of 64
// frames of DC holding one note-on, with and without a script that asks for every note-on.
#include <lua.hpp>

#include "BenchSupport.h"
#include "remote/LuaMIDIHelper.h"
#include "remote/RemoteServices.h"

namespace {

void RenderWithNote(benchmark::State& state, const char* script) {
    BR::InstallRemoteServices();
    BR::Bench::ModuleRig rig("dc", 64);
    if (script) {
        lua_State* L = BR::LuaHelperOf(rig.driver->Module())->GetLuaState();
        if (luaL_dostring(L, script) != 0) state.SkipWithError(lua_tostring(L, -1));
    }
    const uint8_t note[3] = {0x90, 60, 100};
    const BR::TimedMidi midi = {17, 3, note};
    const float* in[2] = {rig.in[0].data(), rig.in[1].data()};
    for (auto _ : state) {
        rig.driver->Process(in, rig.outPointers.data(), 64, &midi, 1);
        benchmark::DoNotOptimize(rig.out[0].data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(int64_t(state.iterations()));
}

void BM_NoteWithoutScript(benchmark::State& state) {
    RenderWithNote(state, nullptr);
}

void BM_NoteThroughLuaCallback(benchmark::State& state) {
    RenderWithNote(state, "count = 0 requestAllNoteOn(function(c, n, v) count = count + 1 end)");
}

BENCHMARK(BM_NoteWithoutScript);
BENCHMARK(BM_NoteThroughLuaCallback);

}  // namespace

int main(int argc, char** argv) {
    return BR::Bench::RunWithRatios(argc, argv, {{"BM_NoteThroughLuaCallback", "BM_NoteWithoutScript"}});
}
