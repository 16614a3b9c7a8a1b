// A text face named by scripts ("Verdana.ttf"), found through fontconfig and drawn as a texture font.
#pragma once

#include <memory>
#include <string>
#include <vector>

class FTFont;

namespace BR {

struct FontChoice {
    std::string name;
    float size;
};

// The installed file for a script's font name: a name with a '/' is a path taken as it stands,
// otherwise the family (the name without its extension) is matched to the nearest installed face.
// Empty when nothing fits.
std::string ResolveFontFile(const std::string& name);

class GuiFont {
public:
    explicit GuiFont(std::vector<FontChoice> choices);
    ~GuiFont();

    // Render thread: loads the first choice found at size × scale. False, with a message, when none loads.
    bool Load(float scale);
    void ReleaseGL();
    bool Loaded() const { return face != nullptr; }

    // Draws at (x, y) with the baseline at y, in the current colour.
    void Render(const char* text, float x, float y);
    float Advance(const char* text);
    float Descender() const;
    float Ascender() const;
    const std::string& FilePath() const { return filePath; }

private:
    std::vector<FontChoice> choices;
    std::unique_ptr<FTFont> face;
    std::string filePath;
};

}  // namespace BR
