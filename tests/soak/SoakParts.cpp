// The soak's patch, its random events, its OSC traffic and its watch on diagnostics and memory.
#include "SoakParts.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <oscpack/osc/OscOutboundPacketStream.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>

#include "framework/InstanceRegistry.h"
#include "modules/ModuleFactory.h"

namespace BR::Soak {

namespace {

// Rows that random changes leave alone: moving the port would close the server the traffic talks
// to, and the master and voices keep their roles so that the polyphony path stays in use.
bool Changeable(const std::string& name) {
    return name != "OSC Port Offset" && name != "Poly Mode" && name != "Polyphony/Voice";
}

void Wire(Instance& instance, uint32_t block) {
    HostDriver& driver = *instance.driver;
    instance.outputs.assign(size_t(driver.NumHostOutputs()), std::vector<float>(block, 0.0f));
    for (auto& channel : instance.outputs)
        instance.outputPointers.push_back(channel.data());
    instance.inputPointers.assign(size_t(driver.NumHostInputs()), nullptr);
    BrelCorvaneBase& module = driver.Module();
    for (int32_t p = 0; p < module.GetNumberOfParameters(); ++p)
        if (Changeable(module.GetParameter(p)->Name())) instance.changeable.push_back(p);
}

}  // namespace

std::unique_ptr<HostDriver> MakeInstance(const std::string& stem, uint32_t block) {
    const CatalogueEntry* entry = FindCatalogueEntry(stem);
    return std::make_unique<HostDriver>(CreateModule(stem), *entry, 48000.0f, block);
}

Patch BuildPatch(size_t count, uint32_t block) {
    Patch patch;
    patch.block = block;
    std::vector<std::string> stems;
    for (int i = 0; i < kNumCatalogueEntries; ++i)
        if (FindModuleFactory(CatalogueEntries()[i])) stems.push_back(CatalogueEntries()[i].stem);
    patch.modules = stems.size();
    size_t master = SIZE_MAX;
    int32_t voice = 0;
    for (size_t i = 0; i < count; ++i) {
        Instance instance;
        const bool isVoice = master != SIZE_MAX && voice < 3;
        const std::string stem = i < stems.size() ? stems[i]
                                 : isVoice        ? "voicecontroller"
                                                  : stems[i % stems.size()];
        instance.driver = MakeInstance(stem, block);
        instance.driver->SetTransport(&patch.transport, true);
        instance.source = i == 0 ? SIZE_MAX : i - 1;
        if (stem == "voicecontroller" && master == SIZE_MAX) {
            master = i;
            instance.driver->SetParameterByName("Poly Mode", 1);  // Master
            instance.driver->SetParameterByName("Polyphony/Voice", 3);
        } else if (i >= stems.size() && isVoice) {
            instance.driver->SetParameterByName("Poly Mode", 2);  // Voice
            instance.driver->SetParameterByName("Polyphony/Voice", float(++voice));
            instance.source = master;
        }
        if (i < size_t(kMaxListening)) {
            instance.port = kBasePort + int32_t(i) + 1;
            instance.driver->SetParameterByName("OSC Port Offset", float(i + 1));
        }
        Wire(instance, block);
        patch.instances.push_back(std::move(instance));
    }
    patch.sine.resize(block);
    return patch;
}

void JumpTransport(DriverTransport& transport, Random& random, Figures& figures) {
    static const int32_t meters[][2] = {{4, 4}, {3, 4}, {6, 8}, {7, 8}, {5, 4}, {1, 16}};
    transport.playing = !random.OneIn(5);
    transport.tempo = 20.0 + 280.0 * random.Unit();
    transport.blockQuarter = random.OneIn(10) ? -100.0 * random.Unit() : 1e6 * random.Unit();
    transport.blockSampleLocation = int64_t(random.Below(uint64_t(1) << 40));
    const auto& meter = meters[random.Below(6)];
    transport.meterNumerator = meter[0];
    transport.meterDenominator = meter[1];
    transport.looping = random.OneIn(4);
    transport.loopStart = std::floor(transport.blockQuarter) - double(random.Below(8));
    transport.loopEnd = transport.loopStart + 1.0 + double(random.Below(16));
    ++figures.transportJumps;
}

void ChangeParameters(Patch& patch, Random& random, Figures& figures) {
    if (!random.OneIn(4)) return;
    for (size_t n = 1 + random.Below(3); n > 0; --n) {
        Instance& instance = patch.instances[random.Below(patch.instances.size())];
        if (instance.changeable.empty()) continue;
        const int32_t index = instance.changeable[random.Below(instance.changeable.size())];
        const Parameter* parameter = instance.driver->Module().GetParameter(index);
        const double low = parameter->Minimum(), high = parameter->Maximum();
        double value = low + (high - low) * random.Unit();
        if (random.OneIn(8)) value = random.OneIn(2) ? low : high;
        if (random.OneIn(16))
            value = random.OneIn(2) ? low - 1.0 - std::abs(low) : high + 1.0 + std::abs(high);
        instance.driver->Module().SetParameterValue(index, float(value));
        ++figures.parameterChanges;
    }
}

bool RenderBlock(Patch& patch, uint32_t frames, Random& random, Figures& figures) {
    static double phase = 0.0;
    for (uint32_t k = 0; k < frames; ++k) {
        patch.sine[k] = float(0.8 * std::sin(phase));
        phase = std::fmod(phase + 2.0 * M_PI * 110.0 / 48000.0, 2.0 * M_PI);
    }
    uint8_t bytes[16][3];
    TimedMidi midi[16];
    for (size_t i = 0; i < patch.instances.size(); ++i) {
        Instance& instance = patch.instances[i];
        for (size_t c = 0; c < instance.inputPointers.size(); ++c) {
            if (instance.source == SIZE_MAX) {
                instance.inputPointers[c] = patch.sine.data();
            } else {
                const Instance& from = patch.instances[instance.source];
                instance.inputPointers[c] =
                    from.outputs.empty() ? nullptr : from.outputs[c % from.outputs.size()].data();
            }
        }
        uint32_t numMidi = 0;
        if (random.OneIn(3)) {
            numMidi = uint32_t(1 + random.Below(6));
            for (uint32_t e = 0; e < numMidi; ++e) {
                static const uint8_t kinds[] = {0x90, 0x90, 0x80, 0x80, 0xB0, 0xE0, 0xC0, 0xD0, 0xA0};
                const uint8_t kind = kinds[random.Below(sizeof kinds)];
                const uint8_t channel = uint8_t(random.OneIn(4) ? random.Below(16) : 0);
                bytes[e][0] = uint8_t(kind | channel);
                bytes[e][1] = uint8_t(kind == 0xB0 ? random.Below(128) : 24 + random.Below(72));
                bytes[e][2] = uint8_t(random.Below(128));
                const uint32_t length = kind == 0xC0 || kind == 0xD0 ? 2 : 3;
                midi[e] = TimedMidi{uint32_t(random.Below(frames)), length, bytes[e]};
            }
            std::sort(midi, midi + numMidi,
                      [](const TimedMidi& a, const TimedMidi& b) { return a.frame < b.frame; });
            figures.midiEvents += numMidi;
        }
        instance.driver->Process(instance.inputPointers.data(), instance.outputPointers.data(), frames, midi,
                                 numMidi);
        figures.heard.resize(patch.instances.size());
        for (size_t c = 0; c < instance.outputs.size(); ++c) {
            for (uint32_t k = 0; k < frames; ++k) {
                if (instance.outputs[c][k] != 0.0f) figures.heard[i] = 1;
                if (!std::isfinite(instance.outputs[c][k])) {
                    figures.failure = std::string(instance.driver->Entry().stem) + " (instance " +
                                      std::to_string(i) + ") output " + std::to_string(c) + " is " +
                                      std::to_string(instance.outputs[c][k]);
                    return false;
                }
            }
        }
    }
    return true;
}

OscTraffic::OscTraffic(const Patch& patch, uint64_t seed) {
    for (const Instance& instance : patch.instances) {
        if (instance.port == 0) continue;
        Target target{instance.port, instance.driver->Module().ShortName(), 0, {}};
        uint32_t localId = 0;
        InstanceRegistry::GetInstanceIds(&instance.driver->Module(), localId, target.globalId);
        for (int32_t p : instance.changeable)
            if (p > 0) target.tableIds.push_back(p - 1);  // table row k is parameter k + 1
        if (!target.tableIds.empty()) targets.push_back(std::move(target));
    }
    fd = socket(AF_INET, SOCK_DGRAM, 0);
    sockaddr_in here{};
    here.sin_family = AF_INET;
    here.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    bind(fd, reinterpret_cast<sockaddr*>(&here), sizeof here);
    fcntl(fd, F_SETFL, O_NONBLOCK);
    thread = std::thread([this, seed] { Main(seed); });
}

OscTraffic::~OscTraffic() {
    Stop();
    if (fd >= 0) close(fd);
}

void OscTraffic::Stop() {
    stop.store(true);
    if (thread.joinable()) thread.join();
}

void OscTraffic::Main(uint64_t seed) {
    Random random(seed ^ 0x5eed);
    sockaddr_in here{};
    socklen_t length = sizeof here;
    getsockname(fd, reinterpret_cast<sockaddr*>(&here), &length);
    const std::string client = "osc.udp://127.0.0.1:" + std::to_string(ntohs(here.sin_port));
    char buffer[1024], drain[2048];
    while (!stop.load() && !targets.empty()) {
        const Target& target = targets[random.Below(targets.size())];
        const int32_t id = target.tableIds[random.Below(target.tableIds.size())];
        const float value = float(random.Unit() * 2.0 - 0.5) * float(1 + random.Below(100));
        osc::OutboundPacketStream stream(buffer, sizeof buffer);
        switch (random.Below(8)) {
            case 0:
                stream << osc::BeginMessage(
                              ("/brel/" + std::to_string(target.globalId) + "/" + std::to_string(id)).c_str())
                       << value << osc::EndMessage;
                break;
            case 1:
                stream << osc::BeginMessage(
                              ("/brel/" + target.shortName + "/*/" + std::to_string(id)).c_str())
                       << value << osc::EndMessage;
                break;
            case 2:
                stream << osc::BeginMessage("/get") << id << client.c_str() << "/value" << osc::EndMessage;
                break;
            case 3:
                stream << osc::BeginMessage("/ping") << client.c_str() << "/pong" << osc::EndMessage;
                break;
            default:
                stream << osc::BeginMessage("/set") << id << value << osc::EndMessage;
                break;
        }
        sockaddr_in to{};
        to.sin_family = AF_INET;
        to.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        to.sin_port = htons(uint16_t(target.port));
        if (sendto(fd, stream.Data(), stream.Size(), 0, reinterpret_cast<sockaddr*>(&to), sizeof to) > 0)
            sent.fetch_add(1);
        while (recv(fd, drain, sizeof drain, 0) > 0) {
        }
        std::this_thread::sleep_for(std::chrono::microseconds(200));
    }
}

DiagnosticCapture::DiagnosticCapture(const std::string& path_) : path(path_) {
    std::fflush(stdout);
    std::fflush(stderr);
    savedOut = dup(STDOUT_FILENO);
    savedErr = dup(STDERR_FILENO);
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    dup2(file, STDOUT_FILENO);
    dup2(file, STDERR_FILENO);
    close(file);
}

void DiagnosticCapture::Restore() {
    if (savedOut < 0) return;
    std::fflush(stdout);
    std::fflush(stderr);
    dup2(savedOut, STDOUT_FILENO);
    dup2(savedErr, STDERR_FILENO);
    close(savedOut);
    close(savedErr);
    savedOut = savedErr = -1;
}

size_t DiagnosticCapture::CountLines(const std::string& containing) const {
    std::ifstream in(path);
    size_t count = 0;
    for (std::string line; std::getline(in, line);)
        if (line.find(containing) != std::string::npos) {
            if (count < 5) std::printf("soak: diagnostic: %s\n", line.c_str());
            ++count;
        }
    return count;
}

std::string MakeScratchFolder() {
    char inMemory[] = "/dev/shm/corvane-soak-XXXXXX";
    if (const char* folder = mkdtemp(inMemory)) return folder;
    char onDisk[] = "/tmp/corvane-soak-XXXXXX";
    const char* folder = mkdtemp(onDisk);
    return folder ? folder : "/tmp";
}

long ResidentBytes() {
    long pages = 0, resident = 0;
    if (FILE* file = std::fopen("/proc/self/statm", "r")) {
        if (std::fscanf(file, "%ld %ld", &pages, &resident) != 2) resident = 0;
        std::fclose(file);
    }
    return resident * sysconf(_SC_PAGESIZE);
}

}  // namespace BR::Soak
