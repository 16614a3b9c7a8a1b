// Small file helpers for the calibration file tests: text written to a fresh temporary folder.
#pragma once

#include <fstream>
#include <sstream>
#include <string>

#include "tests/support/RunCommand.h"

namespace BR::Test {

// Writes `text` byte for byte to `name` in a fresh folder and returns the path.
inline std::string WriteTempFile(const std::string& name, const std::string& text) {
    const std::string path = MakeTempFolder() + "/" + name;
    std::ofstream out(path, std::ios::binary);
    out << text;
    return path;
}

inline std::string ReadWholeFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream s;
    s << in.rdbuf();
    return s.str();
}

constexpr const char* kCalibrationHeader = "Corvane Calibration Data\nversion: 1\n";

}  // namespace BR::Test
