// The calibration text file and the module-level calibration actions: save and load a module's
// table ("VCSave", "VCLoad"), load a file as a Quantizer grid ("QuantizerLoad"), and copy a Voice
// Controller's table to another module ("Transfer"). All act through the calibration properties.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "Calibration.h"

class BrelCorvaneBase;

namespace BR {

// What the platform's file dialogs and message box show around these actions.
constexpr const char* kCalibrationFileFilter = "Text Files (*.txt)";
constexpr const char* kCalibrationFileExtension = "txt";
constexpr const char* kCalibrationOpenTitle = "Please choose a calibration file";
constexpr const char* kCalibrationErrorTitle = "Error";
constexpr const char* kTransferredCalibrationName = "<Voice Controller Calibration>";

// The payload of property 64120: a grid of voltages in ascending order with the note of each.
struct QuantizerTable {
    int32_t count;
    float voltages[kCalibrationEntries];
    int32_t notes[kCalibrationEntries];
};
static_assert(sizeof(QuantizerTable) == 1036);

// Reads the header and every entry line of a calibration file, handing each entry to `entry`, which
// may refuse it with an error text. Returns "" or the first error; lines of more than 255 characters
// are read in parts, each part scanned as a line.
std::string ReadCalibrationFile(
    const std::string& path,
    const std::function<bool(int32_t index, float value, std::string& error)>& entry);

// Writes one line per valid entry of `count` values. Returns "" or "Could not save file".
std::string WriteCalibrationFile(const std::string& path, const CalibrationPoint* points,
                                 const uint8_t* valid, int32_t count);

// Reads a file into `count` values and valid flags: gaps between the first and last entry are
// interpolated, the notes outside are filled from the nearest octave, and untouched entries become 0.
// On an error the arrays are left unchanged.
std::string ReadCalibrationIntoTable(const std::string& path, CalibrationPoint* points, uint8_t* valid,
                                     int32_t count);

// Reads a file into a Quantizer grid, ordered by voltage; a repeated voltage keeps the last index.
std::string ReadCalibrationIntoQuantizerTable(const std::string& path, QuantizerTable& table);

// "VCSave": the module's table (properties 64016 to 64018) into a file. Returns "" or the error text.
std::string SaveModuleCalibration(BrelCorvaneBase& module, const std::string& path);
// "VCLoad": a file into the module's table, then the path as its name (property 64121).
std::string LoadModuleCalibration(BrelCorvaneBase& module, const std::string& path);
// "QuantizerLoad": a file as the module's grid (property 64120), then the path as its name.
std::string LoadQuantizerCalibration(BrelCorvaneBase& module, const std::string& path);
// "Transfer": copies the table of the first instance with a named Voice Controller calibration
// (property 64020 not 0) into `target` when the entry counts agree. True when it copied.
bool TransferCalibration(BrelCorvaneBase& target);

}  // namespace BR
