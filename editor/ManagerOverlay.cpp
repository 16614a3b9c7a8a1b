// The 2-D overlay of each frame: banner, status line, instance numbers, controls, an open drop-down
// and the floating tooltip.
#include <GL/glew.h>

#include <cstdio>

#include "GuiFont.h"
#include "Manager.h"
#include "dialogs/Dialog.h"
#include "framework/BrelCorvaneBase.h"
#include "framework/InstanceRegistry.h"
#include "widgets/Group.h"

namespace BR {

void Manager::DrawOverlay2D() {
    glDisable(GL_CULL_FACE);
    glEnable(GL_LIGHTING);
    const GLfloat ambient[] = {0.2f, 0.2f, 0.2f, 1}, diffuse0[] = {0.8f, 0.8f, 0.8f, 1},
                  specular0[] = {0.2f, 0.2f, 0.2f, 1}, position0[] = {0.6f, 0.6f, 0.5f, 0},
                  diffuse1[] = {0.9f, 0.9f, 0.9f, 1}, specular1[] = {0.5f, 0.5f, 0.7f, 1},
                  material[] = {0.5f, 0.5f, 0.5f, 1};
    glLightModelfv(GL_LIGHT_MODEL_AMBIENT, ambient);
    glLightfv(GL_LIGHT0, GL_DIFFUSE, diffuse0);
    glLightfv(GL_LIGHT0, GL_SPECULAR, specular0);
    glLightfv(GL_LIGHT0, GL_POSITION, position0);
    // The second light drifts towards the element under the pointer.
    if (UIElement* target = tooltipElement) {
        Box box;
        target->GetBounds(box);
        const Point offset = target->ParentOffset();
        light1[0] = 0.1f * ((box.v[0] + box.v[3]) * 0.5f + offset.x) + 0.9f * light1[0];
        light1[1] = 0.1f * ((box.v[1] + box.v[4]) * 0.5f + offset.y) + 0.9f * light1[1];
    }
    const GLfloat position1[] = {light1[0], light1[1], 60.0f, 1};
    glEnable(GL_LIGHT1);
    glLightfv(GL_LIGHT1, GL_DIFFUSE, diffuse1);
    glLightfv(GL_LIGHT1, GL_SPECULAR, specular1);
    glLightfv(GL_LIGHT1, GL_POSITION, position1);
    glMaterialf(GL_FRONT_AND_BACK, GL_SHININESS, 40);
    glMaterialfv(GL_FRONT_AND_BACK, GL_SPECULAR, material);
    glEnable(GL_COLOR_MATERIAL);
    glDisable(GL_LIGHTING);  // flat colours for banner and text; renderers light their own quads

    if (mainFont->Loaded()) {
        glEnable(GL_BLEND);
        glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
        glColor4fv(bannerColour);
        glRectf(bannerBounds[0], bannerBounds[1], bannerBounds[2], bannerBounds[3]);
        glColor4fv(bannerTextColour);
        if (bannerMode != 2) bannerText->DrawAt(bannerTextX, bannerBounds[1] - mainFont->Descender());
        DrawStatusLine();
        if (gShowInstanceNumbers && module) {
            std::lock_guard<std::recursive_mutex> lock(InstanceRegistry::Lock());
            uint32_t localId = 0, globalId = 0;
            InstanceRegistry::PeekInstanceIds(module, localId, globalId);
            char numbers[32];
            std::snprintf(numbers, sizeof numbers, "%d (%d)", int(localId), int(globalId));
            statusTexts[6].SetText(mainFont, numbers);
            statusTexts[6].DrawAt(bannerBounds[2] - mainFont->Advance("00 (00) "),
                                  bannerBounds[1] - mainFont->Descender());
        }
    }
    rootGroup->Draw();
    for (Effect* effect : animatedElements)
        effect->Draw();
    if (overlayElement) rootGroup->DrawOverlay();
    DrawTooltip();
    {
        std::lock_guard<std::mutex> lock(dialogLock);
        if (dialog) dialog->Draw(mainFont, designWidth, designHeight);
    }
    glDisable(GL_BLEND);
}

float Manager::StatusLineX() const {
    // A negative start means "just right of the middle".
    return statusX < 0 ? float(designWidth) * 0.5f + (bannerMode == 2 ? 25.0f : 15.0f) : statusX;
}

void Manager::DrawStatusLine() {
    const int32_t id = editedParameter >= 0 ? editedParameter : hoveredParameter;
    if (id == -1) return;
    float x = StatusLineX();
    const float y = bannerBounds[1] - mainFont->Descender();
    glColor4fv(bannerTextColour);
    if (id < -1) {
        if (id != shownMessageId) {
            auto it = extraMessages.find(id);
            shownMessage = it == extraMessages.end() ? std::string() : it->second;
            shownMessageId = id;
        }
        statusTexts[0].SetText(mainFont, shownMessage.c_str());
        statusTexts[0].DrawAt(x, y);
        return;
    }
    shownMessageId = id;
    std::string name, value, unit;
    GetParameterTexts(id, name, value, unit);
    statusTexts[0].SetText(mainFont, name.c_str());
    statusTexts[1].SetText(mainFont, value.c_str());
    statusTexts[2].SetText(mainFont, unit.c_str());
    statusTexts[0].DrawAt(x, y);
    x += statusTexts[0].Width() + 7.0f;
    statusTexts[1].DrawAt(x, y);
    x += statusTexts[1].Width() + 3.0f;
    statusTexts[2].DrawAt(x, y);
}

void Manager::DrawTooltip() {
    if (!gFloatingTooltip || !mainFont->Loaded()) return;
    UIElement* target = hoveredParameter >= 0 ? tooltipElement : nullptr;
    if (target) {
        tooltipAlpha = tooltipAlpha * 0.84f + 0.16f;
        std::string name, value, unit;
        GetParameterTexts(hoveredParameter, name, value, unit);
        std::string text = name + " " + value + (unit.empty() ? "" : " " + unit);
        AppendTooltipText(text);
        tooltipText->SetText(mainFont, text.c_str());
        Box box;
        target->GetBounds(box);
        const Point offset = target->ParentOffset();
        const float centre = (box.v[0] + box.v[3]) * 0.5f + offset.x;
        float left = centre - tooltipText->Width() * 0.5f;
        left = std::max(5.0f, std::min(left, float(designWidth) - 5.0f - tooltipText->Width()));
        tooltipBox[0] = left;
        tooltipBox[1] = box.v[4] + offset.y + 4.0f;
        tooltipBox[2] = left + tooltipText->Width();
        tooltipBox[3] = tooltipBox[1] + mainFont->Ascender() - mainFont->Descender();
    } else {
        tooltipAlpha *= 0.89f;
        if (tooltipAlpha < 0.003921569f) tooltipAlpha = 0;
    }
    if (tooltipAlpha <= 0) return;
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glColor4f(0.7f, 0.7f, 0.7f, tooltipAlpha * 0.5f);
    glRectf(tooltipBox[0] - 5, tooltipBox[1], tooltipBox[2] + 5, tooltipBox[3]);
    glColor4f(0.8f, 0.8f, 0.8f, tooltipAlpha * 0.9f);
    tooltipText->DrawAt(tooltipBox[0], tooltipBox[1] - mainFont->Descender());
}

}  // namespace BR
