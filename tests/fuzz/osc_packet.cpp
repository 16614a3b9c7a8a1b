// Fuzz target: one OSC packet into ProcessPacket, the whole dispatch of a live instance (commands,
// /brel/ paths into the other instance, paths and functions that a Lua script registered, /exec and
// /call, touch frames), then a block of both instances rendered with what the packet set.
//
// Input: the packet; its length picks which of the two instances receives it.
#include <oscpack/ip/IpEndpointName.h>

#include <cstdint>
#include <memory>

#include "FuzzSupport.h"
#include "RenderCheck.h"
#include "framework/ModuleServices.h"
#include "host/HostDriver.h"
#include "modules/ModuleFactory.h"
#include "remote/OSCHelper.h"
#include "remote/RemoteServices.h"

namespace {

// What the harness's Lua state offers /exec, /call and the registered paths. The globals that reach
// the file system (dofile, loadfile, require, module) or stop the collector are removed: that an open
// port lets a sender run them is told in the README, and here it would let inputs touch the machine.
const char kHarnessScript[] = R"(
dofile, loadfile, require, module, collectgarbage = nil, nil, nil, nil, nil
hits = 0
function bump(a, b, c) hits = hits + 1 return hits, tostring(a), b end
function setter(id, v) setParameter(id, v) return getParameter(id) end
function byname(name, v) setParameter(name, v) return getParameterMinMax(name) end
function fail(x) error("refused: " .. tostring(x)) end
function many(...) return ... end
function others(offset, id, v) setOthersParameter(offset, id, v) return getOthersParameter(offset, id) end
function flag(id, on) setGUIBoolValue(id, on) return getGUIBoolValue(id) end
function otherflag(offset, id, on) setOthersGUIBoolValue(offset, id, on) return getOthersGUIBoolValue(offset, id) end
function info(id) return getParameterName(id), getParameterUnit(id), isParameterUsed(id) end
function send(client, path, a) sendOSC(client, path, "fi", {a, a}) end
function timed(s) requestTimedCallback(s, function() hits = hits + 1 end) end
registerOSCPathForParameter("/level", 1)
registerOSCPathForParameter("/pair", {1, 2})
registerOSCPathForParameterNormalized("/norm", 2)
registerOSCPathForFunction("/fn", function(...) hits = hits + select('#', ...) end)
registerOSCPathForFunction("/err", function(x) error(x) end)
registerOSCPathForFunction("/note", function(n, v) setParameter(1, n) end)
)";

struct Rig {
    std::unique_ptr<BR::HostDriver> drivers[2];
};

std::unique_ptr<BR::HostDriver> MakeInstance(const char* stem, float offset) {
    const BR::CatalogueEntry* entry = BR::FindCatalogueEntry(stem);
    auto driver = std::make_unique<BR::HostDriver>(BR::CreateModule(stem), *entry, 48000.0f, 256);
    // Both listen (inside the target's own network), and scripts reach them by offset.
    driver->SetParameterByName("OSC Port Offset", offset);
    return driver;
}

Rig* rig = nullptr;

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    BR::Fuzz::IsolateNetwork();
    BR::Fuzz::QuietStandardOutput();
    BR::Fuzz::UseEmptyUserFolders();
    const std::string script = BR::Fuzz::WriteScratchFile(
        "harness.lua", reinterpret_cast<const uint8_t*>(kHarnessScript), sizeof kHarnessScript - 1);
    BR::SetOSCBasePortOverride(7300);
    BR::InstallRemoteServices();
    BR::SetScriptsForNextModules({script});
    rig = new Rig;
    rig->drivers[0] = MakeInstance("lfo", 1);
    rig->drivers[1] = MakeInstance("quantizer", 2);
    BR::SetScriptsForNextModules({});
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    BR::HostDriver& target = *rig->drivers[(size / 4) % 2];
    BR::OSCHelper* osc = BR::OSCHelperOf(target.Module());
    const IpEndpointName sender(0x7F000001, 9000);
    osc->ProcessPacket(reinterpret_cast<const char*>(data), int(size), sender);
    for (auto& driver : rig->drivers)
        BR::Fuzz::RenderAndCheck(*driver, 64);
    return 0;
}
