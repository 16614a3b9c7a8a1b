// The folders that stand for the user's application data: <data>/Brelmont/<product>/Skins/ and
// <data>/Brelmont/<module name>/Scripts/, <data> being $XDG_DATA_HOME or ~/.local/share.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "framework/PreferenceStore.h"
#include "modules/ModuleFactory.h"
#include "tests/support/RunCommand.h"
#include "tests/support/ScopedEnvironment.h"

TEST(Folders, UnderXdgDataHome) {
    const std::string folder = BR::Test::MakeTempFolder();
    BR::Test::ScopedEnvironment environment;
    environment.Set("XDG_DATA_HOME", folder.c_str());
    EXPECT_EQ(BR::UserDataFolder(), folder);
    auto dc = BR::CreateModule("dc");
    EXPECT_EQ(BR::SkinsFolder(dc->GetProductName()), folder + "/Brelmont/Corvane/Skins/");
    EXPECT_EQ(BR::ScriptsFolder(dc->GetModuleName()), folder + "/Brelmont/Corvane DC/Scripts/");

    // Each missing level is made.
    EXPECT_FALSE(std::filesystem::exists(folder + "/Brelmont"));
    EXPECT_TRUE(BR::CreateFolders(BR::SkinsFolder("Corvane")));
    EXPECT_TRUE(std::filesystem::is_directory(folder + "/Brelmont/Corvane/Skins"));
    EXPECT_TRUE(BR::CreateFolders(BR::SkinsFolder("Corvane")));  // again: already there
    std::filesystem::remove_all(folder);
}

TEST(Folders, WithoutXdgDataHomeUnderHome) {
    const std::string folder = BR::Test::MakeTempFolder();
    BR::Test::ScopedEnvironment environment;
    environment.Set("HOME", folder.c_str());
    environment.Set("XDG_DATA_HOME", nullptr);
    EXPECT_EQ(BR::UserDataFolder(), folder + "/.local/share");
    EXPECT_EQ(BR::ScriptsFolder("Corvane LFO"), folder + "/.local/share/Brelmont/Corvane LFO/Scripts/");
    environment.Set("XDG_DATA_HOME", "not/absolute");
    EXPECT_EQ(BR::UserDataFolder(), folder + "/.local/share");
    std::filesystem::remove_all(folder);
}

TEST(Folders, CreateFailsWhereAFileStands) {
    const std::string folder = BR::Test::MakeTempFolder();
    std::filesystem::create_directories(folder + "/Brelmont");
    std::ofstream(folder + "/Brelmont/Corvane") << "a file";
    EXPECT_FALSE(BR::CreateFolders(folder + "/Brelmont/Corvane/Skins/"));
    std::filesystem::remove_all(folder);
}
