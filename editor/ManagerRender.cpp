// The render thread: initialisation of GL, fonts, textures and the panel texture; the frame loop with
// its seven events; and the orderly teardown.
#include <GL/glew.h>

#include <chrono>
#include <cmath>
#include <cstdio>

#include "GuiFont.h"
#include "GuiTexture.h"
#include "Manager.h"
#include "widgets/Group.h"

namespace BR {

namespace {
constexpr int kWaitMilliseconds = 33;
constexpr int kStopMilliseconds = 5000;
}  // namespace

void Manager::CreateRenderTask(ManagerPlatformBridge* bridge_) {
    if (renderTaskActive) {
        std::fputs("double call to CreateRenderTask()\n", stderr);
        return;
    }
    bridge = bridge_;
    if (bridge) bridge->manager = this;
    delete shutdowner;
    shutdowner = CreateRenderingShutdowner();
    renderThreadDone = false;
    try {
        renderThread = std::thread([this] { RenderThreadMain(); });
        renderTaskActive = 1;
    } catch (const std::system_error& error) {
        std::fprintf(stderr, "failed to create render thread: %d\n", error.code().value());
    }
}

void Manager::DestroyRenderTask() {
    if (!renderTaskActive) return;
    renderEvents.Signal(kRenderQuit);
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(kStopMilliseconds);
    while (!renderThreadDone && std::chrono::steady_clock::now() < deadline)
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    if (renderThreadDone) {
        renderThread.join();
    } else {
        // A thread cannot be ended from outside here: it is let go after the time-out.
        std::fputs("render thread did not stop within 5000 ms; terminated\n", stderr);
        renderThread.detach();
    }
    renderTaskActive = 0;
}

void Manager::RenderThreadMain() {
    InitialiseRendering();
    float previousRate = 0;
    framesPerSecond = 0;
    auto then = std::chrono::steady_clock::now();
    for (;;) {
        const auto drawStart = std::chrono::steady_clock::now();
        Animate();
        RenderFrame();
        drawTime = std::chrono::duration<double>(std::chrono::steady_clock::now() - drawStart).count();
        ++frameCount;
        const auto now = std::chrono::steady_clock::now();
        const double milliseconds =
            double(std::chrono::duration_cast<std::chrono::milliseconds>(now - then).count());
        then = now;
        frameDuration = float(std::max(milliseconds * 1e9 * 0.001 * 1e-9, 1e-06));
        const float rate = 1.0f / frameDuration;
        framesPerSecond = (rate + previousRate) * 0.5f;
        if (framesPerSecond > 1e6f) framesPerSecond = 0;
        previousRate = rate;
        renderTime += frameDuration;
        int event = renderEvents.WaitAny(kWaitMilliseconds);
        if (event == kRenderSuspend) {
            event = renderEvents.WaitAny(-1);
        }
        if (event == kRenderQuit) break;
        if (event == kRenderResized && bridge) {
            bridge->DrawableResized();
            if (glReady) RedrawPanelTexture();
        }
        if (event == kRenderRedrawLabels && glReady) RedrawPanelTexture();
        if (event == kRenderRebuild) {
            TearDownRendering();
            InitialiseRendering();
        }
    }
    TearDownRendering();
    renderThreadDone = true;
}

std::string Manager::BannerString() const {
    char banner[128];
    std::snprintf(banner, sizeof banner, "%scorvane %d.%d.%d", bannerMode == 0 ? "brelmont : " : "", 2, 6, 1);
    return banner;
}

bool Manager::InitialiseRendering() {
    const bool haveContext = bridge && bridge->CreateWindowContext();
    windowWidth = panelWidth = designWidth;
    windowHeight = panelHeight = designHeight;
    int drawableWidth = designWidth, drawableHeight = designHeight;
    if (bridge) bridge->GetDrawableSize(drawableWidth, drawableHeight);
    hiDpi = float(drawableWidth) / float(designWidth) > 1.0f ? 1 : 0;
    glReady = false;
    if (!haveContext) return false;
    bridge->MakeWindowCurrent();
    glewExperimental = GL_TRUE;
    const GLenum glewResult = glewInit();
    if (glewResult != GLEW_OK) {
        std::fprintf(stderr, "GLEW could not be initialised: %s; the editor draws nothing\n",
                     reinterpret_cast<const char*>(glewGetErrorString(glewResult)));
        return false;
    }
    glReady = true;
    haveFramebuffers = !std::getenv("CORVANE_NO_FBO") && GLEW_EXT_framebuffer_object;
    haveShaders = !std::getenv("CORVANE_NO_GLSL") && GLEW_VERSION_2_0;
    glDisable(GL_MULTISAMPLE);
    glHint(GL_POLYGON_SMOOTH_HINT, GL_NICEST);
    for (GuiTexture* texture : textures)
        texture->Load();
    const float scale = float(drawableWidth) / float(designWidth);
    mainFont->Load(scale);
    labelFont->Load(scale);
    textFieldFont->Load(scale);
    for (GuiFont* font : fonts)
        font->Load(scale);
    for (UIElement* element : elements)
        element->CreateGLResources();
    for (UIElement* element : elements)
        element->PrepareGL();
    for (Effect* effect : animatedElements)
        effect->InitGL();
    InitRendering();
    bannerText->SetText(mainFont->Loaded() && bannerMode != 2 ? mainFont : nullptr, BannerString().c_str());
    const int textureWidth = hiDpi ? 2048 : 1024, textureHeight = hiDpi ? 1024 : 512;
    GLuint texture = 0;
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, textureWidth, textureHeight, 0, GL_RGBA, GL_UNSIGNED_BYTE,
                 nullptr);
    panelTexture = texture;
    if (haveFramebuffers) {
        GLuint framebuffer = 0;
        glGenFramebuffersEXT(1, &framebuffer);
        glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, framebuffer);
        glFramebufferTexture2DEXT(GL_FRAMEBUFFER_EXT, GL_COLOR_ATTACHMENT0_EXT, GL_TEXTURE_2D, texture, 0);
        if (glCheckFramebufferStatusEXT(GL_FRAMEBUFFER_EXT) != GL_FRAMEBUFFER_COMPLETE_EXT) {
            glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, 0);
            glDeleteFramebuffersEXT(1, &framebuffer);
            haveFramebuffers = false;
        } else {
            panelFramebuffer = framebuffer;
            glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, 0);
        }
    }
    if (!haveFramebuffers) bridge->CreateOffscreenContext(drawableWidth, drawableHeight);
    RedrawPanelTexture();
    return true;
}

