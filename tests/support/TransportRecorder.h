// A probe that writes down what it reads of the transport at each BeginBlock, as tempo-following
// modules read it, with the block's length; and the catalogue row a driver needs to host it.
#pragma once

#include <vector>

#include "framework/ModuleCatalogue.h"
#include "tests/support/ProbeModule.h"

namespace BR::Test {

struct TransportSeen {
    uint32_t frames;
    TransportReading reading;
    bool present;
    int64_t sampleLocation;
};

class TransportRecorder : public ProbeModule {
public:
    TransportRecorder() { seen.reserve(4096); }
    bool BeginBlock(uint32_t frames) override {
        if (!ProbeModule::BeginBlock(frames)) return false;
        seen.push_back({frames, ReadTransport(transport), transport != nullptr,
                        transport ? transport->GetCurrentNativeSampleLocation() : 0});
        return true;
    }
    std::vector<TransportSeen> seen;
};

inline const CatalogueEntry& ProbeEntry() {
    static const CatalogueEntry entry = {"probe",
                                         "Probe Module",
                                         "CRpb",
                                         "BrelCorvaneProbe",
                                         kStemFormatStereo,
                                         kStemFormatStereo,
                                         0,
                                         0,
                                         2,
                                         2,
                                         kOSCPort,
                                         1,
                                         kNumProbeRows,
                                         -1,
                                         "gui_probe.lua"};
    return entry;
}

}  // namespace BR::Test
