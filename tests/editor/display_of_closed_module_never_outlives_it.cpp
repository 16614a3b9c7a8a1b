// Closing an editor destroys its manager, which stops the render thread and deletes every display
// before the module can go: no display polls a module that is gone, and none is left behind.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

#include "editor/X11Window.h"
#include "editor/ZPmanager.h"
#include "editor/widgets/ModuleDisplay.h"
#include "framework/ModuleCatalogue.h"
#include "modules/sequencing/Trigger.h"
#include "support/EditorRig.h"

namespace BR::Test {

namespace {
std::atomic<bool> gModuleAlive{false};
std::atomic<int> gAnimates{0}, gDraws{0}, gAfterModule{0}, gLiveDisplays{0};

class WatchedTrigger : public BrelCorvaneTrigger::BrelCorvane {
public:
    WatchedTrigger() { gModuleAlive = true; }
    ~WatchedTrigger() override { gModuleAlive = false; }
};

// An envelope display that counts its calls and any call made once the module has gone.
class WatchedDisplay : public EnvDisplay {
public:
    explicit WatchedDisplay(Manager* manager) : EnvDisplay(manager, 0) { ++gLiveDisplays; }
    ~WatchedDisplay() override {
        if (!gModuleAlive) ++gAfterModule;
        --gLiveDisplays;
    }
    void Animate() override {
        if (!gModuleAlive) ++gAfterModule;
        ++gAnimates;
        EnvDisplay::Animate();
        StatusBlock();
    }
    void DrawContent() override {
        if (!gModuleAlive) ++gAfterModule;
        ++gDraws;
        EnvDisplay::DrawContent();
    }
};
}  // namespace

TEST(DisplayOfClosedModule, ManagerDestructionComesFirst) {
    const char* display = SharedDisplay();
    ASSERT_NE(display, nullptr);
    auto driver = std::make_unique<HostDriver>(std::make_unique<WatchedTrigger>(),
                                               *FindCatalogueEntry("trigger"), 48000.0f);
    auto manager = std::make_unique<ZPmanager>(&driver->Module());
    manager->SetDesignSize(200, 100);
    for (int i = 0; i < 3; ++i) {
        auto* watched = new WatchedDisplay(manager.get());
        watched->SetRect(10.0f + 60.0f * float(i), 10, 50, 50);
        manager->rootGroup->Add(watched);
    }
    EXPECT_EQ(gLiveDisplays.load(), 3);
    auto window = std::make_unique<X11Window>();
    ASSERT_TRUE(window->Open(200, 100, "closing", 0, display));
    window->manager = manager.get();
    manager->CreateRenderTask(window.get());
    for (int i = 0; i < 400 && manager->FrameCount() < 5; ++i)
        window->ProcessEvents(10);
    ASSERT_GE(manager->FrameCount(), 5u);
    EXPECT_GT(gAnimates.load(), 0);
    EXPECT_GT(gDraws.load(), 0);
    // The editor closes while the render thread is drawing: the manager's destructor alone must stop
    // it and take the displays with it.
    window->manager = nullptr;
    manager.reset();
    EXPECT_EQ(gLiveDisplays.load(), 0);
    const int animates = gAnimates.load(), draws = gDraws.load();
    window->Close();
    driver.reset();
    EXPECT_FALSE(gModuleAlive.load());
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    EXPECT_EQ(gAnimates.load(), animates);
    EXPECT_EQ(gDraws.load(), draws);
    EXPECT_EQ(gAfterModule.load(), 0);
}

}  // namespace BR::Test
