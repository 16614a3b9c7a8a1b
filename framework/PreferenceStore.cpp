// The preference file and the per-user folders.
#include "PreferenceStore.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>

namespace BR {

namespace {

std::string HomeFolder() {
    const char* home = std::getenv("HOME");
    return home && *home ? home : "/tmp";
}

// An XDG folder variable counts only when it holds an absolute path.
std::string EnvOr(const char* name, const std::string& fallback) {
    const char* value = std::getenv(name);
    return value && value[0] == '/' ? std::string(value) : fallback;
}

std::string Trimmed(const std::string& text) {
    const size_t first = text.find_first_not_of(" \t\r");
    if (first == std::string::npos) return {};
    return text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

std::map<std::string, std::string> ReadAll() {
    std::map<std::string, std::string> values;
    std::ifstream in(PreferenceStore::FilePath());
    std::string line;
    // A hand-edited file may carry blanks around names and values, and comment lines.
    while (std::getline(in, line)) {
        const size_t eq = line.find('=');
        if (eq == std::string::npos || Trimmed(line)[0] == '#') continue;
        values[Trimmed(line.substr(0, eq))] = Trimmed(line.substr(eq + 1));
    }
    return values;
}

bool WriteAll(const std::map<std::string, std::string>& values) {
    const std::filesystem::path path(PreferenceStore::FilePath());
    std::error_code ec;
    std::filesystem::create_directories(path.parent_path(), ec);
    const std::filesystem::path temporary = path.string() + ".tmp";
    {
        std::ofstream out(temporary, std::ios::trunc);
        if (!out) return false;
        for (const auto& [name, value] : values)
            out << name << '=' << value << '\n';
        if (!out.flush()) return false;
    }
    std::filesystem::rename(temporary, path, ec);
    return !ec;
}

}  // namespace

std::string PreferenceStore::FilePath() {
    return EnvOr("XDG_CONFIG_HOME", HomeFolder() + "/.config") + "/Brelmont/com.brelmont.Corvane2.conf";
}

int32_t PreferenceStore::GetInt(const std::string& name, int32_t defaultValue) {
    const auto values = ReadAll();
    auto it = values.find(name);
    if (it == values.end()) return defaultValue;
    char* end = nullptr;
    const long v = std::strtol(it->second.c_str(), &end, 10);
    if (end == it->second.c_str() || *end != '\0' || v < INT32_MIN || v > INT32_MAX) return defaultValue;
    return int32_t(v);
}

bool PreferenceStore::SetInt(const std::string& name, int32_t value) {
    return SetString(name, std::to_string(value));
}

bool PreferenceStore::GetString(const std::string& name, std::string& out) {
    const auto values = ReadAll();
    auto it = values.find(name);
    if (it == values.end()) return false;
    out = it->second;
    return true;
}

bool PreferenceStore::SetString(const std::string& name, const std::string& value) {
    if (name.find_first_of("=\n") != std::string::npos || value.find('\n') != std::string::npos) return false;
    auto values = ReadAll();
    values[name] = value;
    return WriteAll(values);
}

std::string UserDataFolder() {
    return EnvOr("XDG_DATA_HOME", HomeFolder() + "/.local/share");
}

std::string SkinsFolder(const std::string& productName) {
    return UserDataFolder() + "/Brelmont/" + productName + "/Skins/";
}

std::string ScriptsFolder(const std::string& moduleName) {
    return UserDataFolder() + "/Brelmont/" + moduleName + "/Scripts/";
}

bool CreateFolders(const std::string& path) {
    std::error_code ec;
    std::filesystem::create_directories(path, ec);
    return !ec && std::filesystem::is_directory(path);
}

}  // namespace BR
