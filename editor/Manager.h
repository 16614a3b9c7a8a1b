// One open editor of one module instance: the element tree, textures, fonts, focus and hover, and the
// render thread that redraws the window with OpenGL at about 30 frames a second.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "ManagerPlatformBridge.h"
#include "RenderEvents.h"
#include "StaticText.h"
#include "UIElement.h"

class BrelCorvaneBase;
class BrelCorvaneView;

namespace BR {

class Dialog;
class GuiFont;
class GuiTexture;

struct ParameterUiInfo {
    char name[64];
    uint32_t unit;
    float minimum;
    float maximum;
    float defaultValue;
    BrelCorvaneBase* module;
    int32_t tableIndex;
};

// Process-wide flags read from the preferences by each manager's constructor.
extern std::atomic<bool> gEyeCandy;
extern std::atomic<bool> gConstantRedraw;
extern std::atomic<bool> gFloatingTooltip;
// Set by an info display of the Learner while the pointer is on a row.
extern std::atomic<bool> gShowInstanceNumbers;
// The module and table row last touched by an editor, for MIDI learn.
extern std::atomic<BrelCorvaneBase*> gTouchedModule;
extern std::atomic<int32_t> gTouchedParameter;

class Manager {
public:
    // Releases the GL resources of a subclass, on the render thread, at teardown.
    class RenderingShutdowner {
    public:
        virtual ~RenderingShutdowner() = default;
        virtual void operator()() {}
    };

    explicit Manager(BrelCorvaneBase* module);
    virtual ~Manager();
    virtual void Animate();
    virtual void InitRendering() {}
    virtual RenderingShutdowner* CreateRenderingShutdowner() { return new RenderingShutdowner; }
    virtual void PresentPanelTexture();
    virtual void AppendTooltipText(std::string& text) { (void)text; }
    virtual void DrawPanelBackground() {}

    // The script's getWindowSize(): the design size, and the camera that follows from it.
    void SetDesignSize(int width, int height);
    void SetBannerMode(const std::string& mode);
    void SetBannerBounds(float left, float top, float right, float bottom);
    void SetBannerContent(const std::string& mode, float textX, float statusX);
    // Where the status line's text starts, in panel x.
    float StatusLineX() const;
    // The banner's text: with the maker's prefix in the full mode, the name alone in "nameOnly".
    std::string BannerString() const;

    // Starts the render thread drawing through `bridge`.
    void CreateRenderTask(ManagerPlatformBridge* bridge);
    // Quits the render thread, waiting up to 5000 ms.
    void DestroyRenderTask();
    bool RenderTaskActive() const { return renderTaskActive != 0; }
    // Any thread: the labels are drawn into the panel texture anew on the next wake-up.
    void RedrawLabels() { renderEvents.Signal(kRenderRedrawLabels); }
    void SignalRenderEvent(int index) { renderEvents.Signal(index); }

    // Input from the platform, all on the window thread; points are in y-up window space.
    void MouseDown(Point point, uint32_t modifiers, int32_t clickCount, bool isRightButton);
    void MouseMoved(Point point);
    void MouseDragged(Point point, uint32_t modifiers);
    void MouseUp(Point point, uint32_t modifiers);
    void MouseWheel(Point point, float lines, uint32_t modifiers);
    // `typed` marks a character typed on the keyboard, as against a code of the key map: the panel's
    // elements take both alike (46 is Delete and "." there), a dialog's edit field types "." and "-"
    // and deletes only on the Delete key, as the system's own edit fields do.
    bool KeyDown(int32_t character, bool typed = false);
    void FocusLost() { SetFocusedElement(nullptr); }

    // Window thread: shows a modal dialog over the panel; until it closes, pointer and keys go to it
    // alone. One opened while another handles input (a message box after a failed file) follows it.
    void OpenDialog(std::unique_ptr<Dialog> dialog);
    // Window thread: the dialog showing, or null.
    Dialog* ActiveDialog() const { return dialog.get(); }
    // Window thread: runs `action` on the showing dialog under the dialog lock, then retires it if it
    // closed. False when no dialog shows.
    bool WithDialog(const std::function<void(Dialog&)>& action);
    void SetFocusedElement(UIElement* element);

    void BeginParameterEdit(int32_t parameter);
    void EndParameterEdit(int32_t parameter);
    // Writes a table row's value through its parameter object, clamped to its range.
    void SetParameterValue(int32_t parameter, float value);
    float GetParameterValue(int32_t parameter) const;
    int32_t NumParameters() const { return int32_t(parameterInfo.size()); }
    const ParameterUiInfo& ParameterInfo(int32_t parameter) const { return parameterInfo[size_t(parameter)]; }
    // The table row of a name, or -1.
    int32_t FindParameter(const std::string& name) const;
    // The id for a special button's tooltip text: shared by equal texts, from -2 down.
    int32_t MessageIdForText(const std::string& text);
    // Name, value text and unit of the status line for a parameter.
    void GetParameterTexts(int32_t parameter, std::string& name, std::string& value, std::string& unit) const;

