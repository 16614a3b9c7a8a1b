// The pieces of the soak: its patch of instances, the random events it throws at them, the OSC traffic
// from a thread of its own, and the watch on diagnostics and memory.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "host/DriverTransport.h"
#include "host/HostDriver.h"

namespace BR::Soak {

constexpr int32_t kBasePort = 7360;  // instances listen on 7361 and up, at most to 7399
constexpr int32_t kMaxListening = 39;
constexpr long kMemoryTolerance = 8L << 20;

// xorshift64*: the same run for the same seed.
class Random {
public:
    explicit Random(uint64_t seed) : state(seed * 2685821657736338717ull + 1) {}
    uint64_t Next() {
        state ^= state >> 12;
        state ^= state << 25;
        state ^= state >> 27;
        return state * 2685821657736338717ull;
    }
    size_t Below(size_t n) { return n ? size_t(Next() % n) : 0; }
    bool OneIn(size_t n) { return Below(n) == 0; }
    double Unit() { return double(Next() >> 11) * (1.0 / 9007199254740992.0); }

private:
    uint64_t state;
};

struct Instance {
    std::unique_ptr<HostDriver> driver;
    size_t source = SIZE_MAX;  // the instance whose outputs feed this one's inputs; SIZE_MAX: a sine
    std::vector<std::vector<float>> outputs;
    std::vector<float*> outputPointers;
    std::vector<const float*> inputPointers;
    std::vector<int32_t> changeable;  // parameter indices that random changes may touch
    int32_t port = 0;                 // where it listens for OSC; 0 for nowhere
};

struct Patch {
    std::vector<Instance> instances;
    DriverTransport transport;
    std::vector<float> sine;
    size_t modules = 0;  // different modules among the instances
    uint32_t block = 256;
};

struct Figures {
    uint64_t midiEvents = 0;
    uint64_t parameterChanges = 0;
    uint64_t transportJumps = 0;
    uint64_t oscReceived = 0;
    std::vector<uint8_t> heard;  // per instance: some output was not zero at some time
    std::string failure;
};

std::unique_ptr<HostDriver> MakeInstance(const std::string& stem, uint32_t block = 256);
// One instance of every module the factory makes, in catalogue order, then more up to `count`: a Voice
// Controller master feeds three voices, and the list starts again. Each feeds the next.
Patch BuildPatch(size_t count, uint32_t block);

void JumpTransport(DriverTransport& transport, Random& random, Figures& figures);
void ChangeParameters(Patch& patch, Random& random, Figures& figures);
// Renders one block of every instance in order with random MIDI; false (and `figures.failure`) when an
// output is NaN or infinite.
bool RenderBlock(Patch& patch, uint32_t frames, Random& random, Figures& figures);

// Random parameter changes in OSC packets (/set, /brel/ by global id and by name, /get, /ping) sent on
// loopback to every listening instance from a thread of its own, until Stop.
class OscTraffic {
public:
    OscTraffic(const Patch& patch, uint64_t seed);
    ~OscTraffic();
    void Stop();
    uint64_t Sent() const { return sent.load(); }

private:
    void Main(uint64_t seed);
    struct Target {
        int32_t port;
        std::string shortName;
        uint32_t globalId;
        std::vector<int32_t> tableIds;
    };
    std::vector<Target> targets;
    std::atomic<bool> stop{false};
    std::atomic<uint64_t> sent{0};
    int fd = -1;
    std::thread thread;
};

// Standard output and standard error go to a file while the patch runs, so that every diagnostic of
// the modules ("MessageQueue::Write() overflow") can be counted afterwards.
class DiagnosticCapture {
public:
    explicit DiagnosticCapture(const std::string& path);
    ~DiagnosticCapture() { Restore(); }
    void Restore();
    size_t CountLines(const std::string& containing) const;

private:
    std::string path;
    int savedOut = -1, savedErr = -1;
};

std::string MakeScratchFolder();
long ResidentBytes();

}  // namespace BR::Soak
