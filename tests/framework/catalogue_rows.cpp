// The twenty rows of the catalogue, in order: stem, module name, id, class scope, stem formats,
// sidechains and aux outputs as the host is told, and each module's ModuleConfig and panel script.
#include <gtest/gtest.h>

#include <string>

#include "framework/HostInterfaces.h"
#include "framework/ModuleCatalogue.h"

namespace {
struct Row {
    const char *stem, *name, *id, *scope;
    uint32_t in, out;
    int sidechains, aux, inputs, outputs, oscIndex, presets, parameters, category;
    const char* script;
};
constexpr uint32_t S = 0x10002, M = 1;
const Row kRows[20] = {
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

TEST(Catalogue, TwentyRowsInOrder) {
    ASSERT_EQ(BR::kNumCatalogueEntries, 20);
    const BR::CatalogueEntry* entries = BR::CatalogueEntries();
    for (int i = 0; i < 20; ++i) {
        const BR::CatalogueEntry& e = entries[i];
        const Row& r = kRows[i];
        SCOPED_TRACE(r.stem);
        EXPECT_STREQ(e.stem, r.stem);
        EXPECT_STREQ(e.moduleName, r.name);
        EXPECT_STREQ(e.id, r.id);
        EXPECT_STREQ(e.classScope, r.scope);
        EXPECT_EQ(e.inputStem, r.in);
        EXPECT_EQ(e.outputStem, r.out);
        EXPECT_EQ(e.sidechains, r.sidechains);
        EXPECT_EQ(e.auxOutputs, r.aux);
        EXPECT_EQ(e.numInputs, r.inputs);
        EXPECT_EQ(e.numOutputs, r.outputs);
        EXPECT_EQ(e.oscPortOffsetIndex, r.oscIndex);
        EXPECT_EQ(e.numPresets, r.presets);
        EXPECT_EQ(e.numParameters, r.parameters);
        EXPECT_EQ(e.interfaceCategoryIndex, r.category);
        EXPECT_STREQ(e.guiScriptName, r.script);
        // Inputs are the main pair plus sidechains, outputs the main pair plus two per aux stem, save
        // for the mono stems.
        if (r.in == S && r.inputs != 0) {
            EXPECT_EQ(r.inputs, 2 + r.sidechains);
        }
        if (r.out == S) {
            EXPECT_EQ(r.outputs, 2 + 2 * r.aux);
        }
        EXPECT_EQ(BR::FindCatalogueEntry(r.stem), &e);
        EXPECT_EQ(BR::FindCatalogueEntry(r.id), &e);
    }
    EXPECT_STREQ(BR::kManufacturerId, "Brel");
    EXPECT_STREQ(BR::kManufacturerName, "Brelmont");
    EXPECT_EQ(BR::kPluginCategory, 2048u);
    EXPECT_EQ(BR::FindCatalogueEntry("nosuch"), nullptr);
    EXPECT_EQ(BR::FindCatalogueEntry(""), nullptr);
}