void Manager::RedrawPanelTexture() {
    if (!glReady) return;
    if (panelFramebuffer) {
        glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, panelFramebuffer);
        glDrawBuffer(GL_COLOR_ATTACHMENT0_EXT);
        glViewport(0, 0, panelWidth, panelHeight);
    } else if (!bridge->MakeOffscreenCurrent()) {
        return;
    } else {
        glViewport(0, 0, panelWidth, panelHeight);
    }
    glClearColor(backgroundColour[0], backgroundColour[1], backgroundColour[2], 0.0f);
    glClear(GL_COLOR_BUFFER_BIT);
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_LIGHTING);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(0, designWidth, 0, designHeight, -1, 1);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    DrawPanelBackground();
    if (labelFont && labelFont->Loaded()) {
        for (UIElement* element : elements)
            if (element->IsShown()) element->DrawIntoPanel(labelFont);
    }
    if (panelFramebuffer) {
        glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, 0);
        return;
    }
    glFlush();
    std::vector<uint8_t> pixels(size_t(panelWidth) * size_t(panelHeight) * 3);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadPixels(0, 0, panelWidth, panelHeight, GL_BGR, GL_UNSIGNED_BYTE, pixels.data());
    bridge->MakeWindowCurrent();
    glBindTexture(GL_TEXTURE_2D, panelTexture);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, panelWidth, panelHeight, GL_BGR, GL_UNSIGNED_BYTE, pixels.data());
}

