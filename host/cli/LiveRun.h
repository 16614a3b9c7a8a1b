// What the two drivers of `corvane live` share: the options of the command, the wait for a signal
// (with the editor's window pumped meanwhile), and the saving of state files at the end.
#pragma once

#include <signal.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "LiveHost.h"
#include "RemoteOptions.h"

namespace BR {

class EditorWindow;

struct LiveOptions {
    std::string patchPath;
    std::string driver = "jack";
    double seconds = 0;  // 0: until a signal
    std::string clientName = "corvane";
    std::string editInstance;  // --edit NAME: the instance whose editor opens
    RemoteSettings remote;
};

// Where the run is at: the signals to wait for, each instance's state file, and the editor.
struct LiveRun {
    LiveOptions options;
    sigset_t signals;
    std::vector<std::string> savePaths;  // per instance; empty: none
    // Waits for SIGINT or SIGTERM (blocked in every thread since before any was started), the end of
    // --seconds, or `stop` turning true (then returns null). A second signal while the patch winds
    // down changes nothing: it stays blocked and pending. With --edit, the window is served meanwhile.
    const char* Wait(const std::function<bool()>& stop);
    // Opens the --edit instance's editor, if one was asked for; a window that cannot open is reported
    // and the patch runs on without it.
    void OpenEditor(const Patch& patch, LiveHost& host);
    void CloseEditor();
    void SaveStates(const Patch& patch, LiveHost& host) const;
    std::shared_ptr<EditorWindow> editor;
};

// The JACK driver: runs the patch until a signal, --seconds or the server's end; returns the status.
int RunOnJack(Patch& patch, LiveRun& run);

}  // namespace BR
