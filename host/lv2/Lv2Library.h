// The descriptors a bundle's shared object hands out through lv2_descriptor, one per module, with the
// plain C entry points, state, worker and options glue behind them.
#pragma once

#include <lv2/core/lv2.h>

#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include "host/lv2/Lv2Bundle.h"

namespace BR {

class Lv2Library {
public:
    explicit Lv2Library(Lv2BundleInfo bundle);
    Lv2Library(const Lv2Library&) = delete;
    Lv2Library& operator=(const Lv2Library&) = delete;

    // Null past the last module.
    const LV2_Descriptor* Descriptor(uint32_t index) const;
    const Lv2BundleInfo& Bundle() const { return bundle; }

    // The descriptor is the first member, so the host's descriptor pointer leads back to its class.
    struct PluginClass {
        LV2_Descriptor descriptor;
        const Lv2Library* library;
        const Lv2ModuleSource* source;
    };
    static_assert(std::is_standard_layout_v<PluginClass>);

private:
    Lv2BundleInfo bundle;
    std::vector<std::string> uris;
    std::vector<std::unique_ptr<PluginClass>> classes;
};

}  // namespace BR
