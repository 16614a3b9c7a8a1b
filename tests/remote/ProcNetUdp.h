// Reads the kernel's table of UDP sockets, to see which address a port is bound to.
#pragma once

#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>

namespace BR::Test {

// "0.0.0.0", "127.0.0.1", ... for a socket bound to `port`, or "" when there is none.
inline std::string BoundAddressOf(int port) {
    std::ifstream table("/proc/net/udp");
    std::string line;
    std::getline(table, line);  // header
    while (std::getline(table, line)) {
        std::istringstream fields(line);
        std::string slot, local;
        fields >> slot >> local;
        const size_t colon = local.find(':');
        if (colon == std::string::npos) continue;
        if (std::stoi(local.substr(colon + 1), nullptr, 16) != port) continue;
        const unsigned long address = std::stoul(local.substr(0, colon), nullptr, 16);  // network order
        char text[32];
        std::snprintf(text, sizeof text, "%lu.%lu.%lu.%lu", address & 0xFF, (address >> 8) & 0xFF,
                      (address >> 16) & 0xFF, (address >> 24) & 0xFF);
        return text;
    }
    return "";
}

}  // namespace BR::Test
