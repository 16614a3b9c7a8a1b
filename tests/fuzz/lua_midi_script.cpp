// Fuzz target: user MIDI scripts driven by random MIDI. Each instance runs one of the scripts below,
// which between them ask for every kind of MIDI callback and call the script API with numbers made
// from the events (parameters by id and by name, other instances, indicator bits, timers, scales,
// OSC sends, errors); the events reach them through the host's MIDI intake inside rendered blocks.
//
// Input: a first byte that picks the instance (and so the script and the module), then events of four
// bytes each: frames since the previous event (0 to 15: the low bits of the byte), status, two data
// bytes; blocks are 64 frames, and the events past the first 255 are left out to keep each input short.
// Status bytes below 0x80 are given the top bit; system messages carry their two data bytes as they stand.
#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "FuzzSupport.h"
#include "RenderCheck.h"
#include "framework/ModuleServices.h"
#include "host/HostDriver.h"
#include "modules/ModuleFactory.h"
#include "remote/RemoteServices.h"

namespace {

// Removed from every script's globals: they reach the file system, which no input should.
const char kSandbox[] = "dofile, loadfile, require, module = nil, nil, nil, nil\n";

const char* const kScripts[] = {
    // Parameters by number, name and range; indicator bits.
    R"(
count = 0
local n = getNumParameters()
requestAllNoteOn(function(ch, note, vel)
  count = count + 1
  setParameter(note % (n + 3) - 1, vel / 127)
  local name = getParameterName(note % n)
  if name then setParameter(name, vel * 1000 - 64000) end
  local lo, hi = getParameterMinMax(note % n)
  setGUIBoolValue(note, vel > 64)
  return getGUIBoolValue(vel)
end)
requestAllNoteOff(function(ch, note, vel) setParameter(1, getParameter(1) + note - vel) end)
requestAllCC(function(ch, cc, v)
  pcall(setParameter, cc - 5, v)
  pcall(getParameterUnit, cc * 1000)
  pcall(isParameterUsed, v - 64)
  pcall(getParameterID, tostring(cc))
end)
requestPitchWheel(function(ch, v) setParameter(2, v / 8192 - 1) end)
requestChannelPressure(function(ch, p) if p > 100 then error("pressure " .. p) end end)
)",
    // Keyed callbacks, NRPN, program changes, pressure; other instances by offset.
    R"(
hits = 0
for key = 0, 127, 3 do
  requestNoteOn(key, function(ch, note, vel) hits = hits + vel end)
  requestNoteOff(key, function(ch, note, vel) hits = hits - vel end)
  requestCC(key, function(ch, cc, v) pcall(setOthersParameter, v % 5, cc, v / 127) end)
  requestPolyPressure(key, function(ch, note, p) pcall(getOthersParameter, ch, note) end)
  requestProgramChange(key, function(ch, p) pcall(setOthersGUIBoolValue, p % 4, p, true) end)
end
requestNRPN(0, function(ch, n, v) setParameter(1, v / 16383) end)
requestAllNRPN(function(ch, n, v) pcall(setParameter, n, v) pcall(getOthersGUIBoolValue, ch, n) end)
requestAllProgramChange(function(ch, p) pcall(setParameter, "no such row " .. p, 1) end)
requestAllPolyPressure(function(ch, note, p) setParameter(note % 4, p * 1e30) end)
)",
    // Timers made and cancelled from callbacks, scales, OSC sends, errors and time.
    R"(
ticks, timers = 0, {}
requestAllNoteOn(function(ch, note, vel)
  if #timers < 8 then
    timers[#timers + 1] = requestTimedCallback(vel / 10000, function() ticks = ticks + 1 end)
  end
end)
requestAllNoteOff(function(ch, note, vel)
  local t = table.remove(timers)
  if t then cancelTimer(t) end
end)
requestAllCC(function(ch, cc, v)
  addScale("fuzz " .. cc, {v - 64, cc, (v - 64) * 100000, v / 3})
end)
requestAllProgramChange(function(ch, p)
  pcall(sendOSC, "osc.udp://127.0.0.1:" .. (7300 + p), "/p", "if", {p, p / 3})
  pcall(sendOSC, "osc.udp://127.0.0.1", "/p" .. p, {p, "text", nil})
end)
requestPitchWheel(function(ch, v) if v < 100 then error({}) end return time() end)
requestChannelPressure(function(ch, p) pcall(cancelTimer, p) end)
)",
};
constexpr size_t kNumScripts = sizeof kScripts / sizeof kScripts[0];
// The module each script's instance is of; the list wraps round.
const char* const kStems[] = {"dc", "voicecontroller", "quantizer", "steplfo", "lfo", "trigger"};
constexpr size_t kNumInstances = 6;

std::vector<std::unique_ptr<BR::HostDriver>>* instances = nullptr;

uint32_t MessageLength(uint8_t status) {
    if (status >= 0xF0) return 3;
    const uint8_t kind = status & 0xF0;
    return kind == 0xC0 || kind == 0xD0 ? 2 : 3;
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    BR::Fuzz::IsolateNetwork();
    BR::Fuzz::QuietStandardOutput();
    BR::Fuzz::UseEmptyUserFolders();
    BR::SetOSCBasePortOverride(7300);
    BR::InstallRemoteServices();
    instances = new std::vector<std::unique_ptr<BR::HostDriver>>;
    for (size_t i = 0; i < kNumInstances; ++i) {
        const std::string text = std::string(kSandbox) + kScripts[i % kNumScripts];
        const std::string path =
            BR::Fuzz::WriteScratchFile("script" + std::to_string(i) + ".lua",
                                       reinterpret_cast<const uint8_t*>(text.data()), text.size());
        BR::SetScriptsForNextModules({path});
        const char* stem = kStems[i % (sizeof kStems / sizeof kStems[0])];
        auto driver = std::make_unique<BR::HostDriver>(BR::CreateModule(stem), *BR::FindCatalogueEntry(stem),
                                                       48000.0f, 256);
        driver->SetParameterByName("OSC Port Offset", float(i + 1));
        instances->push_back(std::move(driver));
    }
    BR::SetScriptsForNextModules({});
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) return 0;
    BR::HostDriver& driver = *(*instances)[data[0] % kNumInstances];
    constexpr uint32_t kBlock = 64;
    size = std::min<size_t>(size, 1 + 4 * 255);
    std::vector<uint8_t> bytes;
    bytes.reserve(size);
    std::vector<BR::TimedMidi> events;
    std::vector<size_t> offsets;
    uint32_t frame = 0;
    for (size_t at = 1; at + 4 <= size; at += 4) {
        frame += data[at] & 15;
        if (frame >= kBlock) {  // the block is full: render it, and go on in the next
            for (size_t k = 0; k < events.size(); ++k)
                events[k].bytes = bytes.data() + offsets[k];
            BR::Fuzz::RenderAndCheck(driver, kBlock, events.data(), uint32_t(events.size()));
            events.clear();
            offsets.clear();
            bytes.clear();
            frame %= kBlock;
        }
        const uint8_t status = uint8_t(data[at + 1] | 0x80);
        const uint32_t length = MessageLength(status);
        offsets.push_back(bytes.size());
        bytes.push_back(status);
        bytes.push_back(data[at + 2]);
        if (length == 3) bytes.push_back(data[at + 3]);
        events.push_back({frame, length, nullptr});
    }
    for (size_t k = 0; k < events.size(); ++k)
        events[k].bytes = bytes.data() + offsets[k];
    BR::Fuzz::RenderAndCheck(driver, kBlock, events.data(), uint32_t(events.size()));
    return 0;
}
