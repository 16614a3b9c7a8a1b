// What the remote tests share: live instances behind the host driver with their OSC servers and
// Lua helpers, and a plain UDP peer on loopback that sends packets and reads replies.
#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <oscpack/osc/OscOutboundPacketStream.h>
#include <oscpack/osc/OscReceivedElements.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <functional>
#include <lua.hpp>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "framework/ModuleServices.h"
#include "host/HostDriver.h"
#include "remote/LuaMIDIHelper.h"
#include "remote/OSCHelper.h"
#include "remote/RemoteServices.h"
#include "tests/support/Render.h"

namespace BR::Test {

// Sets the process-wide MIDI hook (the learn table's, which a Learner installs and leaves for the
// whole process) for one test, and puts back the one found when the scope ends, so that tests of one
// process do not depend on their order.
class GlobalMIDIHookScope {
public:
    explicit GlobalMIDIHookScope(GlobalMIDIHook hook) : previous(GetGlobalMIDIHook()) {
        SetGlobalMIDIHook(hook);
    }
    ~GlobalMIDIHookScope() { SetGlobalMIDIHook(previous); }
    GlobalMIDIHookScope(const GlobalMIDIHookScope&) = delete;
    GlobalMIDIHookScope& operator=(const GlobalMIDIHookScope&) = delete;

private:
    GlobalMIDIHook previous;
};

// A module of `stem` with services, behind a driver, listening at base + offset when offset > 0.
inline std::unique_ptr<HostDriver> MakeRemoteDriver(const std::string& stem, int32_t basePort,
                                                    int32_t offset = 0) {
    SetOSCBasePortOverride(basePort);
    InstallRemoteServices();
    std::unique_ptr<HostDriver> driver = MakeDriver(stem);
    if (offset > 0) driver->SetParameterByName("OSC Port Offset", float(offset));
    return driver;
}

// Polls `done` every millisecond for up to `milliseconds`.
inline bool WaitFor(const std::function<bool()>& done, int milliseconds = 3000) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
    while (!done()) {
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

inline bool WaitListening(HostDriver& driver, int32_t port) {
    OSCHelper* osc = OSCHelperOf(driver.Module());
    return WaitFor([&] { return osc->ActivePort() == port; });
}

// Runs a chunk in the module's Lua state; returns "" or the error text, without the place
// ("[string \"...\"]:1: ") that Lua puts in front.
inline std::string RunLua(HostDriver& driver, const std::string& chunk) {
    lua_State* L = LuaHelperOf(driver.Module())->GetLuaState();
    std::lock_guard<std::recursive_mutex> guard(LuaHelperOf(driver.Module())->LuaLock());
    if (luaL_dostring(L, chunk.c_str()) == 0) return "";
    std::string error = lua_tostring(L, -1);
    lua_pop(L, 1);
    if (error.rfind("[string ", 0) == 0) {
        const size_t place = error.find("]:");
        const size_t text = place == std::string::npos ? place : error.find(": ", place);
        if (text != std::string::npos) error = error.substr(text + 2);
    }
    return error;
}

inline double LuaNumber(HostDriver& driver, const std::string& global) {
    lua_State* L = LuaHelperOf(driver.Module())->GetLuaState();
    std::lock_guard<std::recursive_mutex> guard(LuaHelperOf(driver.Module())->LuaLock());
    lua_getglobal(L, global.c_str());
    const double value = lua_tonumber(L, -1);
    lua_pop(L, 1);
    return value;
}

// A UDP socket bound on loopback: sends OSC messages and reads what comes back, as text such as
// "/reply i:3 f:0.5 s:name T".
class UdpPeer {
public:
    explicit UdpPeer(int port = 0) {
        fd = socket(AF_INET, SOCK_DGRAM, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        address.sin_port = htons(uint16_t(port));
        bound = bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
        socklen_t length = sizeof address;
        getsockname(fd, reinterpret_cast<sockaddr*>(&address), &length);
        localPort = ntohs(address.sin_port);
    }
    ~UdpPeer() { close(fd); }
    UdpPeer(const UdpPeer&) = delete;
    UdpPeer& operator=(const UdpPeer&) = delete;

    bool Bound() const { return bound; }
    int Port() const { return localPort; }
    std::string Client() const { return "osc.udp://127.0.0.1:" + std::to_string(localPort); }

    void SendRaw(int port, const void* data, size_t size) const {
        sockaddr_in to{};
        to.sin_family = AF_INET;
        to.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        to.sin_port = htons(uint16_t(port));
        sendto(fd, data, size, 0, reinterpret_cast<sockaddr*>(&to), sizeof to);
    }

    // Builds one message with `fill` and sends it.
    void Send(int port, const char* address,
              const std::function<void(osc::OutboundPacketStream&)>& fill = nullptr) const {
        char buffer[4096];
        osc::OutboundPacketStream stream(buffer, sizeof buffer);
        stream << osc::BeginMessage(address);
        if (fill) fill(stream);
        stream << osc::EndMessage;
        SendRaw(port, stream.Data(), stream.Size());
    }

    // The next packet's messages as text, or "" after the time-out.
    std::string Receive(int milliseconds = 2000) const {
        pollfd p{fd, POLLIN, 0};
        if (poll(&p, 1, milliseconds) <= 0) return "";
        char buffer[8192];
        const ssize_t n = recv(fd, buffer, sizeof buffer, 0);
        if (n <= 0) return "";
        try {
            return Text(osc::ReceivedPacket(buffer, osc::osc_bundle_element_size_t(n)));
        } catch (const osc::Exception& e) {
            return std::string("undecodable: ") + e.what();
        }
    }

    // Every packet that arrives within `milliseconds` after the last one.
    std::vector<std::string> ReceiveAll(int milliseconds = 300) const {
        std::vector<std::string> all;
        for (std::string text = Receive(2000); !text.empty(); text = Receive(milliseconds))
            all.push_back(text);
        return all;
    }

private:
    static std::string Text(const osc::ReceivedPacket& packet) {
        if (!packet.IsBundle()) return Text(osc::ReceivedMessage(packet));
        std::string text;
        const osc::ReceivedBundle bundle(packet);
        for (auto it = bundle.ElementsBegin(); it != bundle.ElementsEnd(); ++it)
            text +=
                (text.empty() ? "" : " | ") + (it->IsBundle() ? "bundle" : Text(osc::ReceivedMessage(*it)));
        return text;
    }
    static std::string Text(const osc::ReceivedMessage& message) {
        std::string text = message.AddressPattern();
        char value[64];
        for (auto arg = message.ArgumentsBegin(); arg != message.ArgumentsEnd(); ++arg) {
            if (arg->IsInt32()) {
                std::snprintf(value, sizeof value, " i:%d", int(arg->AsInt32()));
                text += value;
            } else if (arg->IsFloat()) {
                std::snprintf(value, sizeof value, " f:%g", double(arg->AsFloat()));
                text += value;
            } else if (arg->IsString()) {
                text += std::string(" s:") + arg->AsString();
            } else if (arg->IsBool()) {
                text += arg->AsBool() ? " T" : " F";
            } else {
                text += std::string(" ") + arg->TypeTag();
            }
        }
        return text;
    }

    int fd = -1;
    bool bound = false;
    int localPort = 0;
};

}  // namespace BR::Test