    // Window point to panel point.
    Point ConvertPoint(Point windowPoint) const;
    GuiTexture* AddTexture(const std::string& name);
    // The script's getFont, getLabelFont and getTextFieldFont: names tried in order, first found used.
    void SetFontChoices(const std::vector<std::string>& names, float mainSize, float labelSize,
                        float fieldSize);
    // Render thread, between frames: the frame counter and the smoothed rate.
    uint64_t FrameCount() const { return frameCount.load(); }

    // Render-thread internals, public for the renderers and tests.
    bool InitialiseRendering();
    void RedrawPanelTexture();
    void RenderFrame();
    void TearDownRendering();
    void DrawOverlay2D();

    std::vector<UIElement*> elements;
    std::vector<GuiTexture*> textures;
    std::vector<Effect*> animatedElements;
    std::vector<GuiFont*> fonts;
    Group* rootGroup = nullptr;
    ManagerPlatformBridge* bridge = nullptr;
    void (*beginEdit)(int32_t parameter, void* context) = nullptr;
    void (*endEdit)(int32_t parameter, void* context) = nullptr;
    void (*setCapture)(void* context) = nullptr;
    void (*releaseCapture)(void* context) = nullptr;
    void* callbackContext = nullptr;
    UIElement* pressedElement = nullptr;
    uint32_t pressedModifiers = 0;
    GuiFont* mainFont = nullptr;
    GuiFont* labelFont = nullptr;
    GuiFont* textFieldFont = nullptr;
    StaticText* bannerText = nullptr;
    StaticText* tooltipText = nullptr;
    std::vector<ParameterUiInfo> parameterInfo;
    int32_t managerNumber = 0;
    uint32_t panelTexture = 0;
    uint32_t panelFramebuffer = 0;
    std::map<UIElement*, Box> hoveredElements;
    UIElement* tooltipElement = nullptr;
    int32_t hoveredParameter = -1;
    int32_t editedParameter = -1;
    float tooltipAlpha = 0;
    float tooltipBox[4] = {0, 0, 0, 0};
    UIElement* focusedElement = nullptr;
    std::map<int32_t, std::string> extraMessages;
    float bannerColour[4] = {0.1f, 0.1f, 0.15f, 0.3f};
    float bannerTextColour[4] = {0.9f, 0.9f, 0.9f, 1.0f};
    float backgroundColour[3] = {0.4f, 0.4f, 0.4f};
    int32_t bannerMode = 0;
    float bannerBounds[4] = {10, 195, 440, 210};
    float bannerTextX = 60;
    float statusX = -1;
    float aspect = 1, fovY = 65, orthoScaleX = 1, orthoScaleY = 1, nearZ = 1, eyeX = 0, eyeY = 0;
    float framesPerSecond = 0;
    // Seconds the last frame took to animate and draw, without the wait for events.
    std::atomic<double> drawTime{0};
    float frameDuration = 0;
    double renderTime = 0;
    int32_t panelWidth = 0, panelHeight = 0;
    int32_t designWidth = 0, designHeight = 0;
    int32_t windowWidth = 0, windowHeight = 0;
    uint8_t hiDpi = 0;
    uint8_t resizing = 0;
    float resizeStartX = 0, resizeStartY = 0;
    int32_t resizeStartWidth = 0, resizeStartHeight = 0;
    StaticText statusTexts[7];
    int32_t renderTaskActive = 0;
    std::thread renderThread;
    RenderEventSet renderEvents;
    std::vector<std::pair<uint32_t, int32_t>> displayLists;
    RenderingShutdowner* shutdowner = nullptr;
    BrelCorvaneBase* module = nullptr;
    BrelCorvaneView* view = nullptr;
    // Returns the host's modifier state; null when the host has none.
    uint32_t (*hostModifiers)(void* context) = nullptr;
    // A drop-down or other element that draws over everything while open.
    UIElement* overlayElement = nullptr;
    // What the renderers draw from: true once GLEW initialised and a context exists.
    bool glReady = false;
    bool haveFramebuffers = false;
    bool haveShaders = false;
    // The modal dialog: swapped and changed by the window thread, drawn by the render thread, both
    // under `dialogLock`.
    std::mutex dialogLock;
    std::unique_ptr<Dialog> dialog;
    std::unique_ptr<Dialog> nextDialog;
    bool inDialogInput = false;
    // Set true by the render thread when it has finished; for the orderly stop.
    std::atomic<bool> renderThreadDone{false};

private:
    void RenderThreadMain();
    void DrawStatusLine();
    void DrawTooltip();
    int32_t shownMessageId = -1;
    std::string shownMessage;
    float light1[2] = {0, 0};
    std::atomic<uint64_t> frameCount{0};
};

// True while MouseMoved asks HitTest: a group without children then counts its own rectangle.
extern thread_local bool gHoverPass;

}  // namespace BR
