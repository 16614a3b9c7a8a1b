// A module that answers true to property 64013, as the Learner does: while one lives in the process,
// every instance saves its identity numbers in its "Chnk" chunk.
#pragma once

#include "tests/support/ProbeModule.h"

namespace BR::Test {

class LearnerStandIn : public ProbeModule {
public:
    int32_t GetProperty(uint32_t id, void* data) override {
        if (id != kPropertyIsLearner) return ProbeModule::GetProperty(id, data);
        if (!data) return kErrInvalidProperty;
        *static_cast<bool*>(data) = true;
        return kNoErr;
    }
    const char* GetModuleName() const override { return "Corvane Learner Stand In"; }
};

}  // namespace BR::Test
