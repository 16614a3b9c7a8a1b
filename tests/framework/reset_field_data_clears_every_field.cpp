// A render record reset before the host fills it holds zero in every field but the instance slot,
// whatever it held before.
#include <gtest/gtest.h>

#include <cstring>

#include "framework/RenderRecord.h"

TEST(ResetFieldData, ClearsEveryFieldButTheInstanceSlot) {
    BR::RenderRecord record;
    std::memset(&record, 0xA5, sizeof record);
    BrelCorvaneBase* instance = nullptr;
    BR::ResetFieldData(record, &instance);
    EXPECT_EQ(record.privateData, &instance);
    record.privateData = nullptr;
    const unsigned char* bytes = reinterpret_cast<const unsigned char*>(&record);
    for (size_t k = 0; k < sizeof record; ++k)
        ASSERT_EQ(bytes[k], 0u) << "byte " << k;
}
