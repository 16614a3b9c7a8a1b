// The /brel/ paths: parameters of any instance in the process, by global id or by short name and
// local id (or "*" for all of a name), by parameter id or name, several targets per message.
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <string>
#include <vector>

#include "OSCHelper.h"
#include "framework/InstanceRegistry.h"

namespace BR {

namespace {

bool IsNumber(const std::string& token) {
    return !token.empty() && token[0] >= '0' && token[0] <= '9';
}

// Only the leading decimal part of a token is read.
int32_t LeadingNumber(const std::string& token) {
    return int32_t(std::strtol(token.c_str(), nullptr, 10));
}

}  // namespace

void OSCHelper::HandleBrelPath(const char* address, const osc::ReceivedMessage& message) {
    // A malformed path fails with the whole address as its text.
    const std::string path(address);
    std::vector<std::string> tokens;
    for (size_t start = 6;;) {
        const size_t slash = path.find('/', start);
        tokens.push_back(path.substr(start, slash == std::string::npos ? std::string::npos : slash - start));
        if (slash == std::string::npos) break;
        start = slash + 1;
    }
    size_t next = 0;
    auto take = [&](std::string& token) {
        if (next >= tokens.size()) throw osc::Exception(address);
        token = tokens[next++];
    };

    bool multi = false;
    if (!tokens.empty() && !tokens[0].empty() && tokens[0][0] == '+') {
        // Compared over all eight bytes, terminator included: "+multi1x" is no match.
        if (std::memcmp(tokens[0].c_str(), "+multi1", 8) != 0) throw osc::Exception(address);
        multi = true;
        ++next;
    }

    // Every /brel/ dispatch holds the registry lock throughout, parameter sets included.
    std::lock_guard<std::recursive_mutex> guard(InstanceRegistry::Lock());
    osc::ReceivedMessage::const_iterator arg = message.ArgumentsBegin();
    do {
        std::string module, parameter;
        take(module);
        std::string name;
        ParameterAddress target{nullptr, 0, nullptr, 0, 0};
        if (IsNumber(module)) {
            target.id = LeadingNumber(module);
        } else {
            std::string instance;
            take(instance);
            name = module;
            target.moduleName = name.c_str();
            if (IsNumber(instance)) {
                target.id = LeadingNumber(instance);
            } else if (!instance.empty() && instance[0] == '*') {
                target.id = -1;
            } else {
                throw osc::Exception(address);
            }
        }
        take(parameter);
        if (IsNumber(parameter)) {
            target.parameterIndex = LeadingNumber(parameter);
        } else {
            target.parameterName = parameter.c_str();
        }
        if (multi) {
            std::string m;
            take(m);
            if (!IsNumber(m)) throw osc::Exception(address);
            target.indexOffset = LeadingNumber(m) - 1;
        }
        if (arg == message.ArgumentsEnd()) throw osc::MissingArgumentException();
        if (!arg->IsFloat()) throw osc::WrongArgumentTypeException();
        const float value = (arg++)->AsFloatUnchecked();
        // A target that matches nothing is silently ignored.
        InstanceRegistry::SetParameterByAddress(target, value);
    } while (next < tokens.size());
}

}  // namespace BR
