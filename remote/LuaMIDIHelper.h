// The per-instance Lua state for user MIDI scripts: script loading, the API that scripts see,
// MIDI dispatch to their callbacks inside the render path, and their timers.
#pragma once

#include <atomic>
#include <cstdint>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include "TimerQueue.h"
#include "framework/ParameterDefinition.h"

class BrelCorvaneBase;
struct lua_State;

namespace BR {

class MessageQueue;
struct MessageQueueItem;
class OSCHelper;
class LuaMIDIHelper;

struct LuaTimer {
    LuaMIDIHelper* helper;
    int functionRef;
    TimerQueue::Handle handle;
    bool periodic;
};

class LuaMIDIHelper {
public:
    LuaMIDIHelper(BrelCorvaneBase* owner, MessageQueue* queue);
    virtual ~LuaMIDIHelper();
    LuaMIDIHelper(const LuaMIDIHelper&) = delete;
    LuaMIDIHelper& operator=(const LuaMIDIHelper&) = delete;

    // Channels are 0 to 15 here and 1 to 16 in Lua.
    virtual void NoteOn(int32_t channel, int32_t note, int32_t velocity);
    virtual void NoteOff(int32_t channel, int32_t note, int32_t velocity);
    virtual void ControlChange(int32_t channel, int32_t controller, int32_t value);
    virtual void PitchWheel(int32_t channel, int32_t lsb, int32_t msb);
    // The MIDI entry point of the render path, for an item the module has already heard.
    virtual void HandleEvent(const MessageQueueItem& event);
    virtual bool IsParameterUsed(int32_t id);
    virtual void SetGUIBoolValue(int32_t id, bool value) = 0;
    virtual bool GetGUIBoolValue(int32_t id) = 0;
    virtual void RegisterExtraFunctions() {}

    // Made on first call: opens the libraries, registers the API and runs every script.
    lua_State* GetLuaState();
    std::recursive_mutex& LuaLock() { return luaLock; }
    void SetOSCHelper(OSCHelper* helper) { oscHelper = helper; }
    OSCHelper* GetOSCHelper() const { return oscHelper; }
    BrelCorvaneBase* Owner() const { return owner; }
    // Scripts run after those of the per-user folder, in the order given.
    void SetExtraScripts(std::vector<std::string> paths) { extraScripts = std::move(paths); }
    // Ends every timer, waiting for a running callback; none fires afterwards.
    void StopTimers();
    bool HasCallbacks() const { return hasCallbacks; }

    // Looks up a parameter argument: a number (or numeric string) is an id, another string a name.
    // Raises "parameter not found: '%s'", and with `checkRange` "parameter out of range: %d".
    int32_t ParameterArgument(lua_State* L, int index, bool checkRange);
    int32_t NumParameters() const { return numParameters; }
    const ParameterDefinition* ParameterTable() const { return parameterTable; }

    // For the API functions.
    enum CallbackList {
        kAllNoteOn,
        kAllNoteOff,
        kAllCC,
        kAllNRPN,
        kAllProgramChange,
        kAllPolyPressure,
        kPitchWheel,
        kChannelPressure,
        kNumLists
    };
    enum KeyedList {
        kNoteOnKey,
        kNoteOffKey,
        kCCKey,
        kNRPNKey,
        kProgramChangeKey,
        kPolyPressureKey,
        kNumKeyed
    };
    void AddCallback(CallbackList list, int ref);
    void AddKeyedCallback(KeyedList list, int32_t key, int ref);
    void* CreateTimer(lua_State* L, double seconds, bool periodic, int functionRef);
    void CancelTimer(LuaTimer* timer);
    static void LogError(const char* text);  // the Lua error log: "@@@ " on standard output

protected:
    void RunList(const std::vector<int>& refs, int numArgs, const int32_t* args);
    void RunKeyed(KeyedList list, int32_t key, int numArgs, const int32_t* args);
    void ProgramChange(int32_t channel, int32_t program);
    void ChannelPressure(int32_t channel, int32_t pressure);
    void PolyPressure(int32_t channel, int32_t note, int32_t pressure);

    BrelCorvaneBase* owner;
    MessageQueue* queue;
    OSCHelper* oscHelper = nullptr;
    int32_t numParameters = 0;
    const ParameterDefinition* parameterTable = nullptr;
    lua_State* luaState = nullptr;
    std::recursive_mutex luaLock;
    std::vector<int> lists[kNumLists];
    std::map<int32_t, std::vector<int>> keyed[kNumKeyed];
    uint8_t nrpnState[4] = {0, 0, 0, 0};  // parameter LSB, MSB, data LSB, MSB
    std::set<LuaTimer*> timers;
    TimerQueue timerQueue;
    std::mutex timerLock;
    std::map<std::string, int32_t>* paramLookup = nullptr;
    std::vector<std::string> extraScripts;
    std::atomic<bool> hasCallbacks{false};

private:
    static void TimerFired(void* context, TimerQueue::Handle handle);
    void LoadScripts();
    void RegisterFunctions();
};

// The helper every module owns: the module hears MIDI before the scripts, the indicator bits live
// in its status block, and scripts may add scales.
class CorvLuaMIDIHelper : public LuaMIDIHelper {
public:
    using LuaMIDIHelper::LuaMIDIHelper;
    void NoteOn(int32_t channel, int32_t note, int32_t velocity) override;
    void NoteOff(int32_t channel, int32_t note, int32_t velocity) override;
    void ControlChange(int32_t channel, int32_t controller, int32_t value) override;
    void PitchWheel(int32_t channel, int32_t lsb, int32_t msb) override;
    void SetGUIBoolValue(int32_t id, bool value) override;
    bool GetGUIBoolValue(int32_t id) override;
    void RegisterExtraFunctions() override;
};

// The default scale list, carried inside the binary.
extern const char* const kDefaultMidiScript;

}  // namespace BR
