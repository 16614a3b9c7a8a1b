// The presenting shader and the skin background of the panel texture.
#include "ZPmanager.h"

#include <GL/glew.h>

#include "GuiTexture.h"

namespace BR {

namespace {
const char* kVertexShader =
    "varying vec2 uv;\nvoid main()\n{\ngl_Position = ftransform();\nuv = gl_MultiTexCoord0.st;\n}\n";
const char* kFragmentShader =
    "uniform sampler2D tex;\nvarying vec2 uv;\nvoid main()\n{\nvec4 diffuse = texture2D( tex, uv );\n"
    "gl_FragColor.rgba = diffuse.rgba;\n}\n";
}  // namespace

void ZPmanager::SetBackgroundTexture(const std::string& name, int32_t mode) {
    backgroundTexture = AddTexture(name);
    backgroundMode = mode;
}

void ZPmanager::InitRendering() {
    if (!haveShaders) return;
    // Failures of the shaders are not checked: a broken program simply draws nothing different.
    shaderVertex = glCreateShader(GL_VERTEX_SHADER);
    glShaderSource(shaderVertex, 1, &kVertexShader, nullptr);
    glCompileShader(shaderVertex);
    shaderFragment = glCreateShader(GL_FRAGMENT_SHADER);
    glShaderSource(shaderFragment, 1, &kFragmentShader, nullptr);
    glCompileShader(shaderFragment);
    shaderProgram = glCreateProgram();
    glAttachShader(shaderProgram, shaderVertex);
    glAttachShader(shaderProgram, shaderFragment);
    glLinkProgram(shaderProgram);
    shaderTexUniform = glGetUniformLocation(shaderProgram, "tex");
}

ZPmanager::~ZPmanager() {
    DestroyRenderTask();
}

void ZPmanager::ZPRenderingShutdowner::operator()() {
    if (!owner->shaderProgram) return;
    glDetachShader(owner->shaderProgram, owner->shaderVertex);
    glDetachShader(owner->shaderProgram, owner->shaderFragment);
    glDeleteShader(owner->shaderVertex);
    glDeleteShader(owner->shaderFragment);
    glDeleteProgram(owner->shaderProgram);
    owner->shaderVertex = owner->shaderFragment = owner->shaderProgram = 0;
}

void ZPmanager::DrawPanelBackground() {
    if (!backgroundTexture) return;
    if (!backgroundTexture->Load()) return;
    glEnable(GL_TEXTURE_2D);
    backgroundTexture->Bind();
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_REPEAT);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_REPEAT);
    float u = 1, v = 1;
    if (backgroundMode == 1) {
        u = float(panelWidth) / float(backgroundTexture->width);
        v = float(panelHeight) / float(backgroundTexture->height);
    }
    glColor4f(1, 1, 1, 1);
    glBegin(GL_QUADS);
    glTexCoord2f(0, 0), glVertex2f(0, 0);
    glTexCoord2f(u, 0), glVertex2f(float(designWidth), 0);
    glTexCoord2f(u, v), glVertex2f(float(designWidth), float(designHeight));
    glTexCoord2f(0, v), glVertex2f(0, float(designHeight));
    glEnd();
    glDisable(GL_TEXTURE_2D);
}

void ZPmanager::PresentPanelTexture() {
    const bool useShader = gEyeCandy && shaderProgram && backgroundTexture;
    if (useShader) {
        glUseProgram(shaderProgram);
        glUniform1i(shaderTexUniform, 0);
    }
    Manager::PresentPanelTexture();
    if (useShader) glUseProgram(0);
}

}  // namespace BR
