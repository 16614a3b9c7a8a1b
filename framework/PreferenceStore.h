// Per-user named values kept outside any session, and the per-user folders for skins and scripts.
#pragma once

#include <cstdint>
#include <string>

namespace BR {

// A plain "name=value" text file under the user's configuration folder, read at each use.
// A missing file or value gives the default, silently.
class PreferenceStore {
public:
    static int32_t GetInt(const std::string& name, int32_t defaultValue);
    static bool SetInt(const std::string& name, int32_t value);
    static bool GetString(const std::string& name, std::string& out);
    static bool SetString(const std::string& name, const std::string& value);

    // $XDG_CONFIG_HOME/Brelmont/com.brelmont.Corvane2.conf, or under ~/.config.
    static std::string FilePath();
};

// $XDG_DATA_HOME, or ~/.local/share: what stands for the per-user application data.
std::string UserDataFolder();
// <data>/Brelmont/<product>/Skins/
std::string SkinsFolder(const std::string& productName);
// <data>/Brelmont/<module name>/Scripts/
std::string ScriptsFolder(const std::string& moduleName);
// Creates each missing level of a folder path; false when one cannot be made.
bool CreateFolders(const std::string& path);

}  // namespace BR
