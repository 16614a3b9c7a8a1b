// What every fuzz target shares: a scratch folder in memory for inputs that readers take as files,
// quiet standard output, empty per-user folders, and a network of its own for targets that may send.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace BR::Fuzz {

// A folder made once per process (under /dev/shm when it exists) and removed at exit.
const std::string& ScratchFolder();
// Writes the input as a file of the scratch folder, replacing the last one, and returns its path.
std::string WriteScratchFile(const std::string& name, const uint8_t* data, size_t size);

// Diagnostics that a refused input prints on standard output would flood the fuzzer's log and slow
// it down: standard output goes to /dev/null. The fuzzer itself reports on standard error.
void QuietStandardOutput();

// Points XDG_DATA_HOME and XDG_CONFIG_HOME at empty folders of the scratch folder, so that no user
// script or preference of the machine takes part.
void UseEmptyUserFolders();

// Moves the process into a network namespace of its own (a user namespace too when not root) whose only
// interface, loopback, stays down: a reply or update that an input addresses to any host fails to send,
// even to the target's own ports, and the ports it opens are reachable from nowhere. Must run before
// any thread starts; ends the process when it cannot.
void IsolateNetwork();

}  // namespace BR::Fuzz
