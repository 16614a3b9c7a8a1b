// PNG decoding with libpng's simplified interface, and the texture's GL object.
#include "GuiTexture.h"

#include <GL/glew.h>
#include <png.h>

#include <cstdio>
#include <cstring>

namespace BR {

bool DecodePng(const std::string& name, std::vector<uint8_t>& rgba, int& width, int& height) {
    png_image image;
    std::memset(&image, 0, sizeof image);
    image.version = PNG_IMAGE_VERSION;
    const std::vector<uint8_t>* embedded = FindEmbeddedResource(name);
    const bool opened = embedded
                            ? png_image_begin_read_from_memory(&image, embedded->data(), embedded->size())
                            : png_image_begin_read_from_file(&image, name.c_str());
    if (!opened) {
        std::fprintf(stderr, "texture \"%s\" could not be read: %s\n", name.c_str(), image.message);
        return false;
    }
    image.format = PNG_FORMAT_RGBA;
    width = int(image.width);
    height = int(image.height);
    rgba.assign(PNG_IMAGE_SIZE(image), 0);
    // A negative stride stores the bottom row first.
    if (!png_image_finish_read(&image, nullptr, rgba.data(), -int(PNG_IMAGE_ROW_STRIDE(image)), nullptr)) {
        std::fprintf(stderr, "texture \"%s\" could not be decoded: %s\n", name.c_str(), image.message);
        png_image_free(&image);
        return false;
    }
    return true;
}

bool GuiTexture::Load() {
    if (glName || failed) return glName != 0;
    std::vector<uint8_t> rgba;
    if (!DecodePng(name, rgba, width, height)) {
        failed = true;
        return false;
    }
    GLuint id = 0;
    glGenTextures(1, &id);
    glBindTexture(GL_TEXTURE_2D, id);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, width, height, 0, GL_RGBA, GL_UNSIGNED_BYTE, rgba.data());
    glName = id;
    return true;
}

void GuiTexture::Release() {
    if (glName) {
        GLuint id = glName;
        glDeleteTextures(1, &id);
    }
    glName = 0;
    failed = false;
}

void GuiTexture::Bind() const {
    glBindTexture(GL_TEXTURE_2D, glName);
}

}  // namespace BR
