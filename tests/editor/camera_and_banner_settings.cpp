// The camera follows the design size: aspect, ortho scales, eye, and a near plane at h ÷ (2 tan 32.5°),
// so that one world unit at depth 0 is one panel pixel; banner modes by name.
#include <gtest/gtest.h>

#include <cmath>

#include "support/HeadlessRig.h"

namespace BR::Test {

TEST(CameraSettings, FollowDesignSize) {
    Manager manager(nullptr);
    manager.SetDesignSize(510, 220);
    EXPECT_EQ(manager.fovY, 65.0f);
    EXPECT_FLOAT_EQ(manager.aspect, 510.0f / 220.0f);
    EXPECT_FLOAT_EQ(manager.orthoScaleX, 2.0f / 510.0f);
    EXPECT_FLOAT_EQ(manager.orthoScaleY, 2.0f / 220.0f);
    EXPECT_FLOAT_EQ(manager.eyeX, 255.0f);
    EXPECT_FLOAT_EQ(manager.eyeY, 110.0f);
    EXPECT_NEAR(manager.nearZ, 220.0 / (2.0 * std::tan(32.5 * M_PI / 180.0)), 1e-3);
    EXPECT_EQ(manager.windowWidth, 510);
    EXPECT_EQ(manager.panelHeight, 220);
}

TEST(CameraSettings, BannerModes) {
    Manager manager(nullptr);
    manager.SetBannerContent("nameOnly", 20, 200);
    EXPECT_EQ(manager.bannerMode, 1);
    EXPECT_EQ(manager.bannerTextX, 20.0f);
    EXPECT_EQ(manager.statusX, 200.0f);
    manager.SetBannerMode("none");
    EXPECT_EQ(manager.bannerMode, 2);
    manager.SetBannerMode("full");
    EXPECT_EQ(manager.bannerMode, 0);
    EXPECT_EQ(manager.hoveredParameter, -1);
    EXPECT_EQ(manager.editedParameter, -1);
}

}  // namespace BR::Test
