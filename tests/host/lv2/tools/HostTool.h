// corvane_host_tool: what the host test scripts need beside the hosts themselves, a JACK recorder
// that keeps float samples exactly and checks on WAV files that fail loudly with the first mismatch.
#pragma once

#include <string>
#include <vector>

namespace BR::HostTool {

struct Audio {
    int sampleRate = 0;
    std::vector<std::vector<float>> channels;
    size_t Frames() const { return channels.empty() ? 0 : channels[0].size(); }
};

// Throws std::runtime_error with the file's name on failure.
Audio ReadAudio(const std::string& path);
void WriteAudio(const std::string& path, const Audio& audio);

// Subcommands; each returns the process's exit status and prints what it found.
int Capture(const std::vector<std::string>& args);
int DriveCommand(const std::vector<std::string>& args);
int Signal(const std::vector<std::string>& args);
int Transport(const std::vector<std::string>& args);
int ElckSet(const std::vector<std::string>& args);
int Compare(const std::vector<std::string>& args);
int ExpectConstant(const std::vector<std::string>& args);
int ExpectGate(const std::vector<std::string>& args);
int ExpectRamp(const std::vector<std::string>& args);
int ExpectVarying(const std::vector<std::string>& args);
int Crossings(const std::vector<std::string>& args);
int RampGate(const std::vector<std::string>& args);
int MidiFrames(const std::vector<std::string>& args);

}  // namespace BR::HostTool
