// "Calibrated" falls to the table entry at or below the sample, "Transpose" moves the choice in steps of
// the table (also below the first entry), the top entry takes no transpose and keeps the last note, and
// tables of no entry or one entry pass the signal or hold their voltage.
#include <gtest/gtest.h>

#include "QuantizerRig.h"
#include "tests/support/Render.h"

namespace {

std::unique_ptr<BR::HostDriver> CalibratedQuantizer(float transpose) {
    auto driver = BR::Test::MakeQuantizer();
    driver->SetParameterByName("Enable L", 1);
    driver->SetParameterByName("Mode L", 1);
    driver->SetParameterByName("Transpose L", transpose);
    BR::Test::SetGrid(*driver, {-0.5f, 0.0f, 0.25f, 0.5f}, {10, 20, 30, 40});
    return driver;
}

std::vector<float> RenderLeft(BR::HostDriver& driver, const std::vector<float>& in) {
    return BR::Test::RenderFrames(driver, uint32_t(in.size()), 256, {in, in})[0];
}

const std::vector<float> kInput = {-0.7f, -0.5f, 0.1f, 0.25f, 0.49f};

}  // namespace

TEST(QuantizerCalibrated, FallsToTheEntryAtOrBelow) {
    auto driver = CalibratedQuantizer(0);
    EXPECT_EQ(RenderLeft(*driver, kInput), (std::vector<float>{-0.5f, -0.5f, 0.0f, 0.25f, 0.25f}));
    EXPECT_EQ(BR::Test::Quantizer(*driver).CurrentNote(0), 30);
    EXPECT_EQ(driver->Module().GetStatusBlock()->As<BrelCorvaneQuantizer::QuantizerStatus>().currentNote[0],
              30);
    EXPECT_EQ(driver->Module().GetStatusBlock()->As<BrelCorvaneQuantizer::QuantizerStatus>().currentNote[1],
              -1);
}

TEST(QuantizerCalibrated, TransposeMovesInTableStepsAndAppliesBelowTheFirstEntry) {
    auto driver = CalibratedQuantizer(2);
    // -0.7 lies below voltages[0] and still takes k = t = 2; higher choices clamp at the last entry.
    EXPECT_EQ(RenderLeft(*driver, kInput), (std::vector<float>{0.25f, 0.25f, 0.5f, 0.5f, 0.5f}));
    EXPECT_EQ(BR::Test::Quantizer(*driver).CurrentNote(0), 40);

    driver = CalibratedQuantizer(-2);
    EXPECT_EQ(RenderLeft(*driver, kInput), (std::vector<float>{-0.5f, -0.5f, -0.5f, -0.5f, -0.5f}));
    EXPECT_EQ(BR::Test::Quantizer(*driver).CurrentNote(0), 10);

    driver = CalibratedQuantizer(1.9f);  // truncated to 1
    EXPECT_EQ(RenderLeft(*driver, {-0.7f})[0], 0.0f);
}

TEST(QuantizerCalibrated, TopEntryTakesNoTransposeAndKeepsTheNote) {
    auto driver = CalibratedQuantizer(-2);
    const std::vector<float> out = RenderLeft(*driver, {0.3f, 0.5f, 0.9f});
    EXPECT_EQ(out[0], -0.5f);  // 0.3 falls to 0.25 (note 30), two entries down: -0.5 (note 10)
    EXPECT_EQ(out[1], 0.5f);   // at the top: the last voltage as it is
    EXPECT_EQ(out[2], 0.5f);
    EXPECT_EQ(BR::Test::Quantizer(*driver).CurrentNote(0), 10);  // not 40: the top sets no note
}

TEST(QuantizerCalibrated, EmptyTablePassesAndSingleEntryHolds) {
    auto driver = BR::Test::MakeQuantizer();
    driver->SetParameterByName("Enable R", 1);
    driver->SetParameterByName("Mode R", 1);
    const std::vector<float> in = {-0.3f, 0.2f, 0.9f};
    EXPECT_EQ(BR::Test::RenderFrames(*driver, 3, 3, {in, in})[1], in);  // no table loaded yet
    EXPECT_EQ(BR::Test::Quantizer(*driver).CurrentNote(1), -1);

    BR::Test::SetGrid(*driver, {0.125f}, {64});
    EXPECT_EQ(BR::Test::RenderFrames(*driver, 3, 3, {in, in})[1],
              (std::vector<float>{0.125f, 0.125f, 0.125f}));
    EXPECT_EQ(BR::Test::Quantizer(*driver).CurrentNote(1), -1);
}

TEST(QuantizerCalibrated, FallingTableIsSearchedInOrder) {
    // Only property 64120 can give a table that falls; the first entry above the sample still decides,
    // and a sample at or above the last entry takes the last voltage but keeps the note it found.
    auto driver = BR::Test::MakeQuantizer();
    driver->SetParameterByName("Enable L", 1);
    driver->SetParameterByName("Mode L", 1);
    BR::Test::SetGrid(*driver, {0.0f, 0.5f, 0.25f, 0.125f}, {1, 2, 3, 4});
    const std::vector<float> out = RenderLeft(*driver, {0.3f, 0.1f});
    EXPECT_EQ(out[0], 0.125f);  // 0.3 < 0.5 at i = 1: entry 0 (0.0), but 0.3 >= 0.125 gives the last
    EXPECT_EQ(out[1], 0.0f);    // 0.1 < 0.5 at i = 1: entry 0
    EXPECT_EQ(BR::Test::Quantizer(*driver).CurrentNote(0), 1);
}

TEST(QuantizerCalibrated, StatusBlockHoldsTheNoteAsAByte) {
    auto driver = CalibratedQuantizer(0);
    BR::Test::SetGrid(*driver, {0.0f, 0.5f}, {100, 200});
    const auto& status = driver->Module().GetStatusBlock()->As<BrelCorvaneQuantizer::QuantizerStatus>();
    RenderLeft(*driver, {0.1f});
    EXPECT_EQ(status.currentNote[0], 100);
    driver->SetParameterByName("Transpose L", 1);
    RenderLeft(*driver, {0.1f});
    EXPECT_EQ(BR::Test::Quantizer(*driver).CurrentNote(0), 200);
    EXPECT_EQ(status.currentNote[0], -1);  // beyond a byte's notes: nothing to show
}
