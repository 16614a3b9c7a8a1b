// The editor's window on X11 with a GLX context: a top-level window of the corvane command, or a child
// of a host's parent window. The window thread reads its events and hands them to the manager; the
// render thread draws through a connection of its own.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>

#include "ManagerPlatformBridge.h"

typedef struct _XDisplay Display;
typedef struct __GLXcontextRec* GLXContext;
typedef union _XEvent XEvent;

namespace BR {

class X11Window : public ManagerPlatformBridge {
public:
    X11Window() = default;
    ~X11Window() override;

    // Window thread: connects to `displayName` (null: $DISPLAY), checks for GLX and opens the window,
    // under `parent` when not 0. False, with the reason in LastError() and on the diagnostic stream.
    bool Open(int width, int height, const std::string& title, unsigned long parent = 0,
              const char* displayName = nullptr);
    void Close();
    // Window thread: hands every pending event to the manager, waiting up to `milliseconds` for the
    // first. False once the window has been closed by the user or the window system.
    bool ProcessEvents(int milliseconds);
    unsigned long WindowId() const { return window; }
    // Window thread: offers `text` as the CLIPBOARD selection (UTF-8), answered while events are handled.
    void SetClipboardText(const std::string& text);
    const std::string& ClipboardText() const { return clipboardText; }
    bool IsOpen() const { return display != nullptr; }
    const std::string& LastError() const { return lastError; }

    bool CreateWindowContext() override;
    bool CreateOffscreenContext(int width, int height) override;
    bool MakeWindowCurrent() override;
    bool MakeOffscreenCurrent() override;
    void DestroyContexts() override;
    void SwapBuffers() override;
    void TakeKeyboardFocus() override;
    void ResizeWindow(int width, int height) override;
    int GetWindowHeight() override { return height.load(); }
    void GetDrawableSize(int& w, int& h) override;

    // The key map of the view: arrows 28 to 31, Backspace 8, Delete 46, Insert 45, else the character;
    // 0 for keys that carry none.
    static int32_t MapKey(unsigned long keysym, const char* text, int length);
    // X modifier state to the controls' bits.
    static uint32_t MapModifiers(unsigned int state);

private:
    void HandleEvent(XEvent& event);

    Display* display = nullptr;        // the window thread's connection
    Display* renderDisplay = nullptr;  // the render thread's connection
    unsigned long window = 0;
    unsigned long parentWindow = 0;
    unsigned long deleteAtom = 0;
    std::string displayName;
    GLXContext context = nullptr;
    GLXContext offscreenContext = nullptr;
    unsigned long offscreenGlxPixmap = 0;
    int offscreenWidth = 0, offscreenHeight = 0;
    std::atomic<int> width{0}, height{0};
    bool closed = false;
    int buttonsDown = 0;
    unsigned long lastClickTime = 0;
    int lastClickX = -100, lastClickY = -100, lastClickCount = 0;
    unsigned int lastClickButton = 0;
    std::string lastError;
    std::string clipboardText;
    unsigned long clipboardAtom = 0, utf8Atom = 0, targetsAtom = 0;
};

}  // namespace BR
