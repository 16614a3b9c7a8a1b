// Fuzz target: a calibration text file through both readers, into a table of 129 entries and into a
// Quantizer grid, and then as a command line loads it into an instance (kept between inputs) of every module
// that keeps a table or takes a grid (whichever the factory makes), rendered afterwards.
//
// Input: the file.
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <vector>

#include "FuzzSupport.h"
#include "RenderCheck.h"
#include "framework/ModuleCatalogue.h"
#include "host/HostDriver.h"
#include "host/cli/CalibrationOptions.h"
#include "modules/ModuleFactory.h"
#include "modules/sequencing/CalibrationFile.h"

namespace {

// One instance of each module with a table or a grid, kept from one input to the next (and never
// destroyed: at exit the registry, a static made later, is gone before a global of this file would be).
std::vector<std::unique_ptr<BR::HostDriver>>& takers = *new std::vector<std::unique_ptr<BR::HostDriver>>;

bool TakesCalibration(BrelCorvaneBase& module) {
    uint32_t size = 0;
    bool writable = false;
    int32_t count = 0;
    return (module.GetPropertyInfo(BR::kPropertyQuantizerTable, &size, &writable) == BR::kNoErr &&
            writable) ||
           (module.GetProperty(BR::kPropertyCalibrationCount, &count) == BR::kNoErr && count > 0);
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    BR::Fuzz::QuietStandardOutput();
    for (int i = 0; i < BR::kNumCatalogueEntries; ++i) {
        const BR::CatalogueEntry& entry = BR::CatalogueEntries()[i];
        BR::ModuleFactoryFunction factory = BR::FindModuleFactory(entry);
        if (!factory) continue;
        auto driver = std::make_unique<BR::HostDriver>(std::unique_ptr<BrelCorvaneBase>(factory()), entry,
                                                       48000.0f, 256);
        if (TakesCalibration(driver->Module())) takers.push_back(std::move(driver));
    }
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string path = BR::Fuzz::WriteScratchFile("calibration.txt", data, size);
    BR::CalibrationPoint points[BR::kCalibrationEntries] = {};
    uint8_t valid[BR::kCalibrationEntries] = {};
    BR::ReadCalibrationIntoTable(path, points, valid, BR::kCalibrationEntries);
    BR::QuantizerTable table{};
    BR::ReadCalibrationIntoQuantizerTable(path, table);
    for (auto& driver : takers) {
        try {
            BR::LoadCalibrationOption(*driver, path, "--calibration-in");
        } catch (const std::runtime_error&) {
        }
        BR::Fuzz::RenderAndCheck(*driver, 64);
    }
    return 0;
}
