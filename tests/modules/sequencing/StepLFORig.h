// Shared set-ups of the Step LFO tests: a lane running free at 64 samples a step, and step values.
#pragma once

#include <string>
#include <vector>

#include "host/DriverTransport.h"
#include "modules/sequencing/StepLFO.h"
#include "tests/support/Render.h"

namespace StepLFOTest {

inline BrelCorvaneStepLFO::BrelCorvane& Module(BR::HostDriver& driver) {
    return static_cast<BrelCorvaneStepLFO::BrelCorvane&>(driver.Module());
}

inline void Set(BR::HostDriver& driver, const std::string& name, float value) {
    ASSERT_TRUE(driver.SetParameterByName(name, value)) << name;
}

// Step k (from 1) of lane "L" or "R" gets values[k - 1].
inline void SetSteps(BR::HostDriver& driver, const std::string& lane, const std::vector<float>& values) {
    for (size_t k = 0; k < values.size(); ++k)
        Set(driver, "Step " + std::to_string(k + 1) + " " + lane, values[k]);
}

// Lane `lane` in "Free" with "Speed" 7.5 x 100 in "Step" mode: 750 steps a second, 64 samples a step at
// 48 kHz, a phase increment of exactly 2^-10 per sample for 16 steps. Signal input off.
inline void FreeLane(BR::HostDriver& driver, const std::string& lane) {
    Set(driver, "Sync " + lane, 0.0f);
    Set(driver, "Speed " + lane, 7.5f);
    Set(driver, "Speed Multiplier " + lane, 3.0f);
    Set(driver, "Signal Input " + lane, 0.0f);
}

// Step k of 16 is 0.05 * k (k from 1).
inline std::vector<float> Ramp(int count = 16) {
    std::vector<float> values;
    for (int k = 1; k <= count; ++k)
        values.push_back(0.05f * float(k));
    return values;
}

inline std::unique_ptr<BR::HostDriver> FreeRamp() {
    auto driver = BR::Test::MakeDriver("steplfo");
    FreeLane(*driver, "L");
    FreeLane(*driver, "R");
    SetSteps(*driver, "L", Ramp());
    return driver;
}

}  // namespace StepLFOTest
