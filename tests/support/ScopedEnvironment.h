// Sets environment variables for one test and puts the old values back afterwards, so that
// preference tests use temporary folders and never the user's own.
#pragma once

#include <cstdlib>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace BR::Test {

class ScopedEnvironment {
public:
    ScopedEnvironment() = default;
    ScopedEnvironment(const ScopedEnvironment&) = delete;
    ScopedEnvironment& operator=(const ScopedEnvironment&) = delete;
    ~ScopedEnvironment() {
        for (auto it = saved.rbegin(); it != saved.rend(); ++it) {
            if (it->second) {
                setenv(it->first.c_str(), it->second->c_str(), 1);
            } else {
                unsetenv(it->first.c_str());
            }
        }
    }
    // A null value unsets the variable.
    void Set(const std::string& name, const char* value) {
        const char* old = std::getenv(name.c_str());
        saved.emplace_back(name, old ? std::optional<std::string>(old) : std::nullopt);
        if (value) {
            setenv(name.c_str(), value, 1);
        } else {
            unsetenv(name.c_str());
        }
    }

private:
    std::vector<std::pair<std::string, std::optional<std::string>>> saved;
};

}  // namespace BR::Test
