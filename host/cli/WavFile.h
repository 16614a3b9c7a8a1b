// Reading and writing multi-channel float WAV files through libsndfile.
#pragma once

#include <string>
#include <vector>

namespace BR {

struct AudioData {
    int sampleRate = 0;
    std::vector<std::vector<float>> channels;  // one vector per channel, equal lengths
    size_t Frames() const { return channels.empty() ? 0 : channels[0].size(); }
};

// Throws std::runtime_error with a message naming the file.
AudioData ReadWav(const std::string& path);
// Writes 32-bit float WAV; throws std::runtime_error on failure.
void WriteWav(const std::string& path, const AudioData& audio);

}  // namespace BR
