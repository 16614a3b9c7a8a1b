// The Lua state of one instance: creation, the scripts it runs, the replaced print, and the MIDI
// dispatch into script callbacks on the render path.
#include "LuaMIDIHelper.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <lua.hpp>

#include "LuaNumbers.h"
#include "OSCHelper.h"
#include "framework/BrelCorvaneBase.h"
#include "framework/MessageQueue.h"
#include "framework/PreferenceStore.h"

namespace BR {

namespace {

const char* const kRefconKey = "BR::LuaMIDIHelper::kRefcon";
const char* const kParamLookupKey = "BR::LuaMIDIHelper::kParamLookup";

// print, writing to the debug stream (standard error) rather than standard output.
int Print(lua_State* L) {
    const int n = lua_gettop(L);
    lua_getglobal(L, "tostring");
    std::string line;
    for (int i = 1; i <= n; ++i) {
        lua_pushvalue(L, -1);
        lua_pushvalue(L, i);
        lua_call(L, 1, 1);
        const char* s = lua_tostring(L, -1);
        if (!s) return luaL_error(L, "'tostring' must return a string to 'print'");
        if (i > 1) line += '\t';
        line += s;
        lua_pop(L, 1);
    }
    line += '\n';
    std::fputs(line.c_str(), stderr);
    return 0;
}

// The scripts of the per-user folder that can be read, in name order so that runs repeat.
std::vector<std::string> UserScripts(const std::string& moduleName) {
    std::vector<std::string> files;
    std::error_code error;
    const std::filesystem::path folder = ScriptsFolder(moduleName);
    for (const auto& entry : std::filesystem::directory_iterator(folder, error)) {
        if (!entry.is_regular_file(error) || entry.path().extension() != ".lua") continue;
        if (std::ifstream(entry.path()).good()) files.push_back(entry.path().string());
    }
    std::sort(files.begin(), files.end());
    return files;
}

}  // namespace

void RegisterLuaAPI(lua_State* L);  // LuaAPI.cpp

LuaMIDIHelper::LuaMIDIHelper(BrelCorvaneBase* owner_, MessageQueue* queue_) : owner(owner_), queue(queue_) {}

LuaMIDIHelper::~LuaMIDIHelper() {
    StopTimers();
    if (luaState) {
        delete paramLookup;
        paramLookup = nullptr;
        lua_close(luaState);
        luaState = nullptr;
    }
}

void LuaMIDIHelper::StopTimers() {
    // The queue is closed without timerLock: a callback that runs now may be waiting for it.
    timerQueue.Close();
    std::lock_guard<std::mutex> guard(timerLock);
    for (LuaTimer* timer : timers)
        delete timer;
    timers.clear();
}

void LuaMIDIHelper::LogError(const char* text) {
    std::printf("@@@ %s", text);
    std::fflush(stdout);
}

bool LuaMIDIHelper::IsParameterUsed(int32_t) {
    return true;
}

lua_State* LuaMIDIHelper::GetLuaState() {
    if (luaState) return luaState;
    numParameters = owner->NumTableParameters();
    parameterTable = owner->ParameterTable();
    lua_State* L = luaL_newstate();
    if (!L) return nullptr;
    luaState = L;
    luaL_openlibs(L);
    lua_register(L, "print", Print);
    RegisterLuaAPI(L);
    luaL_newmetatable(L, "BR::LuaMIDIHelper::Timer");
    lua_pop(L, 1);
    RegisterExtraFunctions();

    lua_pushlightuserdata(L, this);
    lua_setfield(L, LUA_REGISTRYINDEX, kRefconKey);
    paramLookup = new std::map<std::string, int32_t>;
    for (int32_t k = 0; k < numParameters; ++k)
        if (parameterTable[k].name) paramLookup->emplace(parameterTable[k].name, k);
    lua_pushlightuserdata(L, paramLookup);
    lua_setfield(L, LUA_REGISTRYINDEX, kParamLookupKey);

    lua_pushboolean(L, 0);
    lua_setglobal(L, "isMac");
    lua_pushboolean(L, 1);
    lua_setglobal(L, "isWin");
    lua_pushboolean(L, 0);
    lua_setglobal(L, "isVST");
    lua_pushboolean(L, 0);
    lua_setglobal(L, "isAU");
    lua_pushnumber(L, 2);
    lua_setglobal(L, "majorVersion");
    lua_pushnumber(L, 6);
    lua_setglobal(L, "minorVersion");
    lua_pushnumber(L, 1);
    lua_setglobal(L, "dotVersion");
    lua_pushnumber(L, 20601);
    lua_setglobal(L, "version");

    LoadScripts();
    return L;
}

void LuaMIDIHelper::LoadScripts() {
    lua_State* L = luaState;
    std::vector<std::string> files = UserScripts(owner->GetModuleName());
    const bool userScaleList = std::any_of(files.begin(), files.end(), [](const std::string& path) {
        return std::filesystem::path(path).filename().string().rfind("midi.lua", 0) == 0;
    });
    files.insert(files.end(), extraScripts.begin(), extraScripts.end());
    char text[1024];
    if (!userScaleList) {
        if (luaL_loadbuffer(L, kDefaultMidiScript, std::strlen(kDefaultMidiScript), "midi.lua") != 0 ||
            lua_pcall(L, 0, 0, 0) != 0) {
            std::snprintf(text, sizeof text, "failed to run buffer: %s\n", lua_tostring(L, -1));
            LogError(text);
            lua_pop(L, 1);
        }
    }
    for (const std::string& file : files) {
        // The chunk is named by the file's own name, so that an error reads "b.lua:2: ..." however
        // deep the folder lies (Lua shortens long chunk names from the front).
        std::ifstream stream(file, std::ios::binary);
        const std::string source((std::istreambuf_iterator<char>(stream)), std::istreambuf_iterator<char>());
        const std::string chunkName = "@" + std::filesystem::path(file).filename().string();
        if (!stream.good() && !stream.eof()) {
            std::snprintf(text, sizeof text, "failed to run file: cannot read %s\n", file.c_str());
            LogError(text);
            continue;
        }
        if (luaL_loadbuffer(L, source.data(), source.size(), chunkName.c_str()) != 0 ||
            lua_pcall(L, 0, 0, 0) != 0) {
            const char* message = lua_tostring(L, -1);
            std::snprintf(text, sizeof text, "failed to run file: %s\n", message ? message : file.c_str());
            LogError(text);
            lua_pop(L, 1);
        }
    }
}

void LuaMIDIHelper::AddCallback(CallbackList list, int ref) {
    lists[list].push_back(ref);
    hasCallbacks.store(true);
}

void LuaMIDIHelper::AddKeyedCallback(KeyedList list, int32_t key, int ref) {
    keyed[list][key].push_back(ref);
    hasCallbacks.store(true);
}

void LuaMIDIHelper::RunList(const std::vector<int>& refs, int numArgs, const int32_t* args) {
    // The caller holds luaLock. The length is read on every round: a callback that adds to this
    // list is called in this same round.
    lua_State* L = luaState;
    for (size_t i = 0; i < refs.size(); ++i) {
        lua_rawgeti(L, LUA_REGISTRYINDEX, refs[i]);
        for (int a = 0; a < numArgs; ++a)
            lua_pushnumber(L, args[a]);
        if (lua_pcall(L, numArgs, 0, 0) != 0) lua_pop(L, 1);  // a failing callback is passed over
    }
}

void LuaMIDIHelper::RunKeyed(KeyedList list, int32_t key, int numArgs, const int32_t* args) {
    auto it = keyed[list].find(key);
    if (it != keyed[list].end()) RunList(it->second, numArgs, args);
}

void LuaMIDIHelper::NoteOn(int32_t channel, int32_t note, int32_t velocity) {
    if (!hasCallbacks.load(std::memory_order_relaxed) || !luaState) return;
    std::lock_guard<std::recursive_mutex> guard(luaLock);
    const int32_t args[3] = {channel + 1, note, velocity};
    RunList(lists[kAllNoteOn], 3, args);
    RunKeyed(kNoteOnKey, note, 3, args);
}

void LuaMIDIHelper::NoteOff(int32_t channel, int32_t note, int32_t velocity) {
    if (!hasCallbacks.load(std::memory_order_relaxed) || !luaState) return;
    std::lock_guard<std::recursive_mutex> guard(luaLock);
    const int32_t args[3] = {channel + 1, note, velocity};
    RunList(lists[kAllNoteOff], 3, args);
    RunKeyed(kNoteOffKey, note, 3, args);
}

void LuaMIDIHelper::ControlChange(int32_t channel, int32_t controller, int32_t value) {
    if (!hasCallbacks.load(std::memory_order_relaxed) || !luaState) return;
    // One lock for the whole event: the lists are read here while a timer's script may add to them.
    std::lock_guard<std::recursive_mutex> guard(luaLock);
    // One NRPN state for all channels.
    bool nrpnData = false;
    switch (controller) {
        case 98:
            nrpnState[0] = uint8_t(value);
            break;
        case 99:
            nrpnState[1] = uint8_t(value);
            break;
        case 38:
            nrpnState[2] = uint8_t(value);
            nrpnData = true;
            break;
        case 6:
            nrpnState[3] = uint8_t(value);
            nrpnData = true;
            break;
        default:
            break;
    }
    if (nrpnData) {
        const int32_t nrpn = nrpnState[1] * 128 + nrpnState[0];
        const int32_t args[3] = {channel + 1, nrpn, nrpnState[3] * 128 + nrpnState[2]};
        RunList(lists[kAllNRPN], 3, args);
        RunKeyed(kNRPNKey, nrpn, 3, args);
    }
    const int32_t args[3] = {channel + 1, controller, value};
    RunList(lists[kAllCC], 3, args);
    RunKeyed(kCCKey, controller, 3, args);
}

void LuaMIDIHelper::PitchWheel(int32_t channel, int32_t lsb, int32_t msb) {
    if (!hasCallbacks.load(std::memory_order_relaxed) || !luaState) return;
    std::lock_guard<std::recursive_mutex> guard(luaLock);
    const int32_t args[2] = {channel + 1, msb * 128 + lsb};
    RunList(lists[kPitchWheel], 2, args);
}

void LuaMIDIHelper::ProgramChange(int32_t channel, int32_t program) {
    std::lock_guard<std::recursive_mutex> guard(luaLock);
    const int32_t args[2] = {channel + 1, program};
    RunList(lists[kAllProgramChange], 2, args);
    RunKeyed(kProgramChangeKey, program, 2, args);
}

void LuaMIDIHelper::ChannelPressure(int32_t channel, int32_t pressure) {
    std::lock_guard<std::recursive_mutex> guard(luaLock);
    const int32_t args[2] = {channel + 1, pressure};
    RunList(lists[kChannelPressure], 2, args);
}

void LuaMIDIHelper::PolyPressure(int32_t channel, int32_t note, int32_t pressure) {
    std::lock_guard<std::recursive_mutex> guard(luaLock);
    const int32_t args[3] = {channel + 1, note, pressure};
    RunList(lists[kAllPolyPressure], 3, args);
    RunKeyed(kPolyPressureKey, note, 3, args);
}

void LuaMIDIHelper::HandleEvent(const MessageQueueItem& event) {
    // With no callback at all an event costs this one test.
    if (!hasCallbacks.load(std::memory_order_relaxed) || !luaState) return;
    if (event.kind != kMessageShortMIDI) return;
    const int32_t channel = event.channel, data1 = event.dataByte1, data2 = event.dataByte2;
    // The render path has already given the item to the module's own handlers, so only the
    // scripts' part of each operation runs here (qualified calls skip the module's hooks).
    switch (event.status) {
        case 0x80:
            LuaMIDIHelper::NoteOff(channel, data1, data2);
            break;
        case 0x90:
            if (data2 == 0) {
                LuaMIDIHelper::NoteOff(channel, data1, data2);
            } else {
                LuaMIDIHelper::NoteOn(channel, data1, data2);
            }
            break;
        case 0xA0:
            PolyPressure(channel, data1, data2);
            break;
        case 0xB0:
            LuaMIDIHelper::ControlChange(channel, data1, data2);
            break;
        case 0xC0:
            ProgramChange(channel, data1);
            break;
        case 0xD0:
            ChannelPressure(channel, data1);
            break;
        case 0xE0:
            LuaMIDIHelper::PitchWheel(channel, data1, data2);
            break;
        default:
            break;
    }
}

int32_t LuaMIDIHelper::ParameterArgument(lua_State* L, int index, bool checkRange) {
    int32_t id = 0;
    if (lua_isnumber(L, index)) {
        id = SaturatedInt32(lua_tonumber(L, index));
    } else {
        const char* name = luaL_checkstring(L, index);
        auto it = paramLookup ? paramLookup->find(name) : std::map<std::string, int32_t>::iterator();
        if (!paramLookup || it == paramLookup->end()) luaL_error(L, "parameter not found: '%s'", name);
        id = it->second;
    }
    if (checkRange && (id < 0 || id >= numParameters)) luaL_error(L, "parameter out of range: %d", id);
    return id;
}

void* LuaMIDIHelper::CreateTimer(lua_State* L, double seconds, bool periodic, int functionRef) {
    auto* timer = new LuaTimer{this, functionRef, 0, periodic};
    const double ms = seconds * 1000.0;
    const uint32_t due = ms > 0 ? (ms < 4e9 ? uint32_t(ms) : 4000000000u) : 0;
    const uint32_t period = periodic ? due : 0;
    {
        std::lock_guard<std::mutex> guard(timerLock);
        // A first due time far away keeps the callback from firing before the timer is complete.
        timer->handle = timerQueue.Create(1000000, period, &LuaMIDIHelper::TimerFired, this);
        timers.insert(timer);
        timerQueue.Change(timer->handle, due, period);
    }
    void** slot = static_cast<void**>(lua_newuserdata(L, sizeof(void*)));
    *slot = timer;
    luaL_getmetatable(L, "BR::LuaMIDIHelper::Timer");
    lua_setmetatable(L, -2);
    return timer;
}

void LuaMIDIHelper::CancelTimer(LuaTimer* timer) {
    std::lock_guard<std::mutex> guard(timerLock);
    auto it = timers.find(timer);
    if (it == timers.end()) return;  // a finished one-shot, or cancelled before: harmless
    timerQueue.Delete(timer->handle);
    delete timer;
    timers.erase(it);
}

void LuaMIDIHelper::TimerFired(void* context, TimerQueue::Handle handle) {
    // The queue names the timer by its handle: the LuaTimer may have been cancelled and freed since
    // the queue chose it, so it is looked for under the lock before anything of it is read.
    auto* helper = static_cast<LuaMIDIHelper*>(context);
    int ref = 0;
    {
        std::lock_guard<std::mutex> guard(helper->timerLock);
        auto it = std::find_if(helper->timers.begin(), helper->timers.end(),
                               [handle](const LuaTimer* t) { return t->handle == handle; });
        if (it == helper->timers.end()) return;
        LuaTimer* timer = *it;
        ref = timer->functionRef;
        if (!timer->periodic) {
            // A one-shot is deleted from the queue, freed and erased before its callback runs.
            helper->timerQueue.Delete(handle);
            delete timer;
            helper->timers.erase(it);
        }
    }
    // timerLock is released before luaLock is taken, so a callback can create and cancel timers.
    std::lock_guard<std::recursive_mutex> guard(helper->luaLock);
    lua_State* L = helper->luaState;
    if (!L) return;
    lua_rawgeti(L, LUA_REGISTRYINDEX, ref);
    if (lua_pcall(L, 0, 0, 0) != 0) lua_pop(L, 1);
}

}  // namespace BR
