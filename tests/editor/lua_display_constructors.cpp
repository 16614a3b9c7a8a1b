// The display and editor constructors of the panel language: the id ranges and their error texts, the
// type errors of their colour methods, the rectangles they occupy, and what each binds or reads.
#include <gtest/gtest.h>

#include "editor/widgets/Button.h"
#include "editor/widgets/InfoDisplays.h"
#include "editor/widgets/ModuleDisplay.h"
#include "editor/widgets/StepEditors.h"
#include "support/LuaPanelRig.h"
#include "support/PanelWalk.h"

namespace BR::Test {

namespace {
::testing::AssertionResult Raises(LuaPanelRig& rig, const std::string& code, const std::string& text) {
    const std::string error = rig.Run(code);
    if (error.find(text) != std::string::npos) return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << code << " raised \"" << error << "\", not \"" << text << "\"";
}

// The element the last constructor of `code` added to the root group.
UIElement* Last(LuaPanelRig& rig, const std::string& code) {
    EXPECT_EQ(rig.Run(code), "");
    return rig.manager.rootGroup->children.back();
}
}  // namespace

TEST(LuaDisplayConstructors, IdsOutOfRange) {
    LuaPanelRig rig("steplfo");
    rig.InitOnly();
    EXPECT_TRUE(Raises(rig, "envelopeDisplay( 3, 0, 0, 50, 100 )", "envelopeDisplay id out of range"));
    EXPECT_TRUE(Raises(rig, "envelopeDisplay( -1, 0, 0, 50, 100 )", "envelopeDisplay id out of range"));
    EXPECT_TRUE(Raises(rig, "waveformDisplay( 2, 0, 0, 100, 50 )", "waveformDisplay id out of range"));
    EXPECT_TRUE(Raises(rig, "functionDisplay( 2, 0, 0, 100, 50 )", "functionDisplay id out of range"));
    EXPECT_TRUE(Raises(rig, "stepEditor( 2, 0, 0, 100, 50 )", "stepEditor id out of range"));
    EXPECT_TRUE(Raises(rig, "dacEditor( 2, 0, 0, 100, 50 )", "dacEditor id out of range"));
    EXPECT_TRUE(Raises(rig, "randomRegister( 2, 0, 0, 100, 50 )", "randomRegister id out of range"));
    EXPECT_TRUE(Raises(rig, "quantizerInfoDisplay( 0, 0, 100, 30, 2 )", "infoDisplay index out of range: 2"));
    EXPECT_TRUE(
        Raises(rig, "quantizerInfoDisplay( 0, 0, 100, 30, -1 )", "infoDisplay index out of range: -1"));
    // The last ids in range are accepted.
    EXPECT_EQ(rig.Run("envelopeDisplay( 2, 0, 0, 50, 100 )"), "");
    EXPECT_EQ(
        rig.Run(
            "stepEditor( 1, 0, 0, 100, 50 ) dacEditor( 1, 0, 0, 100, 50 ) randomRegister( 1, 0, 0, 100, 5 )"),
        "");
}

TEST(LuaDisplayConstructors, ColourMethodsCheckTheirType) {
    LuaPanelRig rig("steplfo");
    rig.InitOnly();
    const std::pair<const char*, const char*> cases[] = {
        {"local e = envelopeDisplay( 0, 0, 0, 10, 10 ) e.setFillColour( label( 'a', 0, 0 ), 1, 1, 1, 1 )",
         "envdisplay expected"},
        {"local e = calibrationDisplay( 0, 0, 10, 10 ) e.setLineColour( 5, 1, 1, 1, 1 )",
         "calibrationdisplay expected"},
        {"local e = waveformDisplay( 0, 0, 0, 10, 10 ) e.setLineColour( nil )", "waveformdisplay expected"},
        {"local e = followerEnvDisplay( 0, 0, 10, 10 ) e.setPeakLineColour( {} )",
         "followerenvdisplay expected"},
        {"local e = stepEditor( 0, 0, 0, 10, 10 ) e.setFillColour( dacEditor( 0, 0, 0, 10, 10 ) )",
         "stepeditor expected"},
        {"local e = functionDisplay( 0, 0, 0, 10, 10 ) e.setBackgroundColour( 1 )",
         "functiondisplay expected"},
        {"local e = randomRegister( 0, 0, 0, 10, 10 ) e.setLineColour( 1 )", "randomregister expected"},
        {"local e = dacEditor( 0, 0, 0, 10, 10 ) e.setFillColour( stepEditor( 0, 0, 0, 10, 10 ) )",
         "daceditor expected"},
    };
    for (const auto& [code, text] : cases)
        EXPECT_TRUE(Raises(rig, code, text));
    // Calibration, waveform and function displays have no fill; only the follower's envelope has a peak line.
    EXPECT_TRUE(
        Raises(rig, "calibrationDisplay( 0, 0, 10, 10 ):setFillColour( 1, 1, 1, 1 )", "setFillColour"));
    EXPECT_TRUE(Raises(rig, "envelopeDisplay( 0, 0, 0, 10, 10 ):setPeakLineColour( 1, 1, 1, 1 )",
                       "setPeakLineColour"));
    // Displays count as elements: they can be hidden and added to groups.
    EXPECT_EQ(rig.Run("local g = group( 'x' ) local d = functionDisplay( 1, 0, 0, 10, 10 ) g:add( d ) "
                      "d:setVisible( false ) assert( not d:isVisible() )"),
              "");
}

TEST(LuaDisplayConstructors, RectanglesAndColours) {
    LuaPanelRig rig("trigger");
    rig.InitOnly();
    // The envelope display takes its height before its width.
    UIElement* env =
        Last(rig, "env = envelopeDisplay( 0, 10, 20, 30, 200 ) setEnvelopeDisplayColours( env )");
    EXPECT_FLOAT_EQ(env->rect[0], 10);
    EXPECT_FLOAT_EQ(env->rect[1], 20);
    EXPECT_FLOAT_EQ(env->Width(), 200);
    EXPECT_FLOAT_EQ(env->Height(), 30);
    auto* display = dynamic_cast<EnvDisplay*>(env);
    ASSERT_NE(display, nullptr);
    EXPECT_FLOAT_EQ(display->backgroundColour[0], 0.1f);
    EXPECT_FLOAT_EQ(display->fillColour[2], 0.5f);
    EXPECT_FLOAT_EQ(display->lineColour[1], 0.5f);
    // Its rows are those of envelope 1: the five times, five shapes, four levels and five types.
    ASSERT_EQ(display->watched.size(), 19u);
    EXPECT_EQ(display->watched[14], rig.manager.FindParameter("Env 1 Type A1"));
    EXPECT_EQ(display->watched[18], rig.manager.FindParameter("Env 1 Type R2"));
    EXPECT_EQ(display->watched[0], rig.manager.FindParameter("Env 1 Time A1"));
    EXPECT_EQ(display->watched[9], rig.manager.FindParameter("Env 1 Shape R2"));
    EXPECT_EQ(display->watched[12], rig.manager.FindParameter("Env 1 Sustain"));
    // Not a control: the pointer passes through it.
    EXPECT_EQ(env->HitTest(Point{50, 30}), nullptr);
}

TEST(LuaDisplayConstructors, StepEditorsBindTheirRows) {
    LuaPanelRig rig("steplfo");
    rig.InitOnly();
    auto* all = dynamic_cast<StepEditor*>(Last(rig, "stepEditor( 1, 0, 0, 192, 40 )"));
    ASSERT_NE(all, nullptr);
    ASSERT_EQ(all->parameters.size(), 96u);
    EXPECT_EQ(all->parameters.front(), rig.manager.FindParameter("Step 1 R"));
    EXPECT_EQ(all->parameters.back(), rig.manager.FindParameter("Step 96 R"));
    auto* page = dynamic_cast<StepEditor*>(Last(rig, "stepEditor( 0, 0, 0, 96, 40, 49, 48 )"));
    ASSERT_NE(page, nullptr);
    ASSERT_EQ(page->parameters.size(), 48u);
    EXPECT_EQ(page->parameters.front(), rig.manager.FindParameter("Step 49 L"));
    EXPECT_TRUE(Raises(rig, "stepEditor( 0, 0, 0, 96, 40, 90, 10 )", "stepEditor steps out of range"));
    auto* dac = dynamic_cast<DACEditor*>(Last(rig, "dacEditor( 0, 0, 0, 96, 40 )"));
    ASSERT_NE(dac, nullptr);
    ASSERT_EQ(dac->parameters.size(), 24u);
    EXPECT_EQ(dac->parameters.back(), rig.manager.FindParameter("DAC Bit 24 L"));
}

TEST(LuaDisplayConstructors, QuantizerNoteText) {
    EXPECT_EQ(QuantizerInfoDisplay::NoteText(60), "C 4  60");
    EXPECT_EQ(QuantizerInfoDisplay::NoteText(61), "C#4  61");
    EXPECT_EQ(QuantizerInfoDisplay::NoteText(-1), "");
    EXPECT_EQ(FollowerInfoDisplay::NoteName(440.0f), "A4+0");
    // With no pitch the pitch history stands at the bottom of its axis.
    EXPECT_FLOAT_EQ(FollowerPitchDisplay::AxisPosition(0.0f), 0.0f);
    EXPECT_FLOAT_EQ(FollowerPitchDisplay::AxisPosition(-3.0f), 0.0f);
    EXPECT_FLOAT_EQ(FollowerPitchDisplay::AxisPosition(50.0f), 0.0f);
    EXPECT_NEAR(FollowerPitchDisplay::AxisPosition(500.0f), 0.5f, 1e-5);
}

TEST(LuaDisplayConstructors, MidiBrowseButtonRecordsItsProperty) {
    LuaPanelRig rig("cvtomidi");
    rig.InitOnly();
    UIElement* button = Last(rig, "midiBrowseButton( 'Browse', 'Choose', 64100, 0, 0, 60, 20 )");
    EXPECT_NE(dynamic_cast<MIDIBrowseButton*>(button), nullptr);
    EXPECT_FLOAT_EQ(button->Width(), 60);
    button->MouseUp(Point{10, 10}, 0);
    ASSERT_EQ(rig.gui->midiBrowseRequests.size(), 1u);
    EXPECT_EQ(rig.gui->midiBrowseRequests[0], 64100u);
}

}  // namespace BR::Test
