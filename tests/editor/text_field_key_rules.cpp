// Typing into a value field: digits replace the shown value, Return commits with "%f", a minus only
// starts a number, a second point is refused, Backspace removes, other keys go to the host.
#include <gtest/gtest.h>

#include <cstring>

#include "support/HeadlessRig.h"

namespace BR::Test {

namespace {
void Type(Manager& manager, const char* keys) {
    for (const char* k = keys; *k; ++k)
        manager.KeyDown(*k);
}
void Focus(DCRig& rig) {
    rig.manager.MouseDown(rig.Centre(rig.panel.field), 0, 1, false);
    rig.manager.MouseUp(rig.Centre(rig.panel.field), 0);
}
}  // namespace

TEST(TextFieldKeys, TypedValueIsWrittenOnReturn) {
    DCRig rig;
    Focus(rig);
    Type(rig.manager, "0.25");
    EXPECT_TRUE(rig.panel.field->Typing());
    EXPECT_STREQ(rig.panel.field->buffer, "0.25");
    EXPECT_EQ(rig.Value(rig.level), 0.0f);
    EXPECT_TRUE(rig.manager.KeyDown(13));
    EXPECT_FLOAT_EQ(rig.Value(rig.level), 0.25f);
    EXPECT_FALSE(rig.panel.field->Typing());
}

TEST(TextFieldKeys, MinusAfterFirstDigitIsRefused) {
    DCRig rig;
    Focus(rig);
    Type(rig.manager, "1-2");
    EXPECT_STREQ(rig.panel.field->buffer, "12");
    rig.manager.KeyDown(13);
    EXPECT_EQ(rig.Value(rig.level), 1.0f);  // 12, clamped to the range's top
}

TEST(TextFieldKeys, MinusStartsNegativeNumber) {
    DCRig rig;
    auto* field = new TextField(&rig.manager, rig.multiplier);
    field->SetRect(300, 100, 40, 12);
    rig.manager.rootGroup->Add(field);
    rig.manager.MouseDown(Point{320, 106}, 0, 1, false);
    rig.manager.MouseUp(Point{320, 106}, 0);
    Type(rig.manager, "-1.5");
    rig.manager.KeyDown(3);  // Enter
    EXPECT_FLOAT_EQ(rig.Value(rig.multiplier), -1.5f);
}

TEST(TextFieldKeys, SecondPointRefusedAndBackspaceRemoves) {
    DCRig rig;
    Focus(rig);
    Type(rig.manager, "0.3.5");
    EXPECT_STREQ(rig.panel.field->buffer, "0.35");
    rig.manager.KeyDown(8);
    EXPECT_STREQ(rig.panel.field->buffer, "0.3");
    rig.manager.KeyDown(13);
    EXPECT_FLOAT_EQ(rig.Value(rig.level), 0.3f);
}

TEST(TextFieldKeys, OtherKeysGoToTheHostAndBufferIsBounded) {
    DCRig rig;
    EXPECT_FALSE(rig.manager.KeyDown('5'));  // nothing focused
    Focus(rig);
    EXPECT_FALSE(rig.manager.KeyDown('x'));
    EXPECT_FALSE(rig.manager.KeyDown(' '));
    for (int i = 0; i < 40; ++i)
        rig.manager.KeyDown('1');
    EXPECT_EQ(std::strlen(rig.panel.field->buffer), sizeof rig.panel.field->buffer - 1);
}

TEST(TextFieldKeys, FocusLossEndsTyping) {
    DCRig rig;
    Focus(rig);
    Type(rig.manager, "0.7");
    rig.manager.FocusLost();
    EXPECT_FALSE(rig.panel.field->Typing());
    EXPECT_EQ(rig.manager.focusedElement, nullptr);
    EXPECT_EQ(rig.Value(rig.level), 0.0f);
    EXPECT_EQ(rig.manager.editedParameter, -1);
}

TEST(TextFieldKeys, DragOnFieldActsAsKnob) {
    DCRig rig;
    const Point p = rig.Centre(rig.panel.field);
    rig.manager.MouseDown(p, 0, 1, false);
    rig.manager.MouseDragged(Point{p.x, p.y + 100}, 0);
    EXPECT_FLOAT_EQ(rig.Value(rig.level), 0.5f);
    rig.manager.MouseUp(Point{p.x, p.y + 100}, 0);
    rig.manager.MouseDown(p, kModShift, 1, false);
    rig.manager.MouseDragged(Point{p.x, p.y + 200}, kModShift);
    EXPECT_FLOAT_EQ(rig.Value(rig.level), 0.6f);
    rig.manager.MouseUp(Point{p.x, p.y + 200}, kModShift);
}

}  // namespace BR::Test
