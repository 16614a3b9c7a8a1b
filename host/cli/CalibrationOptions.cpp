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
    RequireTable(driver, what);
    try {
        CheckFileSize(path, kMaxCalibrationFileBytes, "calibration files");
    } catch (const std::runtime_error& e) {
        throw InputError(what + ": " + e.what());
    }
    const std::string error = LoadModuleCalibration(driver.Module(), path);
    if (!error.empty()) throw InputError(what + ": \"" + path + "\": " + error);
}

void SaveCalibrationOption(HostDriver& driver, const std::string& path, const std::string& what) {
    RequireTable(driver, what);
    const std::string error = SaveModuleCalibration(driver.Module(), path);
    if (!error.empty()) throw InputError(what + ": \"" + path + "\": " + error);
}

}  // namespace BR
