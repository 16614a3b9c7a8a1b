// A PNG texture named by a script: loaded with libpng on the render thread, from the resources built
// into the program or from a file.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace BR {

// The images built into the program ("buttons.png"); null when there is no such name.
const std::vector<uint8_t>* FindEmbeddedResource(const std::string& name);

// Decodes a PNG into RGBA rows, bottom row first (GL's order). False, with a message, on failure.
bool DecodePng(const std::string& name, std::vector<uint8_t>& rgba, int& width, int& height);

class GuiTexture {
public:
    explicit GuiTexture(std::string name) : name(std::move(name)) {}
    // Render thread. False, with a message, when the image is missing or broken; then nothing binds.
    bool Load();
    void Release();
    // Binds it to GL_TEXTURE_2D, or unbinds when not loaded.
    void Bind() const;
    bool Loaded() const { return glName != 0; }

    std::string name;
    uint32_t glName = 0;
    int width = 0;
    int height = 0;
    bool failed = false;
};

}  // namespace BR
