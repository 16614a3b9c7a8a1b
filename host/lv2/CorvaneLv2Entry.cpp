// The one symbol corvane.so exports: a descriptor for every module the build carries.
#include "host/devices/MidiDevices.h"
#include "host/lv2/Lv2Library.h"
#include "remote/RemoteServices.h"

extern "C" LV2_SYMBOL_EXPORT const LV2_Descriptor* lv2_descriptor(uint32_t index) {
    // Every instance the host makes gets its OSC server and Lua helper, and CV To MIDI the system's
    // MIDI output devices by name.
    static const bool servicesInstalled = (BR::InstallRemoteServices(), BR::InstallMidiOutputDevices(), true);
    (void)servicesInstalled;
    static const BR::Lv2Library library(BR::CorvaneBundleInfo());
    return library.Descriptor(index);
}
