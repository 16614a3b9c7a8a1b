// Which catalogue modules exist in this build, and how to make one.
#pragma once

#include <memory>
#include <string>

#include "framework/BrelCorvaneBase.h"
#include "framework/ModuleCatalogue.h"

namespace BR {

using ModuleFactoryFunction = BrelCorvaneBase* (*)();

// Null when the module is not built yet.
ModuleFactoryFunction FindModuleFactory(const CatalogueEntry& entry);
// Null when the stem or id is unknown or the module is not built.
std::unique_ptr<BrelCorvaneBase> CreateModule(const std::string& stemOrId);

}  // namespace BR
