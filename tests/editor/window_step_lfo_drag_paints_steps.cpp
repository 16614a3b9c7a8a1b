// Under Xvfb a synthetic drag (XTest) on the Step LFO's panel from step 3 to step 7 of lane L sets
// exactly those five steps to the value under the pointer; the painted panel is kept as a picture.
#include <gtest/gtest.h>

#include "editor/PluginLuaGui.h"
#include "editor/widgets/StepEditors.h"
#include "support/DisplayPictures.h"

namespace BR::Test {

TEST(WindowStepLfoDrag, FromStepThreeToSevenSetsExactlyThose) {
    ASSERT_NE(SharedDisplay(), nullptr);
    TempHome home;
    auto driver = MakeDriver("steplfo");
    PluginLuaGui gui(&driver->Module());
    EditorWindowRig rig(driver->Module(), [&gui](ZPmanager& manager) { gui.OpenPanel(&manager); });
    ASSERT_TRUE(gui.errorLog.empty()) << gui.errorLog.front();
    // The first page of lane L: steps 1 to 48.
    StepEditor* page = nullptr;
    std::vector<UIElement*> elements;
    CollectElements(rig.manager->rootGroup, elements);
    for (UIElement* element : elements)
        if (auto* editor = dynamic_cast<StepEditor*>(element))
            if (editor->id == 0 && editor->first == 1) page = editor;
    ASSERT_NE(page, nullptr);
    ASSERT_TRUE(rig.Open());
    const Box box = PanelBox(page);
    const float cell = (box.v[3] - box.v[0]) / float(page->ShownSteps());
    // Three quarters up the row: the value 0.5 of a row from -1 to 1.
    const float y = box.v[1] + 0.75f * (box.v[4] - box.v[1]);
    auto windowX = [&](int step) { return int(box.v[0] + (float(step - 1) + 0.5f) * cell); };
    const int windowY = rig.manager->windowHeight - int(y);
    rig.MoveTo(windowX(3), windowY);
    rig.Press();
    rig.MoveTo(windowX(7), windowY);
    rig.Release();
    // The value at the pointer's height (y up), give or take the pixel the window rounds to.
    const float middle = (box.v[1] + box.v[4]) * 0.5f, half = (box.v[4] - box.v[1]) * 0.5f;
    const float expected = (float(rig.manager->windowHeight - windowY) - middle) / half;
    ASSERT_GT(expected, 0.4f);
    for (int step = 1; step <= 96; ++step) {
        const std::string name = "Step " + std::to_string(step) + " L";
        const float value = driver->Module().GetTableValue(rig.manager->FindParameter(name));
        if (step >= 3 && step <= 7)
            EXPECT_NEAR(value, expected, 0.09f) << name;
        else
            EXPECT_FLOAT_EQ(value, 0.0f) << name;
    }
    // The whole panel on the screen for the picture: the window goes to the corner.
    XMoveWindow(rig.input, Window(rig.window.WindowId()), 0, 0);
    rig.Pump(50);
    EXPECT_TRUE(rig.WaitFrames(3));
    int width = 0, height = 0;
    const std::vector<uint8_t> shot = rig.Grab(width, height);
    ASSERT_FALSE(shot.empty());
    KeepPicture("steplfo-drag-steps-3-to-7.png", shot, width, height);
    // The painted steps stand above the middle line of the editor, the others do not: pixels of the
    // fill or the line, away from the editor's ground, between a quarter and four fifths up the row.
    PanelPicture picture;
    picture.rgb = shot, picture.width = width, picture.height = height;
    const Crop crop = CropBox(picture, box, 0);
    auto raised = [&](int step) {
        const int x = int((float(step - 1) + 0.5f) * cell);
        int count = 0;
        for (int y = int(0.2f * float(crop.height)); y < int(0.4f * float(crop.height)); ++y) {
            const uint8_t* p = crop.At(x, y);
            if (std::abs(int(p[2]) - int(page->backgroundColour[2] * 255.0f + 0.5f)) > 40) ++count;
        }
        return count;
    };
    for (int step : {3, 4, 5, 6, 7})
        EXPECT_GT(raised(step), 3) << "step " << step << " is not drawn raised";
    for (int step : {1, 9, 20, 40})
        EXPECT_EQ(raised(step), 0) << "step " << step << " is drawn raised";
}

}  // namespace BR::Test
