// AnyLearnerPresent is true exactly while some live instance answers true to property 64013.
#include <gtest/gtest.h>

#include <memory>

#include "framework/InstanceRegistry.h"
#include "modules/ModuleFactory.h"
#include "tests/support/LearnerStandIn.h"

TEST(RegistryLearner, PresentWhileOneLives) {
    auto dc = BR::CreateModule("dc");
    BR::Test::ProbeModule probe;
    EXPECT_FALSE(BR::InstanceRegistry::AnyLearnerPresent());
    auto learner = std::make_unique<BR::Test::LearnerStandIn>();
    EXPECT_TRUE(BR::InstanceRegistry::AnyLearnerPresent());
    bool isLearner = false;
    EXPECT_EQ(learner->GetProperty(64013, &isLearner), BR::kNoErr);
    EXPECT_TRUE(isLearner);
    learner.reset();
    EXPECT_FALSE(BR::InstanceRegistry::AnyLearnerPresent());
}
