// The MIDI Browser lists the host's MIDI output devices (the lister installed beside the opener of
// property 64100) when no source of its own is set, and its own source when one is.
#include <gtest/gtest.h>

#include "editor/dialogs/Dialogs.h"
#include "modules/events/MIDISender.h"

namespace {

std::vector<std::string> HostDevices() {
    return {"synth:in", "monitor:midi"};
}

std::vector<std::string> OwnDevices() {
    return {"own"};
}

}  // namespace

TEST(MIDIBrowserDevices, HostListerFillsTheListWithoutASourceOfItsOwn) {
    const BR::MIDIOutputLister saved = BR::GetMIDIOutputLister();
    BR::SetMIDIBrowserDeviceSource(nullptr);
    BR::SetMIDIOutputLister(nullptr);
    EXPECT_TRUE(BR::ListMIDIBrowserDevices().empty());
    BR::SetMIDIOutputLister(&HostDevices);
    EXPECT_EQ(BR::ListMIDIBrowserDevices(), (std::vector<std::string>{"synth:in", "monitor:midi"}));
    BR::SetMIDIBrowserDeviceSource(&OwnDevices);
    EXPECT_EQ(BR::ListMIDIBrowserDevices(), (std::vector<std::string>{"own"}));
    BR::SetMIDIBrowserDeviceSource(nullptr);
    BR::SetMIDIOutputLister(saved);
}
