// Calibration files for modules that keep a calibration table.
#include "CalibrationOptions.h"

#include "CommandLine.h"
#include "InputLimits.h"
#include "modules/sequencing/CalibrationFile.h"

namespace BR {

void RequireTable(HostDriver& driver, const std::string& what) {
    int32_t count = 0;
    if (driver.Module().GetProperty(kPropertyCalibrationCount, &count) != kNoErr || count <= 0)
        throw UsageError(what + ": module \"" + driver.Entry().stem + "\" keeps no calibration table");
}

void LoadCalibrationOption(HostDriver& driver, const std::string& path, const std::string& what) {
    try {
        CheckFileSize(path, kMaxCalibrationFileBytes, "calibration files");
    } catch (const std::runtime_error& e) {
        throw InputError(what + ": " + e.what());
    }
    // A module that takes a grid (property 64120) reads the file as a Quantizer does.
    uint32_t size = 0;
    bool writable = false;
    if (driver.Module().GetPropertyInfo(kPropertyQuantizerTable, &size, &writable) == kNoErr && writable) {
        const std::string error = LoadQuantizerCalibration(driver.Module(), path);
        if (!error.empty()) throw InputError(what + ": \"" + path + "\": " + error);
        return;
    }
    RequireTable(driver, what);
    const std::string error = LoadModuleCalibration(driver.Module(), path);
    if (!error.empty()) throw InputError(what + ": \"" + path + "\": " + error);
}

void SaveCalibrationOption(HostDriver& driver, const std::string& path, const std::string& what) {
    RequireTable(driver, what);
    const std::string error = SaveModuleCalibration(driver.Module(), path);
    if (!error.empty()) throw InputError(what + ": \"" + path + "\": " + error);
}

}  // namespace BR
