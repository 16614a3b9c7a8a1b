// MIDI events through a Lua callback against the same events with no script: a block of 64 frames
// of DC holding 16 note-ons, with and without a script that asks for every note-on, and the same
// block with no event, so that the cost of the events themselves can be told from the block's.
#include <lua.hpp>

#include "BenchSupport.h"
#include "remote/LuaMIDIHelper.h"
#include "remote/RemoteServices.h"

namespace {

void RenderWithNotes(benchmark::State& state, const char* script, uint32_t numEvents) {
    BR::InstallRemoteServices();
    BR::Bench::ModuleRig rig("dc", 64);
    if (script) {
        lua_State* L = BR::LuaHelperOf(rig.driver->Module())->GetLuaState();
        if (luaL_dostring(L, script) != 0) state.SkipWithError(lua_tostring(L, -1));
    }
    const uint8_t note[3] = {0x90, 60, 100};
    BR::TimedMidi midi[16];
    for (uint32_t i = 0; i < 16; ++i)
        midi[i] = BR::TimedMidi{i * 4, 3, note};
    const float* in[2] = {rig.in[0].data(), rig.in[1].data()};
    for (auto _ : state) {
        rig.driver->Process(in, rig.outPointers.data(), 64, midi, numEvents);
        benchmark::DoNotOptimize(rig.out[0].data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(int64_t(state.iterations()));
}

void BM_BlockWithoutEvents(benchmark::State& state) {
    RenderWithNotes(state, nullptr, 0);
}

void BM_NotesWithoutScript(benchmark::State& state) {
    RenderWithNotes(state, nullptr, 16);
}

void BM_NotesThroughLuaCallback(benchmark::State& state) {
    RenderWithNotes(state, "count = 0 requestAllNoteOn(function(c, n, v) count = count + 1 end)", 16);
}

BENCHMARK(BM_BlockWithoutEvents);
BENCHMARK(BM_NotesWithoutScript);
BENCHMARK(BM_NotesThroughLuaCallback);

}  // namespace

int main(int argc, char** argv) {
    // Per event: (Lua - no events) / (no script - no events), from the three times of one run.
    return BR::Bench::RunWithRatios(argc, argv,
                                    {{"BM_NotesThroughLuaCallback", "BM_NotesWithoutScript"},
                                     {"BM_NotesWithoutScript", "BM_BlockWithoutEvents"},
                                     {"BM_NotesThroughLuaCallback", "BM_BlockWithoutEvents"}});
}
