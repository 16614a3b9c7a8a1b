// "corvane edit STEM [options]": the module's editor in a window of its own while the instance renders
// in real time.
#pragma once

namespace BR {

// Runs until the window is closed (or --seconds have passed, or an interrupt), then writes --state-out.
// Throws UsageError or InputError; returns the exit status.
int RunEdit(int argc, char** argv);
// "corvane screenshot STEM --out FILE.png [--set NAME=VALUE]... [--state-in FILE] [--display NAME]": the
// panel drawn off screen (a private Xvfb unless --display names a server) and written as a PNG.
int RunScreenshot(int argc, char** argv);

}  // namespace BR
