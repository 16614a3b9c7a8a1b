// lv2_descriptor of corvane-probe.lv2, the host tests' own bundle.
#include "HostProbe.h"
#include "host/lv2/Lv2Library.h"

extern "C" LV2_SYMBOL_EXPORT const LV2_Descriptor* lv2_descriptor(uint32_t index) {
    static const BR::Lv2Library library(BrelCorvaneHostProbe::ProbeBundleInfo());
    return library.Descriptor(index);
}
