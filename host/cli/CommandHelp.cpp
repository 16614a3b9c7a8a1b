// What each command takes and does, as `corvane COMMAND --help` prints it; the manual page
// docs/corvane.1 says the same at length.
#include "CommandHelp.h"

#include <cstring>

namespace BR {

namespace {

struct Help {
    const char* command;
    const char* text;
};

const char* kStatus =
    "Exit status: 0 done; 1 failed while running (a file that cannot be written, the JACK server gone);\n"
    "2 a bad command line or input file, reported in one line before anything is written.\n";

const Help kHelp[] = {
    {"list",
     "usage: corvane list\n"
     "One line per module this build carries: id, stem, name, inputs, outputs (tab-separated).\n"},
    {"params",
     "usage: corvane params STEM\n"
     "One line per parameter row of the module: index (also its OSC id), name, unit, minimum, maximum,\n"
     "default (tab-separated).\n"},
    {"render",
     "usage: corvane render STEM [options]\n"
     "Renders one module offline into a 32-bit float WAV, one channel per module output.\n"
     "  --rate HZ                 sample rate (48000)\n"
     "  --block N                 host block size (256; blocks above 1024 frames are cut)\n"
     "  --frames N | --seconds S  length (the --in file's, else one second)\n"
     "  --set \"NAME=VALUE\"        a parameter row by name; repeatable\n"
     "  --in FILE.wav             module inputs from the file's channels\n"
     "  --event FRAME:HEXBYTES    MIDI bytes at a frame, e.g. 0:903C64; repeatable\n"
     "  --midi FILE.mid           the events of a Standard MIDI File\n"
     "  --state-in FILE  --state-out FILE            the module's state before and after\n"
     "  --calibration-in FILE  --calibration-out FILE  a calibration table before and after\n"
     "  --property ID[=VALUE]     a numbered property; repeatable\n"
     "  --tempo BPM  --position QN  --meter N/D  --stopped  --no-transport\n"
     "  --transport FRAME:play|stop  --loop START:END   the transport the module sees\n"
     "  --out FILE.wav            output file (STEM.wav)\n"
     "  --realtime  --script FILE.lua  --osc-base-port N   remote control while it renders\n"
     "  --plot FILE.png           also draw every output over time\n"
     "  --plot-size WxH           the picture's size in pixels (1000 x 160 per channel + 88)\n"
     "  --plot-range START:END    the stretch of time plotted, in seconds\n"
     "  --midi-out FILE.mid       the MIDI the module sends (CV To MIDI) as a Standard MIDI File,\n"
     "                            format 0, one tick per frame (24000 ticks a quarter at 120 BPM\n"
     "                            for 48000 Hz), each message at the frame it was sent at\n"
     "Renders longer than 5 seconds show their progress on standard error when it is a terminal.\n"},
    {"edit",
     "usage: corvane edit STEM [render options]\n"
     "Opens the module's editor in a window while it renders in real time; --seconds S closes it\n"
     "after S seconds; closing it writes --state-out.\n"},
    {"screenshot",
     "usage: corvane screenshot STEM --out FILE.png [--set \"NAME=VALUE\"]... [--state-in FILE]\n"
     "                          [--display NAME] [--seconds S]\n"
     "Draws the module's panel off screen, under an Xvfb of its own unless --display names an X server,\n"
     "and writes it as a PNG; --set and --state-in set the parameters first, and --seconds S renders\n"
     "S seconds of silent input at 48000 Hz before the picture, so that live displays show that state.\n"},
    {"patch",
     "usage: corvane patch FILE.json [--realtime] [--osc-base-port N] [--plot FILE.png]\n"
     "                               [--plot-size WxH] [--plot-range START:END]\n"
     "Renders the instances of a patch file together, each after those it takes input from, under one\n"
     "transport, one WAV each; --plot draws one picture per instance, FILE-NAME.png; an instance's\n"
     "\"midi_out\" writes the MIDI it sends as --midi-out of render does.\n"},
    {"midi-ports",
     "usage: corvane midi-ports\n"
     "The MIDI output devices that property 64100 of CV To MIDI can name, one line each: the system\n"
     "(alsa: a sequencer port, CLIENT:PORT; jack: a JACK client's MIDI input port, while a server\n"
     "runs), a tab, the name. None found: a note on standard error, status 0.\n"},
    {"live",
     "usage: corvane live FILE.json [--seconds S] [--driver jack|clock] [--name CLIENT] [--edit NAME]\n"
     "                              [--osc-base-port N]\n"
     "Runs a patch in real time as a JACK client (\"corvane\" unless --name says otherwise) until SIGINT,\n"
     "SIGTERM or --seconds, then disconnects and saves the instances' state files. Ports NAME_out_K and\n"
     "NAME_in_K, a MIDI input midi_in; the patch keys \"connect\", \"midi_in\" and \"jack_transport\"\n"
     "(\"follow\" JACK's transport, the default; \"master\": drive it with the patch's transport; \"own\").\n"
     "  --driver clock            a real-time clock and no audio device, for OSC, Lua and MIDI output\n"
     "  --edit NAME               opens instance NAME's editor in a window\n"
     "A signal or --seconds ends it with status 0; when the JACK server goes away, the states are saved\n"
     "and the status is 1; no JACK server is status 2.\n"},
    {"plot",
     "usage: corvane plot FILE.wav [--out FILE.png] [--plot-size WxH] [--plot-range START:END]\n"
     "Draws every channel of a WAV as a trace over time, one lane each, with time in seconds and\n"
     "values on labelled axes, gate edges marked; writes STEM.png in the working folder unless\n"
     "--out names another.\n"},
    {"bench",
     "usage: corvane bench [--seconds S] [--block N] [--module STEM]\n"
     "The real-time factor of every module (or one) rendering S seconds (10) in blocks of N (256).\n"},
};

}  // namespace

const char* CommandHelp(const std::string& command) {
    static std::string texts[sizeof kHelp / sizeof kHelp[0]];
    for (size_t k = 0; k < sizeof kHelp / sizeof kHelp[0]; ++k)
        if (command == kHelp[k].command) {
            if (texts[k].empty()) texts[k] = std::string(kHelp[k].text) + kStatus;
            return texts[k].c_str();
        }
    return nullptr;
}

}  // namespace BR
