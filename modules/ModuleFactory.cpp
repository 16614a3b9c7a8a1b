// The factory of each built module, by stem. A new module adds one line here.
#include "ModuleFactory.h"

#include <cstring>

#include "modules/events/CVToMIDI.h"
#include "modules/events/CVToOSC.h"
#include "modules/events/Follower.h"
#include "modules/events/Learner.h"
#include "modules/events/Soundplane.h"
#include "modules/hardware/ACEncoder.h"
#include "modules/hardware/ArdentController.h"
#include "modules/hardware/BasaltController.h"
#include "modules/hardware/CVInput.h"
#include "modules/hardware/CinderCombiner.h"
#include "modules/hardware/DunmoreCombiner.h"
#include "modules/hardware/SMUX.h"
#include "modules/sequencing/Quantizer.h"
#include "modules/sequencing/StepLFO.h"
#include "modules/sequencing/Sync.h"
#include "modules/sequencing/Trigger.h"
#include "modules/sequencing/VoiceController.h"
#include "modules/simple/DC.h"
#include "modules/simple/Function.h"
#include "modules/simple/LFO.h"

namespace BR {

namespace {
struct FactoryRow {
    const char* stem;
    ModuleFactoryFunction factory;
};

const FactoryRow kFactories[] = {
    // clang-format off
    {"acencoder", &BrelCorvaneACEncoder::Create},
    {"ardentcontroller", &BrelCorvaneArdentController::Create},
    {"basaltcontroller", &BrelCorvaneBasaltController::Create},
    {"cindercombiner", &BrelCorvaneCinderCombiner::Create},
    {"cvinput", &BrelCorvaneCVInput::Create},
    {"cvtomidi", &BrelCorvaneCVToMIDI::Create},
    {"cvtoosc", &BrelCorvaneCVToOSC::Create},
    {"dc", &BrelCorvaneDC::Create},
    {"dunmorecombiner", &BrelCorvaneDunmoreCombiner::Create},
    {"follower", &BrelCorvaneFollower::Create},
    {"Function", &BrelCorvaneFunction::Create},
    {"learner", &BrelCorvaneLearner::Create},
    {"lfo", &BrelCorvaneLFO::Create},
    {"quantizer", &BrelCorvaneQuantizer::Create},
    {"smux", &BrelCorvaneSMUX::Create},
    {"soundplane", &BrelCorvaneSoundplane::Create},
    {"steplfo", &BrelCorvaneStepLFO::Create},
    {"sync", &BrelCorvaneSync::Create},
    {"trigger", &BrelCorvaneTrigger::Create},
    {"voicecontroller", &BrelCorvaneVoiceController::Create},
    // clang-format on
};
}  // namespace

ModuleFactoryFunction FindModuleFactory(const CatalogueEntry& entry) {
    for (const FactoryRow& row : kFactories)
        if (std::strcmp(row.stem, entry.stem) == 0) return row.factory;
    return nullptr;
}

std::unique_ptr<BrelCorvaneBase> CreateModule(const std::string& stemOrId) {
    const CatalogueEntry* entry = FindCatalogueEntry(stemOrId);
    if (!entry) return nullptr;
    ModuleFactoryFunction factory = FindModuleFactory(*entry);
    return factory ? std::unique_ptr<BrelCorvaneBase>(factory()) : nullptr;
}

}  // namespace BR
