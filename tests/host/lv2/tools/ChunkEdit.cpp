// elck-set: rewrites one parameter's value in a saved "elck" chunk, to show that a host restores the
// module from the chunk.
//   elck-set IN OUT IDENTIFIER VALUE
// The chunk: "Ctl1", a count, then per parameter a 16-bit identifier length, the identifier, a kind
// byte and the value's 32 bits, all little-endian.
#include <cstring>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include "HostTool.h"

namespace BR::HostTool {

int ElckSet(const std::vector<std::string>& args) {
    if (args.size() != 4) throw std::runtime_error("usage: elck-set IN OUT IDENTIFIER VALUE");
    std::ifstream in(args[0], std::ios::binary);
    std::vector<uint8_t> data((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    if (data.size() < 8 || std::memcmp(data.data(), "1ltC", 4) != 0)
        throw std::runtime_error(args[0] + " is no parameter chunk");
    uint32_t count = 0;
    std::memcpy(&count, data.data() + 4, 4);
    size_t at = 8;
    for (uint32_t i = 0; i < count && at + 2 <= data.size(); ++i) {
        const size_t length = size_t(data[at]) | (size_t(data[at + 1]) << 8);
        if (at + 2 + length + 5 > data.size()) break;
        const std::string identifier(reinterpret_cast<const char*>(data.data() + at + 2), length);
        if (identifier == args[2]) {
            const float value = std::stof(args[3]);
            std::memcpy(data.data() + at + 2 + length + 1, &value, 4);
            std::ofstream out(args[1], std::ios::binary);
            out.write(reinterpret_cast<const char*>(data.data()), std::streamsize(data.size()));
            return out ? 0 : 2;
        }
        at += 2 + length + 5;
    }
    throw std::runtime_error("no parameter \"" + args[2] + "\" in " + args[0]);
}

}  // namespace BR::HostTool
