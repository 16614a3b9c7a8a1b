// The plug-in's manager: an optional skin background in the panel texture, and a small shader that
// presents the panel texture.
#pragma once

#include "Manager.h"

namespace BR {

class ZPmanager : public Manager {
public:
    class ZPRenderingShutdowner : public RenderingShutdowner {
    public:
        explicit ZPRenderingShutdowner(class ZPmanager* owner) : owner(owner) {}
        void operator()() override;
        ZPmanager* owner;
    };

    explicit ZPmanager(BrelCorvaneBase* module) : Manager(module) {}
    // Stops the render thread while this part still stands: its frames call this class's overrides,
    // and its teardown releases the shaders through the shutdowner that points here.
    ~ZPmanager() override;
    void InitRendering() override;
    RenderingShutdowner* CreateRenderingShutdowner() override { return new ZPRenderingShutdowner(this); }
    void PresentPanelTexture() override;
    void DrawPanelBackground() override;
    // The script's setBackgroundTexture; mode 1 tiles, anything else stretches.
    void SetBackgroundTexture(const std::string& name, int32_t mode);

    GuiTexture* backgroundTexture = nullptr;
    int32_t backgroundMode = 0;
    uint32_t shaderVertex = 0, shaderFragment = 0, shaderProgram = 0;
    int32_t shaderTexUniform = -1;
};

}  // namespace BR
