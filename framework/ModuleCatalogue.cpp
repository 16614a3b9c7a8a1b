// The catalogue rows, as data.
#include "ModuleCatalogue.h"

#include "HostInterfaces.h"

namespace BR {

namespace {
constexpr uint32_t S = kStemFormatStereo;
constexpr uint32_t M = kStemFormatMono;

const CatalogueEntry kCatalogue[kNumCatalogueEntries] = {
    {"acencoder", "AC Encoder", "CRac", "BrelCorvaneACEncoder", S, S, 0, 0, 2, 2, 0, 1, 9, -1,
     "gui_acencoder.lua"},
    {"cvinput", "CV Input", "CRcv", "BrelCorvaneCVInput", S, S, 0, 0, 2, 2, 0, 1, 18, -1, "gui_cvinput.lua"},
    {"cvtomidi", "CV To MIDI", "CRcm", "BrelCorvaneCVToMIDI", S, S, 0, 0, 2, 2, 0, 1, 32, -1,
     "gui_cvtomidi.lua"},
    {"cvtoosc", "CV To OSC", "CRco", "BrelCorvaneCVToOSC", S, S, 0, 0, 2, 2, 0, 1, 7, -1, "gui_cvtoosc.lua"},
    {"dc", "DC", "CRdc", "BrelCorvaneDC", S, S, 0, 0, 2, 2, 10, 1, 13, -1, "gui_dc.lua"},
    {"ardentcontroller", "Ardent Controller", "CR4c", "BrelCorvaneArdentController", S, S, 6, 0, 8, 2, 5, 1,
     133, 127, "gui_ardentcontroller.lua"},
    {"basaltcontroller", "Basalt Controller", "CR3c", "BrelCorvaneBasaltController", S, S, 6, 0, 8, 2, 6, 1,
     119, 113, "gui_basaltcontroller.lua"},
    {"cindercombiner", "Cinder Combiner", "CRxv", "BrelCorvaneCinderCombiner", S, S, 4, 0, 6, 2, 6, 1, 19, 18,
     "gui_cindercombiner.lua"},
    {"dunmorecombiner", "Dunmore Combiner", "CR8v", "BrelCorvaneDunmoreCombiner", S, S, 8, 0, 10, 2, 10, 1,
     32, 30, "gui_dunmorecombiner.lua"},
    {"follower", "Follower", "CRfl", "BrelCorvaneFollower", S, S, 0, 0, 2, 2, 13, 1, 21, -1,
     "gui_follower.lua"},
    {"Function", "Function", "CRfn", "BrelCorvaneFunction", S, S, 0, 0, 2, 2, 0, 1, 13, -1,
     "gui_function.lua"},
    {"learner", "Learner", "CRlr", "BrelCorvaneLearner", S, S, 0, 0, 2, 2, 0, 1, 2, -1, "gui_learner.lua"},
    {"lfo", "LFO", "CRlf", "BrelCorvaneLFO", S, S, 0, 0, 2, 2, 0, 2, 43, -1, "gui_lfo.lua"},
    {"quantizer", "Quantizer", "CRqn", "BrelCorvaneQuantizer", S, S, 0, 0, 2, 2, 0, 1, 23, -1,
     "gui_quantizer.lua"},
    {"smux", "SMUX", "CRsx", "BrelCorvaneSMUX", S, S, 2, 0, 4, 2, 2, 1, 3, -1, "gui_smux.lua"},
    {"soundplane", "Soundplane", "CRsp", "BrelCorvaneSoundplane", S, S, 0, 2, 0, 6, 44, 1, 45, -1,
     "gui_soundplane.lua"},
    {"steplfo", "Step LFO", "CRst", "BrelCorvaneStepLFO", S, S, 4, 0, 6, 2, 0, 1, 321, -1, "gui_steplfo.lua"},
    {"sync", "Sync", "CRSy", "BrelCorvaneSync", S, S, 0, 0, 2, 2, 14, 2, 25, 18, "gui_sync.lua"},
    {"trigger", "Trigger", "CRtr", "BrelCorvaneTrigger", M, M, 0, 0, 1, 1, 0, 1, 33, -1, "gui_trigger.lua"},
    {"voicecontroller", "Voice Controller", "CRvc", "BrelCorvaneVoiceController", M, S, 0, 2, 1, 6, 54, 1,
     152, 134, "gui_voicecontroller.lua"},
};
}  // namespace

const CatalogueEntry* CatalogueEntries() {
    return kCatalogue;
}

const CatalogueEntry* FindCatalogueEntry(const std::string& stemOrId) {
    for (const CatalogueEntry& entry : kCatalogue)
        if (stemOrId == entry.stem || stemOrId == entry.id) return &entry;
    return nullptr;
}

std::string EffectIdentifier(const CatalogueEntry& entry) {
    return std::string("com.brelmont.corvane.") + entry.stem;
}

uint32_t IdAsTag(const char* id) {
    return (uint32_t(uint8_t(id[0])) << 24) | (uint32_t(uint8_t(id[1])) << 16) |
           (uint32_t(uint8_t(id[2])) << 8) | uint32_t(uint8_t(id[3]));
}

}  // namespace BR
