// The corvane command: a headless host for listing modules, rendering offline and benchmarking.
#include <cstdio>
#include <cstring>
#include <stdexcept>
#include <string>

#include "CommandHelp.h"
#include "CommandLine.h"
#include "EditCommand.h"
#include "InfoCommands.h"
#include "LiveHost.h"
#include "PatchJob.h"
#include "Plot.h"
#include "RenderJob.h"
#include "framework/ModuleCatalogue.h"
#include "host/devices/MidiDevices.h"
#include "remote/RemoteServices.h"

namespace {

const char* kUsage =
    "usage: corvane COMMAND [ARGS]\n"
    "  list                      modules: id, stem, name, inputs, outputs\n"
    "  params STEM               parameter table: index, name, unit, minimum, maximum, default\n"
    "  render STEM [options]     render offline to a 32-bit float WAV\n"
    "      --rate HZ  --block N  --frames N | --seconds S  --set \"NAME=VALUE\"...\n"
    "      --in FILE.wav  --event FRAME:HEXBYTES...  --midi FILE.mid  --out FILE.wav\n"
    "      --state-in FILE  --state-out FILE  --calibration-in FILE  --calibration-out FILE\n"
    "      --property ID[=VALUE]...\n"
    "      --tempo BPM  --position QN  --meter N/D  --stopped  --no-transport\n"
    "      --transport FRAME:play|stop...  --loop START:END\n"
    "      --realtime  --script FILE.lua...  --osc-base-port N\n"
    "      --plot FILE.png  --plot-size WxH  --plot-range START:END\n"
    "      --midi-out FILE.mid   the MIDI the module sends (CV To MIDI), as a Standard MIDI File\n"
    "                            whose ticks are frames\n"
    "  edit STEM [options]       open the module's editor while it renders in real time; the render\n"
    "      options apply (--seconds S closes the window after S seconds); closing writes --state-out\n"
    "  screenshot STEM --out FILE.png [--set \"NAME=VALUE\"...] [--state-in FILE] [--display NAME]\n"
    "                            draw the module's panel off screen (a private Xvfb) into a PNG\n"
    "  patch FILE.json [--realtime] [--osc-base-port N] [--plot FILE.png ...]\n"
    "                            render several instances together, one WAV (and plot) each\n"
    "  live FILE.json [--seconds S] [--driver jack|clock] [--name CLIENT] [--edit NAME]\n"
    "      [--osc-base-port N]   run a patch in real time as a JACK client until SIGINT or SIGTERM\n"
    "  plot FILE.wav [--out FILE.png] [--plot-size WxH] [--plot-range START:END]\n"
    "                            draw every channel of a WAV over time\n"
    "  midi-ports                MIDI output devices for property 64100: system, name\n"
    "  bench [--seconds S] [--block N] [--module STEM]   real-time factor of every module, or of one\n"
    "corvane COMMAND --help describes one command; exit status 0 done, 1 failed while running,\n"
    "2 bad command line or input file (see corvane(1))\n";

int Dispatch(int argc, char** argv) {
    if (argc < 2) throw BR::UsageError("no command given");
    const std::string command = argv[1];
    if (command == "help" || command == "--help" || command == "-h") {
        const char* help = argc > 2 ? BR::CommandHelp(argv[2]) : nullptr;
        if (argc > 2 && !help) throw BR::UsageError("help: no command \"" + std::string(argv[2]) + "\"");
        std::fputs(help ? help : kUsage, stdout);
        return 0;
    }
    if (argc > 2 && (std::strcmp(argv[2], "--help") == 0 || std::strcmp(argv[2], "-h") == 0)) {
        if (const char* help = BR::CommandHelp(command)) {
            std::fputs(help, stdout);
            return 0;
        }
    }
    if (command == "list") {
        if (argc > 2) throw BR::UsageError("list takes no arguments");
        return BR::RunList();
    }
    if (command == "midi-ports") {
        if (argc > 2) throw BR::UsageError("midi-ports takes no arguments");
        return BR::RunMidiPorts();
    }
    if (command == "params") {
        if (argc != 3) throw BR::UsageError("params needs exactly one module stem");
        return BR::RunParams(argv[2]);
    }
    if (command == "render") {
        const BR::RenderJob job = BR::ParseRenderJob(argc, argv, 2);
        const int64_t frames = BR::RunRenderJob(job);
        std::fprintf(stderr, "corvane: wrote %lld frames to %s\n", (long long)frames, job.outputPath.c_str());
        if (!job.plot.path.empty())
            std::fprintf(stderr, "corvane: plotted them to %s\n", job.plot.path.c_str());
        return 0;
    }
    if (command == "edit") return BR::RunEdit(argc, argv);
    if (command == "screenshot") return BR::RunScreenshot(argc, argv);
    if (command == "patch") {
        if (argc < 3 || argv[2][0] == '-') throw BR::UsageError("patch needs exactly one patch file");
        BR::RemoteSettings remote;
        BR::PlotSettings plot;
        BR::ArgumentCursor cursor(argc, argv, 3);
        std::string option;
        while (cursor.Next(option))
            if (!BR::ParseRemoteOption(option, cursor, remote) && !BR::ParsePlotOption(option, cursor, plot))
                throw BR::UsageError("patch: unknown option \"" + option + "\"");
        const BR::Patch patch = BR::ParsePatch(argv[2]);
        const int64_t frames = BR::RunPatch(patch, BR::BuiltModules(), remote, plot);
        for (const BR::PatchInstance& instance : patch.instances) {
            std::fprintf(stderr, "corvane: wrote %lld frames to %s\n", (long long)frames,
                         instance.outPath.c_str());
            if (!plot.path.empty())
                std::fprintf(stderr, "corvane: plotted them to %s\n",
                             BR::InstancePlotPath(plot.path, instance.name).c_str());
        }
        return 0;
    }
    if (command == "live") return BR::RunLive(argc, argv);
    if (command == "plot") return BR::RunPlot(argc, argv);
    if (command == "bench") {
        double seconds = 10;
        unsigned block = 256;
        std::string only;
        BR::ArgumentCursor cursor(argc, argv, 2);
        std::string option;
        while (cursor.Next(option)) {
            if (option == "--seconds") {
                seconds = BR::ParseNumber(cursor.Value(option), "--seconds");
                if (seconds <= 0 || seconds > 3600)
                    throw BR::UsageError("--seconds: must lie above 0 and up to 3600");
            } else if (option == "--block") {
                block = unsigned(BR::ParseInteger(cursor.Value(option), "--block", 1, 1024));
            } else if (option == "--module") {
                only = cursor.Value(option);
                if (!BR::FindCatalogueEntry(only))
                    throw BR::UsageError("--module: no module \"" + only + "\"");
            } else {
                throw BR::UsageError("bench: unknown option \"" + option + "\"");
            }
        }
        return BR::RunBench(seconds, 48000, block, only);
    }
    throw BR::UsageError("unknown command \"" + command + "\"");
}

}  // namespace

// The whole command, entered by main() and, in-process, by tests that drive it with many inputs.
int CorvaneMain(int argc, char** argv) {
    try {
        return Dispatch(argc, argv);
    } catch (const BR::InputError& e) {
        std::fprintf(stderr, "corvane: %s\n", e.what());
        return 2;
    } catch (const BR::UsageError& e) {
        std::fprintf(stderr, "corvane: %s\n%s", e.what(), kUsage);
        return 2;
    } catch (const std::exception& e) {
        std::fprintf(stderr, "corvane: %s\n", e.what());
        return 1;
    }
}

#ifndef CORVANE_CLI_NO_MAIN
int main(int argc, char** argv) {
    // Every module the command makes gets its OSC server and Lua helper. Tests that drive the
    // command in-process run without them.
    BR::InstallRemoteServices();
    // Property 64100 of CV To MIDI opens the system's MIDI output devices by name.
    BR::InstallMidiOutputDevices();
    return CorvaneMain(argc, argv);
}
#endif
