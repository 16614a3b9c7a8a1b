// MIDI output devices by name: the first device of the listing whose name equals the name exactly is
// opened, and only it; any other name, or a device that fails to open, gives none and no message. With
// no sequencer and no JACK server nothing is listed and CV To MIDI stays silent. Run by the JACK host
// test with a server and a MIDI port: the port is listed, opens, and rendering with it open allocates
// nothing.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <thread>

#include "host/ModuleMidiOutput.h"
#include "host/devices/MidiDevices.h"
#include "modules/events/CVToMIDI.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/Render.h"

namespace {

struct FakeDevice : BR::MIDIOutputDevice {
    void Send(const uint8_t*, int32_t) override {}
};

struct FakeSystem : BR::MidiDeviceSystem {
    const char* label;
    std::vector<std::string> names;
    std::vector<std::string> opened;  // names asked of Open
    bool opens = true;
    FakeSystem(const char* l, std::vector<std::string> n) : label(l), names(std::move(n)) {}
    const char* Name() const override { return label; }
    std::vector<std::string> ListOutputs() override { return names; }
    std::unique_ptr<BR::MIDIOutputDevice> Open(const std::string& name) override {
        opened.push_back(name);
        return opens ? std::make_unique<FakeDevice>() : nullptr;
    }
};

// A JACK server name of this process alone, so that no running server is reached.
struct NoJackServer {
    std::string previous;
    bool had;
    NoJackServer() : had(std::getenv("JACK_DEFAULT_SERVER") != nullptr) {
        if (had) previous = std::getenv("JACK_DEFAULT_SERVER");
        setenv("JACK_DEFAULT_SERVER", ("corvane-none-" + std::to_string(getpid())).c_str(), 1);
    }
    ~NoJackServer() {
        if (had)
            setenv("JACK_DEFAULT_SERVER", previous.c_str(), 1);
        else
            unsetenv("JACK_DEFAULT_SERVER");
    }
};

bool HasSequencer() {
    std::error_code ec;
    return std::filesystem::exists("/dev/snd/seq", ec);
}

}  // namespace

TEST(MidiDevices, TheFirstExactMatchOpensAndNoOtherIsTried) {
    FakeSystem alsa("alsa", {"Synth:in", "Twin:port", "Thru:0"});
    FakeSystem jack("jack", {"Twin:port", "synth:in", "Other:in"});
    const std::vector<BR::MidiDeviceSystem*> systems{&alsa, &jack};

    const auto listed = BR::ListMidiOutputDevices(systems);
    ASSERT_EQ(listed.size(), 6u);
    EXPECT_EQ(listed[1].name, "Twin:port");
    EXPECT_EQ(listed[1].system, "alsa");
    EXPECT_EQ(listed[3].name, "Twin:port");
    EXPECT_EQ(listed[3].system, "jack");

    // Both systems have "Twin:port": the first in the listing is opened.
    EXPECT_NE(BR::OpenMidiOutputDevice(systems, "Twin:port"), nullptr);
    EXPECT_EQ(alsa.opened, (std::vector<std::string>{"Twin:port"}));
    EXPECT_TRUE(jack.opened.empty());
    // Case counts.
    EXPECT_NE(BR::OpenMidiOutputDevice(systems, "synth:in"), nullptr);
    EXPECT_EQ(jack.opened, (std::vector<std::string>{"synth:in"}));
    // Neither prefixes, nor extra spaces, nor other case, nor the empty name match anything.
    for (const char* name : {"Synth", "Synth:in ", " Synth:in", "SYNTH:IN", "Other", "", "Thru:00"})
        EXPECT_EQ(BR::OpenMidiOutputDevice(systems, name), nullptr) << "\"" << name << "\"";
    EXPECT_EQ(alsa.opened.size(), 1u);
    EXPECT_EQ(jack.opened.size(), 1u);
    // The first match failing to open leaves none: the later device of the same name is no fallback.
    alsa.opens = false;
    EXPECT_EQ(BR::OpenMidiOutputDevice(systems, "Twin:port"), nullptr);
    EXPECT_EQ(alsa.opened.size(), 2u);
    EXPECT_EQ(jack.opened.size(), 1u);
}

TEST(MidiDevices, NoSequencerAndNoServerListNothingAndSayNothing) {
    NoJackServer noServer;
    testing::internal::CaptureStderr();
    testing::internal::CaptureStdout();
    const auto devices = BR::ListMidiOutputDevices();
    const auto opened = BR::OpenMidiOutputDevice("Midi Through:Midi Through Port-0");
    const std::string out = testing::internal::GetCapturedStdout();
    const std::string err = testing::internal::GetCapturedStderr();
    EXPECT_EQ(opened, nullptr);
    EXPECT_EQ(err, "");
    EXPECT_EQ(out, "");
    for (const auto& device : devices) {
        EXPECT_EQ(device.system, "alsa") << device.name;  // no JACK server of that name runs
        EXPECT_NE(device.name.find(':'), std::string::npos) << "client:port";
    }
    // This machine's sandbox has no sequencer device: then ALSA lists nothing either.
    if (!HasSequencer()) {
        EXPECT_TRUE(devices.empty());
    }
}

