// SetPropertyAndNotify calls SetProperty and, when it succeeds, every listener of that id.
#include <gtest/gtest.h>

#include "tests/support/ProbeModule.h"

using namespace BR::Test;

namespace {
struct Heard {
    std::vector<uint32_t> ids;
    BrelAuBase* instance = nullptr;
};
void Listener(void* userData, BrelAuBase* instance, uint32_t id) {
    auto* heard = static_cast<Heard*>(userData);
    heard->ids.push_back(id);
    heard->instance = instance;
}
}  // namespace

TEST(SetPropertyAndNotify, CallsListenersOfTheIdOnlyOnSuccess) {
    ProbeModule module;
    ManualHost host(module);
    Heard heard, other;
    module.AddPropertyListener(64008, &Listener, &heard);
    module.AddPropertyListener(64009, &Listener, &other);
    const uint8_t one = 1;
    EXPECT_EQ(module.SetPropertyAndNotify(64008, &one, 1), BR::kNoErr);
    EXPECT_EQ(heard.ids, std::vector<uint32_t>{64008});
    EXPECT_EQ(heard.instance, &module);
    EXPECT_TRUE(other.ids.empty());
    // A failed write notifies nobody.
    EXPECT_EQ(module.SetPropertyAndNotify(64009, &one, 1), -10879);
    EXPECT_TRUE(other.ids.empty());
    EXPECT_EQ(module.RemovePropertyListener(64008, &Listener, &heard), BR::kNoErr);
    module.SetPropertyAndNotify(64008, &one, 1);
    EXPECT_EQ(heard.ids.size(), 1u);
}