void Manager::PresentPanelTexture() {
    const float textureWidth = hiDpi ? 2048.0f : 1024.0f, textureHeight = hiDpi ? 1024.0f : 512.0f;
    const float u = float(panelWidth) / textureWidth, v = float(panelHeight) / textureHeight;
    glEnable(GL_TEXTURE_2D);
    glBindTexture(GL_TEXTURE_2D, panelTexture);
    glDisable(GL_LIGHTING);
    glDisable(GL_BLEND);
    glColor4f(1, 1, 1, 1);
    glBegin(GL_QUADS);
    glTexCoord2f(0, 0), glVertex2f(-1, -1);
    glTexCoord2f(u, 0), glVertex2f(1, -1);
    glTexCoord2f(u, v), glVertex2f(1, 1);
    glTexCoord2f(0, v), glVertex2f(-1, 1);
    glEnd();
    glDisable(GL_TEXTURE_2D);
}

void Manager::RenderFrame() {
    if (!glReady || !bridge->MakeWindowCurrent()) return;
    glViewport(0, 0, windowWidth, windowHeight);
    glClear(GL_DEPTH_BUFFER_BIT);
    glDepthRange(0.1, 1.0);
    glEnable(GL_DEPTH_TEST);
    glDepthMask(GL_TRUE);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    const double top = nearZ * std::tan(fovY * 0.5 * M_PI / 180.0);
    glFrustum(-top * aspect, top * aspect, -top, top, nearZ, 100.0 * nearZ);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    glTranslatef(-eyeX, -eyeY, -nearZ);
    glEnable(GL_CULL_FACE);
    glEnable(GL_LIGHTING);
    const GLfloat ambient[] = {0.2f, 0.2f, 0.2f, 1}, diffuse[] = {0.6f, 0.6f, 0.6f, 1},
                  specular[] = {0.3f, 0.3f, 0.3f, 1}, position[] = {1, 1, 1, 1},
                  material[] = {0.7f, 0.5f, 0.5f, 1};
    glLightModelfv(GL_LIGHT_MODEL_AMBIENT, ambient);
    glEnable(GL_LIGHT0);
    glLightfv(GL_LIGHT0, GL_DIFFUSE, diffuse);
    glLightfv(GL_LIGHT0, GL_SPECULAR, specular);
    glLightfv(GL_LIGHT0, GL_POSITION, position);
    glMaterialf(GL_FRONT_AND_BACK, GL_SHININESS, 40);
    glMaterialfv(GL_FRONT_AND_BACK, GL_SPECULAR, material);
    glColorMaterial(GL_FRONT_AND_BACK, GL_AMBIENT_AND_DIFFUSE);
    glEnable(GL_COLOR_MATERIAL);
    for (Effect* effect : animatedElements)
        effect->Draw3D();
    glDepthRange(0.0, 0.1);
    glDisable(GL_DEPTH_TEST);
    glDepthMask(GL_FALSE);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    PresentPanelTexture();
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(0, designWidth, 0, designHeight, -1, 1);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    DrawOverlay2D();
    bridge->SwapBuffers();
}

void Manager::TearDownRendering() {
    if (glReady && bridge) bridge->MakeWindowCurrent();
    if (glReady) {
        for (GuiTexture* texture : textures)
            texture->Release();
    }
    mainFont->ReleaseGL();
    labelFont->ReleaseGL();
    textFieldFont->ReleaseGL();
    for (GuiFont* font : fonts)
        font->ReleaseGL();
    bannerText->SetText(nullptr, "");
    tooltipText->SetText(nullptr, "");
    for (StaticText& text : statusTexts)
        text.SetText(nullptr, "");
    if (glReady) {
        for (Effect* effect : animatedElements)
            effect->ReleaseGL();
        if (shutdowner) (*shutdowner)();
        for (const auto& list : displayLists)
            glDeleteLists(list.first, list.second);
        GLuint texture = panelTexture, framebuffer = panelFramebuffer;
        if (texture) glDeleteTextures(1, &texture);
        if (framebuffer) glDeleteFramebuffersEXT(1, &framebuffer);
    }
    displayLists.clear();
    panelTexture = panelFramebuffer = 0;
    glReady = false;
    if (bridge) bridge->DestroyContexts();
}

}  // namespace BR