TEST(MidiDevices, AnUnknownNameGivesASilentModuleThatKeepsTheName) {
    NoJackServer noServer;
    BR::InstallMidiOutputDevices();
    // The listing reaches layers above the modules through the lister hook.
    ASSERT_NE(BR::GetMIDIOutputLister(), nullptr);
    std::vector<std::string> names;
    for (const auto& device : BR::ListMidiOutputDevices())
        names.push_back(device.name);
    EXPECT_EQ(BR::GetMIDIOutputLister()(), names);
    auto driver = BR::Test::MakeDriver("cvtomidi", 48000.0f);
    auto& module = static_cast<BrelCorvaneCVToMIDI::BrelCorvane&>(driver->Module());
    driver->SetParameterByName("Enable CC L", 1.0f);
    testing::internal::CaptureStderr();
    const char name[] = "No Such Synth:in";
    EXPECT_EQ(module.SetProperty(64100, name, sizeof name), 0);
    EXPECT_FALSE(module.Sender().HasDevice());
    BR::ModuleMidiCapture capture(64);
    ASSERT_TRUE(capture.Attach(*driver));
    std::vector<float> l(256), r(256), outL(256), outR(256);
    for (size_t i = 0; i < 256; ++i)
        l[i] = i < 128 ? -1.0f : 1.0f;
    const float* in[2] = {l.data(), r.data()};
    float* out[2] = {outL.data(), outR.data()};
    driver->Process(in, out, 256, nullptr, 0);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    // The module goes on computing (the host's copy sees the messages); the device ring stays empty.
    EXPECT_EQ(capture.Count(), 2u);
    EXPECT_EQ(module.Sender().WriteIndex(), 0);
    const char* text = nullptr;  // the property hands out the module's text
    EXPECT_EQ(module.GetProperty(64100, &text), 0);
    EXPECT_STREQ(text, "No Such Synth:in");
    BR::SetMIDIOutputOpener(nullptr);
    BR::SetMIDIOutputLister(nullptr);
}

// Needs a JACK server with a MIDI input port named by CORVANE_TEST_JACK_PORT (the JACK host test
// script provides both); skipped in a plain test run.
TEST(MidiDevicesJack, APortOpensByNameAndRenderingWithItOpenAllocatesNothing) {
    const char* port = std::getenv("CORVANE_TEST_JACK_PORT");
    if (!port) GTEST_SKIP() << "no JACK server given (tests/host/lv2/jalv_midi_out.sh runs this)";
    bool listed = false;
    for (const auto& device : BR::ListMidiOutputDevices())
        listed = listed || (device.system == "jack" && device.name == port);
    EXPECT_TRUE(listed) << port << " is not listed";
    BR::InstallMidiOutputDevices();
    auto driver = BR::Test::MakeDriver("cvtomidi", 48000.0f);
    auto& module = static_cast<BrelCorvaneCVToMIDI::BrelCorvane&>(driver->Module());
    driver->SetParameterByName("Enable CC L", 1.0f);
    driver->SetParameterByName("Send CC L", 21.0f);
    module.SetProperty(64100, port, uint32_t(std::strlen(port) + 1));
    ASSERT_TRUE(module.Sender().HasDevice());
    std::vector<float> l(256), r(256), outL(256), outR(256);
    const float* in[2] = {l.data(), r.data()};
    float* out[2] = {outL.data(), outR.data()};
    uint64_t allocations = 0;
    // 200 blocks, each with one controller change: 0, 127, 0, ...
    for (int b = 0; b < 200; ++b) {
        std::fill(l.begin(), l.end(), b % 2 ? 1.0f : -1.0f);
        BR::Test::AllocationScope scope;
        driver->Process(in, out, 256, nullptr, 0);
        allocations += scope.Count();
        std::this_thread::sleep_for(std::chrono::microseconds(500));  // let the sender keep up
    }
    EXPECT_EQ(allocations, 0u);
    EXPECT_EQ(module.Sender().Overflows(), 0u);
    // Everything written was read by the sender thread before the device closes.
    for (int i = 0; i < 2000 && module.Sender().ReadIndex() != (module.Sender().WriteIndex() + 63) % 64; ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    std::this_thread::sleep_for(std::chrono::milliseconds(300));  // and JACK's cycles took them
    driver.reset();
    BR::SetMIDIOutputOpener(nullptr);
}
