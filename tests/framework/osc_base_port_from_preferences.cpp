// "OSC Base Port" is read from the preferences by every InitModule into the process-wide value,
// 7000 when the preference is absent.
#include <gtest/gtest.h>

#include <filesystem>

#include "framework/ModuleServices.h"
#include "framework/PreferenceStore.h"
#include "modules/ModuleFactory.h"
#include "tests/support/RunCommand.h"
#include "tests/support/ScopedEnvironment.h"

TEST(OSCBasePort, ReadAtEachInitModule) {
    const std::string folder = BR::Test::MakeTempFolder();
    BR::Test::ScopedEnvironment environment;
    environment.Set("XDG_CONFIG_HOME", folder.c_str());
    auto first = BR::CreateModule("dc");
    EXPECT_EQ(BR::GetOSCBasePort(), 7000);
    ASSERT_TRUE(BR::PreferenceStore::SetInt("OSC Base Port", 9100));
    EXPECT_EQ(BR::GetOSCBasePort(), 7000);  // not until a module initialises
    auto second = BR::CreateModule("dc");
    EXPECT_EQ(BR::GetOSCBasePort(), 9100);
    std::filesystem::remove_all(folder);
}
