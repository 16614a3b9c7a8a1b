// Reading and writing the calibration text file, and the calibration actions between modules.
#include "CalibrationFile.h"

#include <cmath>
#include <cstdio>
#include <cstring>
#include <map>
#include <memory>
#include <mutex>
#include <vector>

#include "framework/BrelCorvaneBase.h"
#include "framework/InstanceRegistry.h"

namespace BR {

namespace {

constexpr const char* kHeaderLine = "Corvane Calibration Data\n";
constexpr const char* kVersionLine = "version: 1\n";
constexpr int kLineBytes = 256;  // lines of up to 255 characters; longer ones arrive in parts

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

// A line as the file's text mode gives it: a CR before the line feed is dropped.
bool ReadLine(std::FILE* file, char* line) {
    if (!std::fgets(line, kLineBytes, file)) return false;
    const size_t length = std::strlen(line);
    if (length >= 2 && line[length - 2] == '\r' && line[length - 1] == '\n') {
        line[length - 2] = '\n';
        line[length - 1] = '\0';
    }
    return true;
}

std::string WithoutLineEnd(const char* line) {
    std::string text(line);
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r'))
        text.pop_back();
    return text;
}

bool ValueInRange(float value) {
    return std::fabs(value) <= 1.0f;  // false for NaN too
}

struct TableAccess {
    CalibrationPoint* points = nullptr;
    uint8_t* valid = nullptr;
    int32_t count = 0;
};

bool GetTableAccess(BrelCorvaneBase& module, TableAccess& access) {
    return module.GetProperty(kPropertyCalibrationTable, &access.points) == kNoErr &&
           module.GetProperty(kPropertyCalibrationValid, &access.valid) == kNoErr &&
           module.GetProperty(kPropertyCalibrationCount, &access.count) == kNoErr && access.points &&
           access.valid && access.count > 0;
}

}  // namespace

std::string ReadCalibrationFile(const std::string& path,
                                const std::function<bool(int32_t, float, std::string&)>& entry) {
    File file(std::fopen(path.c_str(), "r"));
    if (!file) return "Could not load file";
    char line[kLineBytes];
    if (!ReadLine(file.get(), line)) return "Failed to read line from file";
    if (std::strcmp(line, kHeaderLine) != 0) return "Failed to read file header";
    if (!ReadLine(file.get(), line)) return "Failed to read line from file";
    int version = 0;
    if (std::sscanf(line, "version: %d\n", &version) != 1) return "Failed to get version number";
    if (version != 1) return "Invalid version number";
    for (;;) {
        if (!ReadLine(file.get(), line)) {
            if (std::feof(file.get())) break;
            return "Failed to read line from file";
        }
        int index = 0;
        float value = 0.0f;
        if (std::sscanf(line, "%d %f\n", &index, &value) != 2)
            return "Failed to parse line: \"" + WithoutLineEnd(line) + "\"";
        std::string error;
        if (!entry(index, value, error)) return error;
    }
    return "";
}

std::string WriteCalibrationFile(const std::string& path, const CalibrationPoint* points,
                                 const uint8_t* valid, int32_t count) {
    File file(std::fopen(path.c_str(), "wb"));
    if (!file) return "Could not save file";
    bool ok = std::fputs(kHeaderLine, file.get()) >= 0 && std::fputs(kVersionLine, file.get()) >= 0;
    for (int32_t i = 0; ok && i < count; ++i)
        if (valid[i]) ok = std::fprintf(file.get(), "%i %.8f\n", i, double(points[i].value)) > 0;
    if (std::fclose(file.release()) != 0) ok = false;
    return ok ? "" : "Could not save file";
}

std::string ReadCalibrationIntoTable(const std::string& path, CalibrationPoint* points, uint8_t* valid,
                                     int32_t count) {
    std::vector<float> temp(size_t(count), 0.0f);
    std::vector<uint8_t> seen(size_t(count), 0);
    const std::string error = ReadCalibrationFile(path, [&](int32_t index, float value, std::string& text) {
        if (index < 0 || index >= count) {
            text = "Index out of range";
            return false;
        }
        if (!ValueInRange(value)) {
            text = "Value out of range";
            return false;
        }
        temp[size_t(index)] = value;
        seen[size_t(index)] = 1;
        return true;
    });
    if (!error.empty()) return error;

    for (int32_t i = 0; i < count; ++i)
        valid[i] = seen[size_t(i)];
    // Notes between the first and last entry lie on straight lines between their neighbours.
    int32_t lo = -1;
    for (int32_t i = 0; i < count; ++i) {
        if (valid[i]) {
            lo = i;
            continue;
        }
        if (lo < 0) continue;
        int32_t hi = i + 1;
        while (hi < count && !valid[hi])
            ++hi;
        if (hi == count) break;
        temp[size_t(i)] =
            float(i - lo) * (temp[size_t(hi)] - temp[size_t(lo)]) / float(hi - lo) + temp[size_t(lo)];
        seen[size_t(i)] = 1;
    }
    FillOctaves(temp.data(), seen.data(), count);
    for (int32_t i = 0; i < count; ++i)
        points[i].value = temp[size_t(i)];
    return "";
}

std::string ReadCalibrationIntoQuantizerTable(const std::string& path, QuantizerTable& table) {
    std::map<float, int32_t> byValue;
    const std::string error = ReadCalibrationFile(path, [&](int32_t index, float value, std::string& text) {
        if (index < 0) {
            text = "Index out of range";
            return false;
        }
        if (!ValueInRange(value)) {
            text = "Value out of range";
            return false;
        }
        byValue[value] = index;
        return true;
    });
    if (!error.empty()) return error;
    if (byValue.empty()) return "No values loaded from file";
    if (byValue.size() > size_t(kCalibrationEntries)) return "Too many steps";
    std::memset(&table, 0, sizeof table);
    for (const auto& [value, index] : byValue) {
        table.voltages[table.count] = value;
        table.notes[table.count] = index;
        ++table.count;
    }
    return "";
}

std::string SaveModuleCalibration(BrelCorvaneBase& module, const std::string& path) {
    TableAccess access;
    if (!GetTableAccess(module, access)) return "Could not save file";
    return WriteCalibrationFile(path, access.points, access.valid, access.count);
}

std::string LoadModuleCalibration(BrelCorvaneBase& module, const std::string& path) {
    TableAccess access;
    if (!GetTableAccess(module, access)) return "Could not load file";
    const std::string error = ReadCalibrationIntoTable(path, access.points, access.valid, access.count);
    if (!error.empty()) return error;
    module.SetPropertyAndNotify(kPropertyCalibrationName, path.c_str(), uint32_t(path.size() + 1));
    return "";
}

std::string LoadQuantizerCalibration(BrelCorvaneBase& module, const std::string& path) {
    QuantizerTable table;
    const std::string error = ReadCalibrationIntoQuantizerTable(path, table);
    if (!error.empty()) return error;
    module.SetPropertyAndNotify(kPropertyQuantizerTable, &table, uint32_t(sizeof table));
    module.SetPropertyAndNotify(kPropertyCalibrationName, path.c_str(), uint32_t(path.size() + 1));
    return "";
}

bool TransferCalibration(BrelCorvaneBase& target) {
    std::lock_guard<std::recursive_mutex> lock(InstanceRegistry::Lock());
    BrelCorvaneBase* source = nullptr;
    for (size_t k = 0; BrelCorvaneBase* instance = InstanceRegistry::InstanceAt(k); ++k) {
        int64_t time = 0;
        if (instance->GetProperty(kPropertyCalibrationTime, &time) == kNoErr && time != 0) {
            source = instance;
            break;
        }
    }
    if (!source) return false;
    TableAccess from, to;
    if (!GetTableAccess(*source, from) || !GetTableAccess(target, to) || from.count != to.count) return false;
    for (int32_t i = 0; i < to.count; ++i) {
        to.valid[i] = from.valid[i];
        to.points[i].value = from.points[i].value;
    }
    target.SetPropertyAndNotify(kPropertyCalibrationName, kTransferredCalibrationName,
                                uint32_t(std::strlen(kTransferredCalibrationName) + 1));
    return true;
}

}  // namespace BR
