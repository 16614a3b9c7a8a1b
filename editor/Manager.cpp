// The manager's construction, parameter access, edit gestures and teardown of the element tree.
#include "Manager.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>

#include "GuiFont.h"
#include "GuiTexture.h"
#include "dialogs/Dialog.h"
#include "framework/ActiveParameter.h"
#include "framework/BrelCorvaneBase.h"
#include "framework/PreferenceStore.h"
#include "widgets/Group.h"

namespace BR {

std::atomic<bool> gEyeCandy{true};
std::atomic<bool> gConstantRedraw{true};
std::atomic<bool> gFloatingTooltip{false};
std::atomic<bool> gShowInstanceNumbers{false};
std::atomic<BrelCorvaneBase*> gTouchedModule{nullptr};
std::atomic<int32_t> gTouchedParameter{-1};
thread_local bool gHoverPass = false;

namespace {
std::atomic<int32_t> managerCounter{0};
}

Manager::Manager(BrelCorvaneBase* module_) : module(module_) {
    gEyeCandy = PreferenceStore::GetInt("Enable eye candy", 1) != 0;
    gConstantRedraw = PreferenceStore::GetInt("Enable constant redraw", 1) != 0;
    gFloatingTooltip = PreferenceStore::GetInt("Enable floating tooltip", 0) != 0;
    int32_t count = 0;
    if (module && module->GetProperty(kPropertyNumTableParameters, &count) != kNoErr) count = 0;
    const ParameterDefinition* table = module ? module->ParameterTable() : nullptr;
    for (int32_t i = 0; i < count && table; ++i) {
        ParameterUiInfo info{};
        std::snprintf(info.name, sizeof info.name, "%s", table[i].name);
        info.unit = table[i].unit;
        info.minimum = table[i].minimum;
        info.maximum = table[i].maximum;
        info.defaultValue = table[i].defaultValue;
        info.module = module;
        info.tableIndex = i;
        parameterInfo.push_back(info);
    }
    rootGroup = new Group(this);
    bannerText = new StaticText;
    tooltipText = new StaticText;
    managerNumber = ++managerCounter;
    SetFontChoices({"Verdana.ttf", "arial.ttf"}, 13, 11, 11);
    SetDesignSize(510, 220);
}

Manager::~Manager() {
    DestroyRenderTask();
    dialog.reset();
    nextDialog.reset();
    // Elements remove themselves from the list as they go.
    while (!elements.empty())
        delete elements.back();
    // Renderers and text items made for this window belong to it, as the elements do.
    for (Effect* effect : animatedElements)
        delete effect;
    for (GuiTexture* texture : textures)
        delete texture;
    for (GuiFont* font : fonts)
        delete font;
    delete mainFont;
    delete labelFont;
    delete textFieldFont;
    delete bannerText;
    delete tooltipText;
    delete shutdowner;
}

void Manager::SetDesignSize(int width, int height) {
    designWidth = windowWidth = panelWidth = width;
    designHeight = windowHeight = panelHeight = height;
    aspect = float(width) / float(height);
    orthoScaleX = 2.0f / float(width);
    orthoScaleY = 2.0f / float(height);
    eyeX = float(width) * 0.5f;
    eyeY = float(height) * 0.5f;
    nearZ = 1.0f / (orthoScaleY * 0.63707024f);
}

void Manager::SetBannerMode(const std::string& mode) {
    bannerMode = mode == "nameOnly" ? 1 : mode == "none" ? 2 : 0;
}

void Manager::SetBannerBounds(float left, float top, float right, float bottom) {
    bannerBounds[0] = left;
    bannerBounds[1] = top;
    bannerBounds[2] = right;
    bannerBounds[3] = bottom;
}

void Manager::SetBannerContent(const std::string& mode, float textX, float statusX_) {
    SetBannerMode(mode);
    bannerTextX = textX;
    statusX = statusX_;
}

void Manager::Animate() {
    rootGroup->Animate();
    for (Effect* effect : animatedElements)
        effect->Animate();
}

int32_t Manager::FindParameter(const std::string& name) const {
    for (size_t i = 0; i < parameterInfo.size(); ++i)
        if (name == parameterInfo[i].name) return int32_t(i);
    return -1;
}

float Manager::GetParameterValue(int32_t parameter) const {
    if (!module || parameter < 0 || parameter >= NumParameters()) return 0.0f;
    return module->GetTableValue(parameter);
}

void Manager::SetParameterValue(int32_t parameter, float value) {
    if (!module || parameter < 0 || parameter >= NumParameters()) return;
    const ParameterUiInfo& info = parameterInfo[size_t(parameter)];
    value = std::clamp(value, std::min(info.minimum, info.maximum), std::max(info.minimum, info.maximum));
    module->SetTableValue(parameter, value);
}

void Manager::BeginParameterEdit(int32_t parameter) {
    if (editedParameter == parameter) return;
    if (editedParameter >= 0 && endEdit) endEdit(editedParameter, callbackContext);
    editedParameter = parameter;
    if (beginEdit) beginEdit(parameter, callbackContext);
    gTouchedModule = module;
    gTouchedParameter = parameter;
    BR::SetActiveParameter(module, parameter);
}

void Manager::EndParameterEdit(int32_t parameter) {
    if (editedParameter != parameter || parameter < 0) return;
    if (endEdit) endEdit(parameter, callbackContext);
    editedParameter = -1;
}

void Manager::BeginGroupEdit(int32_t parameter) {
    if (parameter < 0 || std::find(groupEdited.begin(), groupEdited.end(), parameter) != groupEdited.end())
        return;
    // A single-parameter gesture still open ends first: the host sees no edit nested in another.
    if (editedParameter >= 0) EndParameterEdit(editedParameter);
    groupEdited.push_back(parameter);
    if (beginEdit) beginEdit(parameter, callbackContext);
    gTouchedModule = module;
    gTouchedParameter = parameter;
    BR::SetActiveParameter(module, parameter);
}

void Manager::EndGroupEdits() {
    for (int32_t parameter : groupEdited)
        if (endEdit) endEdit(parameter, callbackContext);
    groupEdited.clear();
}

int32_t Manager::MessageIdForText(const std::string& text) {
    int32_t lowest = -1;
    for (const auto& [id, message] : extraMessages) {
        if (message == text) return id;
        lowest = std::min(lowest, id);
    }
    extraMessages[lowest - 1] = text;
    return lowest - 1;
}

namespace {
const char* UnitText(uint32_t unit) {
    switch (unit) {
        case kUnitPercent:
            return "%";
        case kUnitSeconds:
            return "s";
        case kUnitFrequency:
            return "Hz";
        case kUnitCents:
            return "cents";
        case kUnitRelativeSemitones:
            return "semitones";
        case kUnitDecibels:
            return "dB";
        case kUnitTempo:
            return "bpm";
        case kUnitBeats:
            return "beats";
        case kUnitMilliseconds:
            return "ms";
        default:
            return "";
    }
}
}  // namespace

void Manager::GetParameterTexts(int32_t parameter, std::string& name, std::string& value,
                                std::string& unit) const {
    name.clear(), value.clear(), unit.clear();
    if (!module || parameter < 0 || parameter >= NumParameters()) return;
    const ParameterUiInfo& info = parameterInfo[size_t(parameter)];
    name = info.name;
    char text[64] = {};
    module->GetParameterValueText(parameter, text);
    value = text;
    unit = UnitText(info.unit);
}

void Manager::OpenDialog(std::unique_ptr<Dialog> opened) {
    if (inDialogInput) {
        // The dialog handling input now goes first; this one shows when it closes.
        nextDialog = std::move(opened);
        return;
    }
    std::unique_ptr<Dialog> replaced;
    {
        std::lock_guard<std::mutex> lock(dialogLock);
        replaced = std::move(dialog);
        dialog = std::move(opened);
    }
}

bool Manager::WithDialog(const std::function<void(Dialog&)>& action) {
    std::unique_ptr<Dialog> finished;
    {
        std::lock_guard<std::mutex> lock(dialogLock);
        if (!dialog) return false;
        inDialogInput = true;
        action(*dialog);
        inDialogInput = false;
        if (dialog->Closed()) {
            finished = std::move(dialog);
            dialog = std::move(nextDialog);
        }
    }
    return true;
}

Point Manager::ConvertPoint(Point p) const {
    // Controls stand in design units; a resized window scales its points back onto them.
    if (windowWidth != designWidth && windowWidth > 0) p.x *= float(designWidth) / float(windowWidth);
    if (windowHeight != designHeight && windowHeight > 0) p.y *= float(designHeight) / float(windowHeight);
    return p;
}

GuiTexture* Manager::AddTexture(const std::string& name) {
    for (GuiTexture* texture : textures)
        if (texture->name == name) return texture;
    textures.push_back(new GuiTexture(name));
    return textures.back();
}

void Manager::SetFontChoices(const std::vector<std::string>& names, float mainSize, float labelSize,
                             float fieldSize) {
    auto make = [&names](float size) {
        std::vector<FontChoice> choices;
        for (const std::string& name : names)
            choices.push_back({name, size});
        return new GuiFont(choices);
    };
    delete mainFont;
    delete labelFont;
    delete textFieldFont;
    mainFont = make(mainSize);
    labelFont = make(labelSize);
    textFieldFont = make(fieldSize);
}

void Manager::SetFocusedElement(UIElement* element) {
    if (focusedElement && focusedElement != element) focusedElement->FocusLost();
    focusedElement = element;
    if (element && bridge) bridge->TakeKeyboardFocus();
}

}  // namespace BR
