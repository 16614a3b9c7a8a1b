// The OSC server's life: construction, the receive and notify threads, the port logic, and the
// sending of replies and updates from fresh sockets.
#include "OSCHelper.h"

#include <arpa/inet.h>
#include <oscpack/ip/NetworkingUtils.h>
#include <oscpack/osc/OscOutboundPacketStream.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <stdexcept>

#include "LuaMIDIHelper.h"
#include "framework/BrelCorvaneBase.h"
#include "framework/PreferenceStore.h"

namespace BR {

namespace {

std::atomic<OSCHelper::ListeningReporter> listeningReporter{nullptr};

// The address the preference "OSC Bind Address" names: any address when absent, empty or "any".
unsigned long BindAddress() {
    std::string text;
    if (!PreferenceStore::GetString("OSC Bind Address", text) || text.empty() || text == "any")
        return IpEndpointName::ANY_ADDRESS;
    in_addr address{};
    if (inet_pton(AF_INET, text.c_str(), &address) != 1)
        throw std::runtime_error("OSC Bind Address \"" + text + "\" is not an IPv4 address");
    return ntohl(address.s_addr);
}

// oscpack ends some of its texts with a newline of their own; the line gets one.
std::string OneLine(const char* text) {
    std::string line(text);
    while (!line.empty() && line.back() == '\n')
        line.pop_back();
    return line;
}

// Waits up to `milliseconds` for a thread to say it ended, then joins it, or leaves it behind.
void EndThread(std::thread& thread, const std::shared_ptr<std::atomic<bool>>& done, int milliseconds) {
    if (!thread.joinable()) return;
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
    while (!done->load() && std::chrono::steady_clock::now() < deadline)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    if (done->load()) {
        thread.join();
    } else {
        // A thread cannot be killed here: it is let go, which is the nearest to a forced end.
        thread.detach();
    }
}

}  // namespace

OSCHelper::OSCHelper(BrelCorvaneBase* owner_, LuaMIDIHelper* luaHelper_)
    : owner(owner_), luaHelper(luaHelper_), updateQueue(updateFlags, notifyEvents) {}

OSCHelper::~OSCHelper() {
    StopTasks();
}

void OSCHelper::SetListeningReporter(ListeningReporter reporter) {
    listeningReporter.store(reporter);
}

void OSCHelper::Init() {
    moduleName = owner->GetModuleName();
    numParameters = owner->NumTableParameters();
    parameterTable = owner->ParameterTable();
    updateFlags.assign(size_t(numParameters > 0 ? numParameters : 0), 0);
    // Creating the Lua state runs every script, so their path registrations are in place before
    // the first packet can arrive.
    if (luaHelper) luaHelper->GetLuaState();
}

void OSCHelper::StartTasks() {
    if (receiveThread.joinable()) {
        std::fputs("Warning: Attempt to recreate OSC task\n", stdout);
        return;
    }
    receiveEvents.Reset();
    notifyEvents.Reset();
    receiveDone = std::make_shared<std::atomic<bool>>(false);
    notifyDone = std::make_shared<std::atomic<bool>>(false);
    try {
        receiveThread = std::thread([this, done = receiveDone] {
            TaskMain();
            done->store(true);
        });
    } catch (const std::system_error& e) {
        std::printf("failed to create OSC thread: %d\n", e.code().value());
        return;
    }
    try {
        notifyThread = std::thread([this, done = notifyDone] {
            NotifyMain();
            done->store(true);
        });
    } catch (const std::system_error& e) {
        std::printf("failed to create OSC notify thread: %d\n", e.code().value());
    }
}

void OSCHelper::StopTasks() {
    if (!receiveThread.joinable()) return;
    {
        std::lock_guard<std::mutex> guard(socketLock);
        stopRequested = true;
    }
    BreakSocket();
    receiveEvents.Signal(kQuitEvent);
    notifyEvents.Signal(kQuitEvent);
    EndThread(receiveThread, receiveDone, 5000);
    EndThread(notifyThread, notifyDone, 5000);
    std::lock_guard<std::mutex> guard(socketLock);
    stopRequested = false;
}

void OSCHelper::BreakSocket() {
    std::lock_guard<std::mutex> guard(socketLock);
    breakRequested = true;
    if (listeningSocket) listeningSocket->AsynchronousBreak();
}

void OSCHelper::SetRequestedPort(int32_t port) {
    if (port <= 0) {
        requestedPort.store(0);
        BreakSocket();
        return;
    }
    requestedPort.store(port);
    BreakSocket();
    receiveEvents.Signal(kStartListeningEvent);
}

// Ends the receive loop for a break that was asked for before the loop began to run.
struct OSCHelper::BreakWatch : TimerListener {
    OSCHelper& helper;
    SocketReceiveMultiplexer& loop;
    BreakWatch(OSCHelper& helper_, SocketReceiveMultiplexer& loop_) : helper(helper_), loop(loop_) {}
    void TimerExpired() override {
        std::lock_guard<std::mutex> guard(helper.socketLock);
        if (helper.breakRequested) loop.Break();
    }
};

void OSCHelper::TaskMain() {
    for (;;) {
        if (receiveEvents.Wait() == kQuitEvent) return;
        int32_t port = 0;
        {
            std::lock_guard<std::mutex> guard(socketLock);
            // While a stop is under way the loop about to open is broken at once by the watch.
            breakRequested = stopRequested;
            port = requestedPort.load();
            activePort.store(0);
        }
        if (port == 0) continue;
        try {
            UdpReceiveSocket socket(IpEndpointName(BindAddress(), port));
            SocketReceiveMultiplexer loop;
            BreakWatch watch(*this, loop);
            loop.AttachSocketListener(&socket, this);
            loop.AttachPeriodicTimerListener(20, &watch);
            {
                std::lock_guard<std::mutex> guard(socketLock);
                listeningSocket = &loop;
                activePort.store(port);
            }
            if (ListeningReporter reporter = listeningReporter.load()) reporter(owner, port);
            loop.Run();
            std::lock_guard<std::mutex> guard(socketLock);
            listeningSocket = nullptr;
            activePort.store(0);
        } catch (const osc::Exception& e) {
            std::printf("osc::Exception in TaskMain(): %s\n", OneLine(e.what()).c_str());
        } catch (const std::runtime_error& e) {
            std::printf("std::runtime_error in TaskMain(): %s\n", OneLine(e.what()).c_str());
        }
        std::fflush(stdout);
        std::lock_guard<std::mutex> guard(socketLock);
        listeningSocket = nullptr;
        activePort.store(0);
    }
}

void OSCHelper::NotifyMain() {
    for (;;) {
        if (notifyEvents.Wait() == kQuitEvent) return;
        SetParamQueue::Entry entry;
        while (updateQueue.Read(entry)) {
            std::lock_guard<std::mutex> guard(subscriptionLock);
            auto [first, last] = updateClients.equal_range(entry.id);
            for (auto it = first; it != last; ++it)
                SendUpdate(it->second, entry.id, entry.value);
        }
    }
}

void OSCHelper::SendUpdate(const OSCUpdateClient& client, int32_t id, float value) {
    try {
        char buffer[kPacketBytes];
        osc::OutboundPacketStream stream(buffer, sizeof buffer);
        stream << osc::BeginBundleImmediate << osc::BeginMessage(client.path.c_str()) << osc::int32(id)
               << value << osc::EndMessage << osc::EndBundle;
        SendPacket(client.endpoint, stream.Data(), stream.Size());
    } catch (const osc::Exception&) {
        // A path too long for the buffer loses that update.
    }
}

IpEndpointName OSCHelper::ParseClientAddress(const char* text) {
    char host[kPacketBytes + 1];
    std::strncpy(host, text ? text : "", kPacketBytes);
    host[kPacketBytes] = '\0';
    char* start = host;
    if (std::strncmp(start, "osc.udp://", 10) == 0) start += 10;
    int port = -1;
    if (char* colon = std::strchr(start, ':')) {
        *colon = '\0';
        port = std::atoi(colon + 1);  // the decimal read stops at a trailing "/"
    }
    std::lock_guard<std::mutex> guard(HostLookupLock());
    return IpEndpointName(GetHostByName(start), port);
}

std::mutex& HostLookupLock() {
    static std::mutex lock;
    return lock;
}

void OSCHelper::SendPacket(const IpEndpointName& endpoint, const char* data, size_t size) {
    try {
        UdpTransmitSocket socket(endpoint);
        socket.Send(data, size);
    } catch (const std::exception&) {
        // A client that has gone, or an endpoint that cannot be reached, is not looked at.
    }
}

bool OSCHelper::UpdateFlag(int32_t id) const {
    return id >= 0 && size_t(id) < updateFlags.size() &&
           std::atomic_ref<uint8_t>(const_cast<uint8_t&>(updateFlags[size_t(id)]))
                   .load(std::memory_order_relaxed) != 0;
}

size_t OSCHelper::NumUpdateClients(int32_t id) const {
    std::lock_guard<std::mutex> guard(subscriptionLock);
    return updateClients.count(id);
}

std::string OSCHelper::MessageHistory(int index) const {
    std::lock_guard<std::mutex> guard(historyLock);
    return index >= 0 && index < kHistorySize ? messageHistory[index] : std::string();
}

bool OSCHelper::IsParameterUsed(int32_t) {
    return true;
}

void OSCHelper::ProcessOtherMessage(const char*, const osc::ReceivedMessage&, const IpEndpointName&) {}

}  // namespace BR
