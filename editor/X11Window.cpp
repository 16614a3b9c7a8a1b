// X11 and GLX for the editor: window, contexts, events to the manager, and resizing.
#include "X11Window.h"

#include <GL/glew.h>
#include <GL/glx.h>
#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/keysym.h>
#include <poll.h>

#include <cstdio>
#include <cstdlib>
#include <mutex>

#include "Manager.h"

namespace BR {

namespace {
int visualAttributes[] = {GLX_RGBA, GLX_DOUBLEBUFFER, GLX_RED_SIZE, 8,   GLX_GREEN_SIZE, 8, GLX_BLUE_SIZE,
                          8,        GLX_DEPTH_SIZE,   16,           None};
constexpr unsigned long kDoubleClickMilliseconds = 400;

void InitThreadsOnce() {
    static std::once_flag once;
    std::call_once(once, [] { XInitThreads(); });
}

// X errors (a lost GLX drawable, a refused context) become messages, not an exit of the process.
int ReportXError(Display* display, XErrorEvent* error) {
    char text[256];
    XGetErrorText(display, error->error_code, text, sizeof text);
    std::fprintf(stderr, "X error: %s (request %d)\n", text, int(error->request_code));
    return 0;
}
}  // namespace

X11Window::~X11Window() {
    Close();
}

bool X11Window::Open(int w, int h, const std::string& title, unsigned long parent, const char* name) {
    InitThreadsOnce();
    XSetErrorHandler(ReportXError);
    const char* chosen = name ? name : std::getenv("DISPLAY");
    displayName = chosen ? chosen : "";
    display = XOpenDisplay(name);
    if (!display) {
        lastError = "cannot open the X display \"" + displayName + "\"";
        std::fprintf(stderr, "editor: %s\n", lastError.c_str());
        return false;
    }
    int errorBase = 0, eventBase = 0;
    if (!glXQueryExtension(display, &errorBase, &eventBase)) {
        lastError = "the X display \"" + displayName + "\" has no GLX extension";
        std::fprintf(stderr, "editor: %s\n", lastError.c_str());
        XCloseDisplay(display);
        display = nullptr;
        return false;
    }
    XVisualInfo* visual = glXChooseVisual(display, DefaultScreen(display), visualAttributes);
    if (!visual) {
        lastError = "no double-buffered RGB visual with a depth buffer on \"" + displayName + "\"";
        std::fprintf(stderr, "editor: %s\n", lastError.c_str());
        XCloseDisplay(display);
        display = nullptr;
        return false;
    }
    parentWindow = parent ? parent : RootWindow(display, visual->screen);
    XSetWindowAttributes attributes{};
    attributes.colormap =
        XCreateColormap(display, RootWindow(display, visual->screen), visual->visual, AllocNone);
    attributes.background_pixel = 0;
    attributes.border_pixel = 0;
    attributes.event_mask = ExposureMask | StructureNotifyMask | PointerMotionMask | ButtonPressMask |
                            ButtonReleaseMask | KeyPressMask | FocusChangeMask | EnterWindowMask |
                            LeaveWindowMask;
    window =
        XCreateWindow(display, parentWindow, 0, 0, unsigned(w), unsigned(h), 0, visual->depth, InputOutput,
                      visual->visual, CWColormap | CWBackPixel | CWBorderPixel | CWEventMask, &attributes);
    XFree(visual);
    width = w;
    height = h;
    XStoreName(display, window, title.c_str());
    deleteAtom = XInternAtom(display, "WM_DELETE_WINDOW", False);
    Atom protocols[] = {Atom(deleteAtom)};
    XSetWMProtocols(display, window, protocols, 1);
    clipboardAtom = XInternAtom(display, "CLIPBOARD", False);
    utf8Atom = XInternAtom(display, "UTF8_STRING", False);
    targetsAtom = XInternAtom(display, "TARGETS", False);
    XMapRaised(display, window);
    XSync(display, False);
    closed = false;
    return true;
}

void X11Window::Close() {
    if (!display) return;
    XDestroyWindow(display, window);
    XCloseDisplay(display);
    display = nullptr;
    window = 0;
}

bool X11Window::CreateWindowContext() {
    if (!window) return false;
    renderDisplay = XOpenDisplay(displayName.empty() ? nullptr : displayName.c_str());
    XVisualInfo* visual = renderDisplay
                              ? glXChooseVisual(renderDisplay, DefaultScreen(renderDisplay), visualAttributes)
                              : nullptr;
    if (visual) context = glXCreateContext(renderDisplay, visual, nullptr, True);
    if (visual) XFree(visual);
    if (!context || !glXMakeCurrent(renderDisplay, window, context)) {
        // The title of the system's error box, then its text.
        std::fprintf(stderr, "Error: no OpenGL context for the editor window on \"%s\"\n",
                     displayName.c_str());
        DestroyContexts();
        return false;
    }
    return true;
}

bool X11Window::CreateOffscreenContext(int w, int h) {
    (void)w, (void)h;
    if (!renderDisplay) return false;
    // A pixel buffer of 1024 by 512, sharing textures with the window's context (glyphs and the panel), with
    // 24 colour bits stands for the bitmap context.
    offscreenWidth = 1024;
    offscreenHeight = 512;
    const int configAttributes[] = {GLX_DRAWABLE_TYPE,
                                    GLX_PBUFFER_BIT,
                                    GLX_RENDER_TYPE,
                                    GLX_RGBA_BIT,
                                    GLX_RED_SIZE,
                                    8,
                                    GLX_GREEN_SIZE,
                                    8,
                                    GLX_BLUE_SIZE,
                                    8,
                                    GLX_DEPTH_SIZE,
                                    16,
                                    None};
    int count = 0;
    GLXFBConfig* configs =
        glXChooseFBConfig(renderDisplay, DefaultScreen(renderDisplay), configAttributes, &count);
    if (configs && count > 0) {
        const int bufferAttributes[] = {GLX_PBUFFER_WIDTH, offscreenWidth, GLX_PBUFFER_HEIGHT,
                                        offscreenHeight, None};
        offscreenGlxPixmap = glXCreatePbuffer(renderDisplay, configs[0], bufferAttributes);
        if (offscreenGlxPixmap)
            offscreenContext = glXCreateNewContext(renderDisplay, configs[0], GLX_RGBA_TYPE, context, True);
    }
    if (configs) XFree(configs);
    if (!offscreenContext) {
        std::fputs("editor: no off-screen context; the panel texture stays empty\n", stderr);
        return false;
    }
    return true;
}

bool X11Window::MakeWindowCurrent() {
    return context && glXMakeCurrent(renderDisplay, window, context);
}

bool X11Window::MakeOffscreenCurrent() {
    if (!offscreenContext ||
        !glXMakeContextCurrent(renderDisplay, offscreenGlxPixmap, offscreenGlxPixmap, offscreenContext))
        return false;
    glViewport(0, 0, offscreenWidth, offscreenHeight);
    return true;
}

void X11Window::DestroyContexts() {
    if (!renderDisplay) return;
    glXMakeCurrent(renderDisplay, None, nullptr);
    if (offscreenContext) glXDestroyContext(renderDisplay, offscreenContext);
    if (offscreenGlxPixmap) glXDestroyPbuffer(renderDisplay, offscreenGlxPixmap);
    if (context) glXDestroyContext(renderDisplay, context);
    offscreenContext = nullptr;
    offscreenGlxPixmap = 0;
    context = nullptr;
    XCloseDisplay(renderDisplay);
    renderDisplay = nullptr;
}

void X11Window::SwapBuffers() {
    if (context) glXSwapBuffers(renderDisplay, window);
}

void X11Window::TakeKeyboardFocus() {
    if (display) XSetInputFocus(display, window, RevertToParent, CurrentTime);
}

void X11Window::ResizeWindow(int w, int h) {
    if (!display) return;
    const int dw = w - width, dh = h - height;
    XResizeWindow(display, window, unsigned(w), unsigned(h));
    Window root = 0;
    if (parentWindow && parentWindow != RootWindow(display, DefaultScreen(display))) {
        // The host's frame follows by the same difference.
        int x, y;
        unsigned pw, ph, border, depth;
        if (XGetGeometry(display, parentWindow, &root, &x, &y, &pw, &ph, &border, &depth))
            XResizeWindow(display, parentWindow, unsigned(int(pw) + dw), unsigned(int(ph) + dh));
    }
    width = w;
    height = h;
    XFlush(display);
}

void X11Window::GetDrawableSize(int& w, int& h) {
    if (width > 0 && height > 0 && manager && manager->designWidth > 0) {
        // The window is made at the design size, so the drawable matches it until a resize.
        w = manager->designWidth;
        h = manager->designHeight;
    }
}

int32_t X11Window::MapKey(unsigned long keysym, const char* text, int length) {
    switch (keysym) {
        case XK_Left:
        case XK_KP_Left:
            return 28;
        case XK_Right:
        case XK_KP_Right:
            return 29;
        case XK_Up:
        case XK_KP_Up:
            return 30;
        case XK_Down:
        case XK_KP_Down:
            return 31;
        case XK_BackSpace:
            return 8;
        case XK_Delete:
        case XK_KP_Delete:
            return 46;
        case XK_Insert:
        case XK_KP_Insert:
            return 45;
        case XK_Return:
            return 13;
        case XK_KP_Enter:
            return 3;
        default:
            break;
    }
    return length > 0 ? int32_t(static_cast<unsigned char>(text[0])) : 0;
}

uint32_t X11Window::MapModifiers(unsigned int state) {
    uint32_t bits = 0;
    if (state & ShiftMask) bits |= kModShift;
    if (state & ControlMask) bits |= kModControl;
    if (state & Mod1Mask) bits |= kModAlt;
    return bits;
}

void X11Window::SetClipboardText(const std::string& text) {
    if (!display) return;
    clipboardText = text;
    XSetSelectionOwner(display, Atom(clipboardAtom), window, CurrentTime);
    XFlush(display);
}

bool X11Window::ProcessEvents(int milliseconds) {
    if (!display) return false;
    if (!XPending(display) && milliseconds > 0) {
        pollfd descriptor{ConnectionNumber(display), POLLIN, 0};
        poll(&descriptor, 1, milliseconds);
    }
    while (!closed && XPending(display)) {
        XEvent event;
        XNextEvent(display, &event);
        HandleEvent(event);
    }
    return !closed;
}

void X11Window::HandleEvent(XEvent& event) {
    Manager* m = manager;
    switch (event.type) {
        case ClientMessage:
            if (Atom(event.xclient.data.l[0]) == Atom(deleteAtom)) closed = true;
            break;
        case DestroyNotify:
            if (event.xdestroywindow.window == window) closed = true;
            break;
        case ConfigureNotify:
            width = event.xconfigure.width;
            height = event.xconfigure.height;
            break;
        case MotionNotify: {
            if (!m) break;
            const Point p{float(event.xmotion.x), float(height - event.xmotion.y)};
            if (buttonsDown)
                m->MouseDragged(p, MapModifiers(event.xmotion.state));
            else
                m->MouseMoved(p);
            break;
        }
        case ButtonPress: {
            if (!m) break;
            const Point p{float(event.xbutton.x), float(height - event.xbutton.y)};
            const uint32_t modifiers = MapModifiers(event.xbutton.state);
            if (event.xbutton.button == Button4 || event.xbutton.button == Button5) {
                // The wheel is ignored during a press.
                if (!buttonsDown) m->MouseWheel(p, event.xbutton.button == Button4 ? 1.0f : -1.0f, modifiers);
                break;
            }
            if (event.xbutton.button != Button1 && event.xbutton.button != Button2 &&
                event.xbutton.button != Button3)
                break;
            // A second press of the same button, near in place and time, is a double click (count 2);
            // a third starts over, as the window system's double-click message does.
            const bool near =
                std::abs(event.xbutton.x - lastClickX) <= 4 && std::abs(event.xbutton.y - lastClickY) <= 4;
            lastClickCount = near && lastClickCount == 1 && event.xbutton.button == lastClickButton &&
                                     event.xbutton.time - lastClickTime <= kDoubleClickMilliseconds
                                 ? 2
                                 : 1;
            lastClickTime = event.xbutton.time;
            lastClickX = event.xbutton.x;
            lastClickY = event.xbutton.y;
            lastClickButton = event.xbutton.button;
            // A press takes the keyboard, so that typing reaches the panel inside a host's window.
            if (!buttonsDown) XSetInputFocus(display, window, RevertToParent, event.xbutton.time);
            ++buttonsDown;
            m->MouseDown(p, modifiers, lastClickCount, event.xbutton.button == Button3);
            break;
        }
        case ButtonRelease: {
            if (!m || event.xbutton.button < Button1 || event.xbutton.button > Button3 || !buttonsDown) break;
            --buttonsDown;
            m->MouseUp(Point{float(event.xbutton.x), float(height - event.xbutton.y)},
                       MapModifiers(event.xbutton.state));
            break;
        }
        case KeyPress: {
            if (!m) break;
            char text[8] = {};
            KeySym keysym = 0;
            const int length = XLookupString(&event.xkey, text, sizeof text, &keysym, nullptr);
            const int32_t character = MapKey(keysym, text, length);
            // A character of the key's own text, not a code the key map put in its place.
            const bool typed = length > 0 && character == int32_t(static_cast<unsigned char>(text[0]));
            if (character) m->KeyDown(character, typed);
            break;
        }
        case SelectionClear:
            if (event.xselectionclear.selection == Atom(clipboardAtom)) clipboardText.clear();
            break;
        case SelectionRequest: {
            // Another client pastes: hand over the text as UTF-8 or Latin-1 string, or the list of targets.
            const XSelectionRequestEvent& request = event.xselectionrequest;
            XSelectionEvent reply{};
            reply.type = SelectionNotify;
            reply.requestor = request.requestor;
            reply.selection = request.selection;
            reply.target = request.target;
            reply.time = request.time;
            reply.property = None;
            const Atom property = request.property ? request.property : request.target;
            if (request.selection == Atom(clipboardAtom)) {
                if (request.target == Atom(targetsAtom)) {
                    const Atom targets[] = {Atom(targetsAtom), Atom(utf8Atom), XA_STRING};
                    XChangeProperty(display, request.requestor, property, XA_ATOM, 32, PropModeReplace,
                                    reinterpret_cast<const unsigned char*>(targets), 3);
                    reply.property = property;
                } else if (request.target == Atom(utf8Atom) || request.target == XA_STRING) {
                    XChangeProperty(display, request.requestor, property, request.target, 8, PropModeReplace,
                                    reinterpret_cast<const unsigned char*>(clipboardText.data()),
                                    int(clipboardText.size()));
                    reply.property = property;
                }
            }
            XSendEvent(display, request.requestor, False, NoEventMask, reinterpret_cast<XEvent*>(&reply));
            XFlush(display);
            break;
        }
        case FocusOut:
            // Only a real loss of the keyboard, not the pointer's passing or our own focus change.
            if (m && event.xfocus.mode == NotifyNormal && event.xfocus.detail != NotifyPointer &&
                event.xfocus.detail != NotifyInferior)
                m->FocusLost();
            break;
        default:
            break;
    }
}

}  // namespace BR
