// Preferences live in $XDG_CONFIG_HOME/Brelmont/com.brelmont.Corvane2.conf (else under ~/.config),
// one "name=value" per line; a missing file or value, or one that does not read, gives the default.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "framework/PreferenceStore.h"
#include "tests/support/RunCommand.h"
#include "tests/support/ScopedEnvironment.h"

using BR::PreferenceStore;

namespace {
std::string Slurp(const std::string& path) {
    std::ifstream in(path);
    std::stringstream s;
    s << in.rdbuf();
    return s.str();
}
}  // namespace

TEST(Preferences, FileUnderXdgConfigHome) {
    const std::string folder = BR::Test::MakeTempFolder();
    BR::Test::ScopedEnvironment environment;
    environment.Set("XDG_CONFIG_HOME", folder.c_str());
    const std::string file = folder + "/Brelmont/com.brelmont.Corvane2.conf";
    EXPECT_EQ(PreferenceStore::FilePath(), file);

    // Nothing there yet: the defaults, with no file made.
    EXPECT_EQ(PreferenceStore::GetInt("OSC Base Port", 7000), 7000);
    std::string skin = "unchanged";
    EXPECT_FALSE(PreferenceStore::GetString("Skin", skin));
    EXPECT_EQ(skin, "unchanged");
    EXPECT_FALSE(std::filesystem::exists(file));

    ASSERT_TRUE(PreferenceStore::SetInt("OSC Base Port", 7100));
    ASSERT_TRUE(PreferenceStore::SetString("Skin", "Night Blue"));
    EXPECT_EQ(PreferenceStore::GetInt("OSC Base Port", 7000), 7100);
    EXPECT_TRUE(PreferenceStore::GetString("Skin", skin));
    EXPECT_EQ(skin, "Night Blue");
    EXPECT_EQ(Slurp(file), "OSC Base Port=7100\nSkin=Night Blue\n");
    std::filesystem::remove_all(folder);
}

TEST(Preferences, ReadAtEachUseNotCached) {
    const std::string folder = BR::Test::MakeTempFolder();
    BR::Test::ScopedEnvironment environment;
    environment.Set("XDG_CONFIG_HOME", folder.c_str());
    ASSERT_TRUE(PreferenceStore::SetInt("Enable eye candy", 0));
    EXPECT_EQ(PreferenceStore::GetInt("Enable eye candy", 1), 0);
    // Edited by hand, with blanks and a comment: the next read sees it.
    std::ofstream(PreferenceStore::FilePath())
        << "# mine\n  Enable eye candy = 1 \nVC output arrangement=2\r\n";
    EXPECT_EQ(PreferenceStore::GetInt("Enable eye candy", 0), 1);
    EXPECT_EQ(PreferenceStore::GetInt("VC output arrangement", 1), 2);
    std::filesystem::remove(PreferenceStore::FilePath());
    EXPECT_EQ(PreferenceStore::GetInt("Enable eye candy", 7), 7);
    std::filesystem::remove_all(folder);
}

TEST(Preferences, UnreadableValuesGiveTheDefault) {
    const std::string folder = BR::Test::MakeTempFolder();
    BR::Test::ScopedEnvironment environment;
    environment.Set("XDG_CONFIG_HOME", folder.c_str());
    ASSERT_TRUE(PreferenceStore::SetString("OSC Base Port", "seven thousand"));
    EXPECT_EQ(PreferenceStore::GetInt("OSC Base Port", 7000), 7000);
    ASSERT_TRUE(PreferenceStore::SetString("OSC Base Port", "99999999999"));
    EXPECT_EQ(PreferenceStore::GetInt("OSC Base Port", 7000), 7000);
    ASSERT_TRUE(PreferenceStore::SetString("OSC Base Port", "-12"));
    EXPECT_EQ(PreferenceStore::GetInt("OSC Base Port", 7000), -12);
    // Names and values that cannot stand in the file are refused.
    EXPECT_FALSE(PreferenceStore::SetString("A=B", "1"));
    EXPECT_FALSE(PreferenceStore::SetString("Skin", "two\nlines"));
    std::filesystem::remove_all(folder);
}

TEST(Preferences, WithoutXdgConfigHomeUnderHome) {
    const std::string folder = BR::Test::MakeTempFolder();
    BR::Test::ScopedEnvironment environment;
    environment.Set("HOME", folder.c_str());
    environment.Set("XDG_CONFIG_HOME", nullptr);
    EXPECT_EQ(PreferenceStore::FilePath(), folder + "/.config/Brelmont/com.brelmont.Corvane2.conf");
    // An empty or relative value counts as unset.
    environment.Set("XDG_CONFIG_HOME", "");
    EXPECT_EQ(PreferenceStore::FilePath(), folder + "/.config/Brelmont/com.brelmont.Corvane2.conf");
    environment.Set("XDG_CONFIG_HOME", "relative/config");
    EXPECT_EQ(PreferenceStore::FilePath(), folder + "/.config/Brelmont/com.brelmont.Corvane2.conf");
    ASSERT_TRUE(PreferenceStore::SetInt("Enable floating tooltip", 1));
    EXPECT_TRUE(std::filesystem::exists(folder + "/.config/Brelmont/com.brelmont.Corvane2.conf"));
    EXPECT_FALSE(std::filesystem::exists("relative"));
    std::filesystem::remove_all(folder);
}
