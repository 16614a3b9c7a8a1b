// Font look-up through fontconfig and texture fonts through FTGL.
#include "GuiFont.h"

#include <FTGL/ftgl.h>
#include <fontconfig/fontconfig.h>
#include <sys/stat.h>

#include <cstdio>

namespace BR {

std::string ResolveFontFile(const std::string& name) {
    if (name.find('/') != std::string::npos) {
        struct stat info;
        return stat(name.c_str(), &info) == 0 ? name : std::string();
    }
    std::string family = name;
    const size_t dot = family.rfind('.');
    if (dot != std::string::npos) family.resize(dot);
    if (!FcInit()) return {};
    FcPattern* pattern = FcNameParse(reinterpret_cast<const FcChar8*>(family.c_str()));
    if (!pattern) return {};
    FcConfigSubstitute(nullptr, pattern, FcMatchPattern);
    FcDefaultSubstitute(pattern);
    FcResult result = FcResultNoMatch;
    FcPattern* match = FcFontMatch(nullptr, pattern, &result);
    std::string path;
    if (match) {
        FcChar8* file = nullptr;
        if (FcPatternGetString(match, FC_FILE, 0, &file) == FcResultMatch && file)
            path = reinterpret_cast<const char*>(file);
        FcPatternDestroy(match);
    }
    FcPatternDestroy(pattern);
    return path;
}

GuiFont::GuiFont(std::vector<FontChoice> choices_) : choices(std::move(choices_)) {}

GuiFont::~GuiFont() = default;

bool GuiFont::Load(float scale) {
    face.reset();
    for (const FontChoice& choice : choices) {
        const std::string path = ResolveFontFile(choice.name);
        if (path.empty()) continue;
        auto candidate = std::make_unique<FTTextureFont>(path.c_str());
        if (candidate->Error()) continue;
        candidate->FaceSize(unsigned(choice.size * scale + 0.5f));
        candidate->UseDisplayList(false);
        face = std::move(candidate);
        filePath = path;
        return true;
    }
    std::string names;
    for (const FontChoice& choice : choices)
        names += (names.empty() ? "\"" : ", \"") + choice.name + "\"";
    std::fprintf(stderr, "font not found: %s; text is not drawn\n", names.c_str());
    return false;
}

void GuiFont::ReleaseGL() {
    face.reset();
}

void GuiFont::Render(const char* text, float x, float y) {
    if (face) face->Render(text, -1, FTPoint(x, y));
}

float GuiFont::Advance(const char* text) {
    return face ? face->Advance(text) : 0.0f;
}

float GuiFont::Descender() const {
    return face ? face->Descender() : 0.0f;
}

float GuiFont::Ascender() const {
    return face ? face->Ascender() : 0.0f;
}

}  // namespace BR
