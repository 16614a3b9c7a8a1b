// A row's place is its identity: a row added in the middle moves every later parameter index, so
// a mapping saved by index would now reach another row. New rows go at the end.
#include <gtest/gtest.h>

#include "host/HostDriver.h"
#include "tests/support/TableModule.h"

namespace {
BR::ParameterDefinition original[] = {{"A", 0, 0, 1, 0}, {"B", 0, 0, 1, 0}, {"C", 0, 0, 1, 0}};
BR::ParameterDefinition inserted[] = {
    {"A", 0, 0, 1, 0}, {"New", 0, 0, 1, 0}, {"B", 0, 0, 1, 0}, {"C", 0, 0, 1, 0}};
BR::ParameterDefinition appended[] = {
    {"A", 0, 0, 1, 0}, {"B", 0, 0, 1, 0}, {"C", 0, 0, 1, 0}, {"New", 0, 0, 1, 0}};
float v1[3], v2[4], v3[4];
BR::PresetDefinition p1[] = {{"Defaults", 0, v1}}, p2[] = {{"Defaults", 0, v2}}, p3[] = {{"Defaults", 0, v3}};

}  // namespace

TEST(TableOrder, InsertingARowMovesLaterIndices) {
    BR::DriverController controller;
    BR::Test::TableModule before(original, 3, p1), middle(inserted, 4, p2), end(appended, 4, p3);
    before.Initialize(&controller, nullptr, nullptr);
    middle.Initialize(&controller, nullptr, nullptr);
    end.Initialize(&controller, nullptr, nullptr);
    const int32_t savedIndexOfB = before.GetParameterIndex("B");
    EXPECT_EQ(savedIndexOfB, 2);
    EXPECT_EQ(middle.GetParameter(savedIndexOfB)->Name(), "New");  // the saved mapping now hits another row
    EXPECT_EQ(end.GetParameter(savedIndexOfB)->Name(), "B");       // appending keeps it
}
