// The per-instance OSC server: a receive thread that owns the UDP socket, a notify thread that
// echoes changed parameters to subscribers, the port logic, the subscription tables and the
// Lua-registered addresses.
#pragma once

#include <oscpack/ip/IpEndpointName.h>
#include <oscpack/ip/TimerListener.h>
#include <oscpack/ip/UdpSocket.h>
#include <oscpack/osc/OscPacketListener.h>

#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "SetParamQueue.h"
#include "framework/ParameterDefinition.h"
#include "framework/SharedState.h"
#include "framework/SignalEvents.h"

class BrelCorvaneBase;
struct lua_State;

namespace BR {

// One lock for every host-name look-up of the remote layer: the library's look-up goes through the C
// library's gethostbyname, whose result lives in one static buffer shared by all threads (the receive
// threads of all instances, scripts' sendOSC, and the senders of CV To OSC and the Learner).
std::mutex& HostLookupLock();

class LuaMIDIHelper;

struct OSCUpdateClient {
    IpEndpointName endpoint;
    std::string path;  // where updates are sent
};

// A value v arriving for a target sets parameter `id` to v * scale + offset.
struct OSCParameterTarget {
    int32_t id;
    float offset;
    float scale;
};

class OSCHelper : public osc::OscPacketListener {
public:
    static constexpr int kQuitEvent = 0;
    static constexpr int kStartListeningEvent = 1;
    static constexpr int kHistorySize = 5;
    static constexpr size_t kPacketBytes = 1024;

    OSCHelper(BrelCorvaneBase* owner, LuaMIDIHelper* luaHelper);
    ~OSCHelper() override;
    OSCHelper(const OSCHelper&) = delete;
    OSCHelper& operator=(const OSCHelper&) = delete;

    void ProcessPacket(const char* data, int size, const IpEndpointName& remoteEndpoint) override;
    void ProcessBundle(const osc::ReceivedBundle& bundle, const IpEndpointName& remoteEndpoint) override;
    void ProcessMessage(const osc::ReceivedMessage& message, const IpEndpointName& remoteEndpoint) override;
    virtual void ProcessOtherMessage(const char* address, const osc::ReceivedMessage& message,
                                     const IpEndpointName& remoteEndpoint);
    virtual bool IsParameterUsed(int32_t id);

    void Init();
    void StartTasks();
    void StopTasks();
    // The port logic: 0 closes the socket; any other port reopens on it.
    void SetRequestedPort(int32_t port);
    // Called by every parameter setter; the audio thread among them.
    void ParameterChanged(int32_t id, float value) { updateQueue.Write(id, value); }

    // Lua entry points.
    int RegisterOSCPathForParameter(lua_State* L, bool normalised);
    int RegisterOSCPathForFunction(lua_State* L);
    static int SendOSC(lua_State* L);

    // Observers, for the host and for tests.
    int32_t ActivePort() const { return activePort.load(); }
    int32_t RequestedPort() const { return requestedPort.load(); }
    bool IsRunning() const { return receiveThread.joinable(); }
    const SetParamQueue& UpdateQueue() const { return updateQueue; }
    SetParamQueue& UpdateQueue() { return updateQueue; }
    bool UpdateFlag(int32_t id) const;
    size_t NumUpdateClients(int32_t id) const;
    std::string MessageHistory(int index) const;
    int32_t MessageHistoryIndex() const { return messageHistoryIndex.load(std::memory_order_acquire); }
    // Messages taken from the socket so far, bundle elements included.
    uint64_t NumMessages() const { return numMessages.load(std::memory_order_acquire); }
    BrelCorvaneBase* Owner() const { return owner; }
    LuaMIDIHelper* LuaHelper() const { return luaHelper; }

    // Told once each time a socket starts listening: the host's report of open ports.
    using ListeningReporter = void (*)(BrelCorvaneBase* owner, int32_t port);
    static void SetListeningReporter(ListeningReporter reporter);

    // Parses "[osc.udp://]host[:port]"; a failed look-up gives address 0, no port gives -1.
    static IpEndpointName ParseClientAddress(const char* text);
    // Sends one finished packet from a fresh socket; send errors are not looked at.
    static void SendPacket(const IpEndpointName& endpoint, const char* data, size_t size);

private:
    struct BreakWatch;
    void TaskMain();
    void NotifyMain();
    void BreakSocket();
    void SendUpdate(const OSCUpdateClient& client, int32_t id, float value);

    // The commands and paths, on the receive thread.
    void Dispatch(const osc::ReceivedMessage& message, const IpEndpointName& remoteEndpoint);
    bool HandleCommand(const char* address, const osc::ReceivedMessage& message);
    void HandleBrelPath(const char* address, const osc::ReceivedMessage& message);
    void HandleParameterPath(const std::string& address, const osc::ReceivedMessage& message);
    void HandleFunctionPath(const std::string& address, const osc::ReceivedMessage& message);
    void HandleLuaCall(const osc::ReceivedMessage& message, bool withReply);
    void ProcessTouchFrame(const osc::ReceivedBundle& bundle);
    void AddToHistory(const std::string& text);
    int32_t CheckedId(int32_t id, const char* failureText) const;
    float ParameterValue(int32_t id) const;

    BrelCorvaneBase* owner;
    std::string moduleName;
    int32_t numParameters = 0;
    const ParameterDefinition* parameterTable = nullptr;
    LuaMIDIHelper* luaHelper;
    std::thread receiveThread;
    std::thread notifyThread;
    // Set by a thread that ended; a thread that does not end within the time-out is left behind.
    std::shared_ptr<std::atomic<bool>> receiveDone, notifyDone;
    SignalEvents receiveEvents;
    SignalEvents notifyEvents;
    std::atomic<int32_t> requestedPort{0};
    std::atomic<int32_t> activePort{0};
    // Guards the pointer and the flag against a break from another thread. A break that lands
    // before the receive loop has started would be forgotten by the loop, so the flag is also
    // looked at by a periodic timer inside the loop.
    std::mutex socketLock;
    SocketReceiveMultiplexer* listeningSocket = nullptr;
    bool breakRequested = false;
    // Set by StopTasks until its threads have ended: a start signal that the receive thread takes just
    // before the stop cannot open a socket whose loop nobody would break.
    bool stopRequested = false;
    // The subscriptions: changed by the receive thread, read by the notify thread as it sends. A
    // subscription may come while updates flow, so both hold the lock (neither is the audio thread).
    mutable std::mutex subscriptionLock;
    std::multimap<int32_t, OSCUpdateClient> updateClients;
    std::vector<uint8_t> updateFlags;  // byte-wide flags, read by any parameter setter without a lock
    SetParamQueue updateQueue;
    // The Lua-registered addresses: a script may register one on any thread (a MIDI callback, a
    // timer, /exec) while the receive thread looks them up. Held only to look up or change the maps;
    // never while Lua runs, so that it cannot meet luaLock the other way round.
    mutable std::mutex pathLock;
    std::multimap<std::string, std::vector<OSCParameterTarget>> parameterPaths;
    std::multimap<std::string, int> functionPaths;
    // The last messages, for the editor's display on its own thread.
    mutable std::mutex historyLock;
    std::string messageHistory[kHistorySize];
    std::atomic<int32_t> messageHistoryIndex{0};
    std::atomic<uint64_t> numMessages{0};
};

}  // namespace BR
