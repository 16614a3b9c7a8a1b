// What a host installs so that every module gets its OSC server and Lua helper: the services
// object behind the framework's hooks, and the per-instance script list of the command line.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "framework/ModuleServices.h"

namespace BR {

class OSCHelper;
class LuaMIDIHelper;

// The factory to hand to SetModuleServicesFactory.
std::unique_ptr<ModuleServices> CreateRemoteServices(BrelCorvaneBase& module);
// Installs it, and the OSC transmit hook.
void InstallRemoteServices();
// Installs only the OSC transmit hook through which modules send OSC of their own (CV To OSC).
void InstallOSCTransmitter();
// Extra user scripts for the modules the calling thread creates next, run after the per-user
// folder's; an empty list ends that. The command line's --script and a patch's "scripts".
void SetScriptsForNextModules(std::vector<std::string> paths);

// The helpers of a module made while the services were installed; null otherwise.
OSCHelper* OSCHelperOf(BrelCorvaneBase& module);
LuaMIDIHelper* LuaHelperOf(BrelCorvaneBase& module);

}  // namespace BR
