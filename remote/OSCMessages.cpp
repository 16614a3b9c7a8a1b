// The address space of one instance's server: packets, bundles, the commands with their replies,
// the /brel/ paths into any instance, Lua-registered paths and the Soundplane touch frames.
#include <arpa/inet.h>
#include <netinet/in.h>
#include <oscpack/osc/OscOutboundPacketStream.h>
#include <oscpack/osc/OscPrintReceivedElements.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <mutex>
#include <sstream>

#include "LuaMIDIHelper.h"
#include "LuaNumbers.h"
#include "OSCHelper.h"
#include "framework/BrelCorvaneBase.h"
#include "framework/InstanceRegistry.h"

namespace BR {

namespace {

constexpr int kVersionMajor = 2, kVersionMinor = 6, kVersionDot = 1;

// One reply: a bundle with immediate time tag holding one message, in a 1024-byte buffer.
class Reply {
public:
    explicit Reply(const char* path) : stream(buffer, sizeof buffer) {
        stream << osc::BeginBundleImmediate << osc::BeginMessage(path);
    }
    osc::OutboundPacketStream& Stream() { return stream; }
    void Send(const IpEndpointName& endpoint) {
        stream << osc::EndMessage << osc::EndBundle;
        OSCHelper::SendPacket(endpoint, stream.Data(), stream.Size());
    }

private:
    char buffer[OSCHelper::kPacketBytes];
    osc::OutboundPacketStream stream;
};

// The address of the interface through which this host reaches `endpoint`: a connected UDP socket
// is given it by the routing table, and nothing is sent.
unsigned long LocalAddressFor(const IpEndpointName& endpoint) {
    unsigned long address = 0;
    const int fd = socket(AF_INET, SOCK_DGRAM, 0);
    if (fd < 0) return address;
    sockaddr_in to{};
    to.sin_family = AF_INET;
    to.sin_addr.s_addr = htonl(uint32_t(endpoint.address));
    to.sin_port = htons(uint16_t(endpoint.port < 0 ? 9 : endpoint.port));
    sockaddr_in here{};
    socklen_t length = sizeof here;
    if (connect(fd, reinterpret_cast<sockaddr*>(&to), sizeof to) == 0 &&
        getsockname(fd, reinterpret_cast<sockaddr*>(&here), &length) == 0)
        address = ntohl(here.sin_addr.s_addr);
    close(fd);
    return address;
}

// The end of the string at `p`, padded to four bytes, or null when it does not end inside the message.
// Found as the library finds it, so that both walks see the same arguments: the string ends at the first
// word whose last byte is zero (a zero earlier in a word is read as part of the string).
const char* SkipString(const char* p, const char* end) {
    if (p >= end) return nullptr;
    if (p[0] == '\0') return end - p >= 4 ? p + 4 : nullptr;
    for (p += 3; p < end; p += 4)
        if (*p == '\0') return p + 1;
    return nullptr;
}

// The library walks a message's arguments by their sizes before checking them, and takes a blob's size
// field as it stands, even when the message ends before the field: a blob whose size field or bytes run
// past the end of the message makes it read far outside the packet. Such a message is refused here, from
// its raw bytes, before the library sees it. Any other fault stops the walk and is left to the library,
// which refuses it with its own text.
void CheckBlobs(const char* data, const char* end) {
    if (end <= data) return;
    const char* tags = SkipString(data, end);
    if (!tags || tags == end || *tags != ',') return;
    const char* p = SkipString(tags, end);
    if (!p) return;
    for (const char* tag = tags + 1; *tag; ++tag) {
        size_t bytes = 0;
        switch (*tag) {
            case 'i':
            case 'f':
            case 'c':
            case 'r':
            case 'm':
                bytes = 4;
                break;
            case 'h':
            case 't':
            case 'd':
                bytes = 8;
                break;
            case 's':
            case 'S':
                p = SkipString(p, end);
                if (!p) return;
                continue;
            case 'b': {
                if (end - p < 4) throw osc::MalformedMessageException("blob exceeds message size");
                const uint32_t size = uint32_t(uint8_t(p[0])) << 24 | uint32_t(uint8_t(p[1])) << 16 |
                                      uint32_t(uint8_t(p[2])) << 8 | uint32_t(uint8_t(p[3]));
                const uint64_t padded = (uint64_t(size) + 3) & ~uint64_t(3);
                if (size > 0x7FFFFFFFu || padded > uint64_t(end - p - 4))
                    throw osc::MalformedMessageException("blob exceeds message size");
                p += 4 + padded;
                continue;
            }
            case 'T':
            case 'F':
            case 'N':
            case 'I':
            case '[':
            case ']':
                break;
            default:
                return;
        }
        if (size_t(end - p) < bytes) return;
        p += bytes;
    }
}

}  // namespace

void OSCHelper::ProcessPacket(const char* data, int size, const IpEndpointName& remoteEndpoint) {
    // A packet that cannot even be read as a message or bundle is told and dropped here, so that
    // the receive loop goes on with the next one.
    try {
        if (size >= 1 && data[0] == '#') {
            ProcessBundle(osc::ReceivedBundle(osc::ReceivedPacket(data, size)), remoteEndpoint);
        } else {
            if (size > 0) CheckBlobs(data, data + size);
            ProcessMessage(osc::ReceivedMessage(osc::ReceivedPacket(data, size)), remoteEndpoint);
        }
    } catch (const osc::Exception& e) {
        std::printf("error while parsing message: %s\n", e.what());
        std::fflush(stdout);
    }
}

void OSCHelper::ProcessBundle(const osc::ReceivedBundle& bundle, const IpEndpointName& remoteEndpoint) {
    if (bundle.ElementCount() > 0) {
        const osc::ReceivedBundleElement first = *bundle.ElementsBegin();
        if (!first.IsBundle()) CheckBlobs(first.Contents(), first.Contents() + first.Size());
        if (!first.IsBundle() &&
            std::strncmp(osc::ReceivedMessage(first).AddressPattern(), "/t3d/frm", 8) == 0) {
            ProcessTouchFrame(bundle);
            return;
        }
    }
    for (auto it = bundle.ElementsBegin(); it != bundle.ElementsEnd(); ++it) {
        if (it->IsBundle()) {
            ProcessBundle(osc::ReceivedBundle(*it), remoteEndpoint);
        } else {
            CheckBlobs(it->Contents(), it->Contents() + it->Size());
            ProcessMessage(osc::ReceivedMessage(*it), remoteEndpoint);
        }
    }
}

void OSCHelper::ProcessTouchFrame(const osc::ReceivedBundle& bundle) {
    try {
        for (auto it = bundle.ElementsBegin(); it != bundle.ElementsEnd(); ++it) {
            if (it->IsBundle()) continue;
            CheckBlobs(it->Contents(), it->Contents() + it->Size());
            const osc::ReceivedMessage message(*it);
            const char* address = message.AddressPattern();
            if (std::strncmp(address, "/t3d/frm", 8) == 0 || std::strncmp(address, "/t3d/tch", 8) != 0)
                continue;
            const char* number = address + 8;
            if (*number < '0' || *number > '9') continue;
            const long touch = std::strtol(number, nullptr, 10);
            if (touch < 1 || touch > kNumTouches) continue;
            osc::ReceivedMessageArgumentStream args = message.ArgumentStream();
            float values[4];
            for (float& v : values)
                args >> v;
            TouchEntry& entry = touchTable[touch - 1];
            for (int k = 0; k < 4; ++k)
                entry.values[k].store(values[k], std::memory_order_relaxed);
            entry.active.store(0 >= values[2] ? 0 : 1, std::memory_order_relaxed);
            std::ostringstream text;
            text << message;
            AddToHistory(text.str());
        }
    } catch (const osc::Exception& e) {
        std::printf("error while parsing message: %s\n", e.what());
        std::fflush(stdout);
    }
}

void OSCHelper::AddToHistory(const std::string& text) {
    std::lock_guard<std::mutex> guard(historyLock);
    const int32_t index = (messageHistoryIndex.load(std::memory_order_relaxed) + 1) % kHistorySize;
    messageHistory[index] = text;
    messageHistoryIndex.store(index, std::memory_order_release);
}

void OSCHelper::ProcessMessage(const osc::ReceivedMessage& message, const IpEndpointName& remoteEndpoint) {
    const char* address = message.AddressPattern();
    {
        std::ostringstream text;
        text << message;
        AddToHistory(text.str());
    }
    try {
        Dispatch(message, remoteEndpoint);
    } catch (const osc::Exception& e) {
        std::printf("error while parsing message: %s: %s\n", address, e.what());
        std::fflush(stdout);
    }
    numMessages.fetch_add(1, std::memory_order_release);
}

void OSCHelper::Dispatch(const osc::ReceivedMessage& message, const IpEndpointName& remoteEndpoint) {
    const char* address = message.AddressPattern();
    if (std::strncmp(address, "/brel/", 6) == 0) {
        HandleBrelPath(address, message);
        return;
    }
    const std::string key(address);
    bool isParameterPath = false, isFunctionPath = false;
    {
        std::lock_guard<std::mutex> guard(pathLock);
        isParameterPath = parameterPaths.count(key) != 0;
        isFunctionPath = functionPaths.count(key) != 0;
    }
    if (isParameterPath) {
        HandleParameterPath(key, message);
        return;
    }
    if (isFunctionPath) {
        HandleFunctionPath(key, message);
        return;
    }
    if (HandleCommand(address, message)) return;
    ProcessOtherMessage(address, message, remoteEndpoint);
}

int32_t OSCHelper::CheckedId(int32_t id, const char* failureText) const {
    if (id < 0 || id >= numParameters) throw osc::Exception(failureText);
    return id;
}

float OSCHelper::ParameterValue(int32_t id) const {
    return owner->GetTableValue(id);
}

bool OSCHelper::HandleCommand(const char* address, const osc::ReceivedMessage& message) {
    osc::ReceivedMessageArgumentStream args = message.ArgumentStream();
    const char* client = nullptr;
    const char* replyPath = nullptr;
    osc::int32 id = 0;
    float value = 0;

    if (std::strcmp(address, "/ping") == 0) {
        args >> client >> replyPath >> osc::EndMessage;
        const IpEndpointName endpoint = ParseClientAddress(client);
        char local[IpEndpointName::ADDRESS_AND_PORT_STRING_LENGTH];
        IpEndpointName(LocalAddressFor(endpoint), activePort.load()).AddressAndPortAsString(local);
        char version[64];
        std::snprintf(version, sizeof version, " %d.%d.%d", kVersionMajor, kVersionMinor, kVersionDot);
        Reply reply(replyPath);
        reply.Stream() << (std::string("osc.udp://") + local).c_str() << (moduleName + version).c_str();
        reply.Send(endpoint);
    } else if (std::strcmp(address, "/set") == 0) {
        args >> id >> value >> osc::EndMessage;
        owner->SetTableValue(CheckedId(id, "parameter id out of range in set"), value);
    } else if (std::strcmp(address, "/get") == 0) {
        args >> id >> client >> replyPath >> osc::EndMessage;
        CheckedId(id, "parameter id out of range in get");
        Reply reply(replyPath);
        reply.Stream() << id << ParameterValue(id);
        reply.Send(ParseClientAddress(client));
    } else if (std::strcmp(address, "/getAll") == 0) {
        args >> client >> replyPath >> osc::EndMessage;
        const IpEndpointName endpoint = ParseClientAddress(client);
        for (int32_t k = 0; k < numParameters; ++k) {
            if (!IsParameterUsed(k)) continue;
            Reply reply(replyPath);
            reply.Stream() << osc::int32(k) << ParameterValue(k);
            reply.Send(endpoint);
        }
    } else if (std::strcmp(address, "/getAllRegistered") == 0) {
        args >> osc::EndMessage;
        std::lock_guard<std::mutex> guard(subscriptionLock);
        for (const auto& [clientId, updateClient] : updateClients) {
            Reply reply(updateClient.path.c_str());
            reply.Stream() << osc::int32(clientId) << ParameterValue(clientId);
            reply.Send(updateClient.endpoint);
        }
    } else if (std::strcmp(address, "/getNumParameters") == 0) {
        args >> client >> replyPath >> osc::EndMessage;
        Reply reply(replyPath);
        reply.Stream() << osc::int32(numParameters);
        reply.Send(ParseClientAddress(client));
    } else if (std::strcmp(address, "/isParameterUsed") == 0) {
        args >> id >> client >> replyPath >> osc::EndMessage;
        CheckedId(id, "parameter id out of range in isParameterUsed");
        Reply reply(replyPath);
        reply.Stream() << id << IsParameterUsed(id);
        reply.Send(ParseClientAddress(client));
    } else if (std::strcmp(address, "/getInfo") == 0) {
        args >> id >> client >> replyPath >> osc::EndMessage;
        CheckedId(id, "parameter id out of range in getInfo");
        if (!IsParameterUsed(id)) throw osc::Exception("parameter id is unused");
        const ParameterDefinition& row = parameterTable[id];
        Reply reply(replyPath);
        reply.Stream() << id << row.minimum << row.maximum << row.defaultValue << (row.name ? row.name : "")
                       << osc::int32(row.unit);
        reply.Send(ParseClientAddress(client));
    } else if (std::strcmp(address, "/registerUpdate") == 0) {
        args >> id >> client >> replyPath >> osc::EndMessage;
        CheckedId(id, "parameter id out of range in registerUpdate");
        const IpEndpointName endpoint = ParseClientAddress(client);
        std::lock_guard<std::mutex> guard(subscriptionLock);
        auto [first, last] = updateClients.equal_range(id);
        for (auto it = first; it != last; ++it)
            if (it->second.endpoint == endpoint && it->second.path == replyPath) return true;
        updateClients.emplace(id, OSCUpdateClient{endpoint, replyPath});
        std::atomic_ref<uint8_t>(updateFlags[size_t(id)]).store(1, std::memory_order_relaxed);
    } else if (std::strcmp(address, "/unregisterUpdate") == 0) {
        args >> id >> client >> replyPath >> osc::EndMessage;
        // The same text as /registerUpdate's, deliberately: clients already match on it.
        CheckedId(id, "parameter id out of range in registerUpdate");
        const IpEndpointName endpoint = ParseClientAddress(client);
        std::lock_guard<std::mutex> guard(subscriptionLock);
        auto [first, last] = updateClients.equal_range(id);
        for (auto it = first; it != last;) {
            if (it->second.endpoint == endpoint && it->second.path == replyPath) {
                it = updateClients.erase(it);
            } else {
                ++it;
            }
        }
        if (updateClients.count(id) == 0)
            std::atomic_ref<uint8_t>(updateFlags[size_t(id)]).store(0, std::memory_order_relaxed);
    } else if (std::strcmp(address, "/exec") == 0) {
        HandleLuaCall(message, false);
    } else if (std::strcmp(address, "/call") == 0) {
        HandleLuaCall(message, true);
    } else if (std::strcmp(address, "/startNote") == 0 || std::strcmp(address, "/stopNote") == 0) {
        args >> id >> value >> osc::EndMessage;
        if (luaHelper) {
            // Channel 1, the second channel as the hooks count them: the fixed channel of these
            // commands, kept as it is.
            // A double product, then truncated (held at the ends of the range: any float can arrive).
            const int32_t velocity = SaturatedInt32(double(value) * 127.0);
            if (address[2] == 't' && address[3] == 'a') {
                luaHelper->NoteOn(1, id, velocity);
            } else {
                luaHelper->NoteOff(1, id, velocity);
            }
        }
    } else {
        return false;
    }
    return true;
}

void OSCHelper::HandleParameterPath(const std::string& address, const osc::ReceivedMessage& message) {
    // The targets are copied out, so that a script registering a path meanwhile changes nothing here.
    std::vector<std::vector<OSCParameterTarget>> registered;
    {
        std::lock_guard<std::mutex> guard(pathLock);
        auto [first, last] = parameterPaths.equal_range(address);
        for (auto it = first; it != last; ++it)
            registered.push_back(it->second);
    }
    if (registered.empty()) return;
    const size_t count = registered.front().size();
    std::vector<float> values(count);
    osc::ReceivedMessageArgumentStream args = message.ArgumentStream();
    for (float& v : values)
        args >> v;
    args >> osc::EndMessage;
    for (const std::vector<OSCParameterTarget>& targets : registered)
        for (size_t i = 0; i < count && i < targets.size(); ++i) {
            const OSCParameterTarget& target = targets[i];
            owner->SetTableValue(target.id, values[i] * target.scale + target.offset);
        }
}

}  // namespace BR
