// Hovering sets the parameter of the status line and leaving clears it; a press opens a host edit
// gesture and the release ends it; special buttons take message ids from −2 down, shared by equal texts.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "editor/widgets/Button.h"
#include "support/HeadlessRig.h"

namespace BR::Test {

TEST(HoverAndStatus, HoverEntersAndLeaves) {
    DCRig rig;
    const Point on = rig.Centre(rig.panel.knob);
    rig.manager.MouseMoved(on);
    EXPECT_EQ(rig.manager.hoveredParameter, rig.level);
    EXPECT_EQ(rig.manager.tooltipElement, rig.panel.knob);
    EXPECT_TRUE(rig.panel.knob->hovered);
    rig.manager.MouseMoved(Point{on.x + 100, on.y + 100});
    EXPECT_EQ(rig.manager.hoveredParameter, -1);
    EXPECT_FALSE(rig.panel.knob->hovered);
    EXPECT_TRUE(rig.manager.hoveredElements.empty());
}

TEST(HoverAndStatus, StatusTextsOfParameter) {
    DCRig rig;
    rig.driver->Module().SetTableValue(rig.multiplier, 1.5f);
    std::string name, value, unit;
    rig.manager.GetParameterTexts(rig.multiplier, name, value, unit);
    EXPECT_EQ(name, "Multiplier L");
    EXPECT_EQ(value, "1.500");
    EXPECT_EQ(unit, "");
    rig.manager.GetParameterTexts(rig.manager.FindParameter("Smoothing L"), name, value, unit);
    EXPECT_EQ(unit, "ms");
}

TEST(HoverAndStatus, EditGestureCallsHost) {
    DCRig rig;
    std::vector<std::string> calls;
    rig.manager.callbackContext = &calls;
    rig.manager.beginEdit = [](int32_t p, void* c) {
        static_cast<std::vector<std::string>*>(c)->push_back("begin " + std::to_string(p));
    };
    rig.manager.endEdit = [](int32_t p, void* c) {
        static_cast<std::vector<std::string>*>(c)->push_back("end " + std::to_string(p));
    };
    rig.Drag(rig.panel.knob, 20);
    ASSERT_EQ(calls.size(), 2u);
    EXPECT_EQ(calls[0], "begin " + std::to_string(rig.level));
    EXPECT_EQ(calls[1], "end " + std::to_string(rig.level));
    EXPECT_EQ(gTouchedModule.load(), &rig.driver->Module());
    EXPECT_EQ(gTouchedParameter.load(), rig.level);
}

TEST(HoverAndStatus, ButtonMessageIdsFromMinusTwo) {
    DCRig rig;
    auto* a = new ZephButton(&rig.manager, "A", "Save calibration data", nullptr);
    auto* b = new ZephButton(&rig.manager, "B", "Load calibration data", nullptr);
    auto* c = new ZephButton(&rig.manager, "C", "Save calibration data", nullptr);
    EXPECT_EQ(a->messageId, -2);
    EXPECT_EQ(b->messageId, -3);
    EXPECT_EQ(c->messageId, -2);
    EXPECT_EQ(rig.manager.extraMessages.at(-3), "Load calibration data");
    a->SetRect(300, 100, 50, 20);
    rig.manager.rootGroup->Add(a);
    rig.manager.MouseMoved(Point{320, 110});
    EXPECT_EQ(rig.manager.hoveredParameter, -2);
}

}  // namespace BR::Test
