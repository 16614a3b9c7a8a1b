// Calibration files on the command line: loading one into a module's table before a render, and
// saving the table after it, as the editor's "VCLoad" and "VCSave" do; a Quantizer loads the file as
// its grid, as "QuantizerLoad" does.
#pragma once

#include <string>

#include "host/HostDriver.h"

namespace BR {

// Throws UsageError when the module keeps no calibration table: checked before a render, so that a
// table that cannot be saved afterwards refuses the render before anything is written.
void RequireTable(HostDriver& driver, const std::string& what);
// Throws UsageError when the module keeps no calibration table (nor a grid, for loading), InputError
// with the file's error text.
// `what` starts each message ("--calibration-in").
void LoadCalibrationOption(HostDriver& driver, const std::string& path, const std::string& what);
void SaveCalibrationOption(HostDriver& driver, const std::string& path, const std::string& what);

}  // namespace BR
