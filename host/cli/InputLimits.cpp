// The size check that every whole-file reader of the command makes first.
#include "InputLimits.h"

#include <filesystem>
#include <stdexcept>

namespace BR {

void CheckFileSize(const std::string& path, uint64_t limit, const std::string& what) {
    std::error_code ec;
    const std::filesystem::file_status status = std::filesystem::status(path, ec);
    if (!std::filesystem::exists(status))
        throw std::runtime_error("cannot read \"" + path + "\": no such file");
    if (!std::filesystem::is_regular_file(status))
        throw std::runtime_error("cannot read \"" + path + "\": not a regular file");
    const uintmax_t size = std::filesystem::file_size(path, ec);
    if (ec) throw std::runtime_error("cannot read \"" + path + "\": " + ec.message());
    if (size > limit)
        throw std::runtime_error("cannot read \"" + path + "\": it holds " + std::to_string(size) +
                                 " bytes; " + what + " may hold at most " + std::to_string(limit));
}

}  // namespace BR
