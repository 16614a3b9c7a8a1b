// What the manager asks of the window system: contexts, buffers, window size and focus.
#pragma once

namespace BR {

class Manager;

class ManagerPlatformBridge {
public:
    virtual ~ManagerPlatformBridge() = default;
    // Reacts to a finished window resize.
    virtual void DrawableResized() {}
    // Gives the window an OpenGL context and makes it current: RGBA, 24 colour bits, double-buffered,
    // 16 depth bits. False, with the reason on the diagnostic stream, when that is impossible.
    virtual bool CreateWindowContext() = 0;
    virtual bool ContextReady() { return true; }
    // A 24-bit off-screen context for GL without framebuffer objects.
    virtual bool CreateOffscreenContext(int width, int height) = 0;
    virtual bool MakeWindowCurrent() = 0;
    // Also sets the viewport to the off-screen size.
    virtual bool MakeOffscreenCurrent() = 0;
    // Leaves no context current and frees the off-screen and window contexts.
    virtual void DestroyContexts() = 0;
    virtual void SwapBuffers() = 0;
    virtual void TakeKeyboardFocus() {}
    // Resizes the window to (w, h), and a parent window by the same difference.
    virtual void ResizeWindow(int width, int height) = 0;
    // Height in pixels, for the y-flip of pointer positions.
    virtual int GetWindowHeight() = 0;
    virtual void SetCursorArrow() {}
    virtual void SetMouseCaptured() {}
    // Replaces the sizes with the drawable's real size, where that differs.
    virtual void GetDrawableSize(int& width, int& height) { (void)width, (void)height; }
    virtual void Reserved() {}

    Manager* manager = nullptr;
};

}  // namespace BR
