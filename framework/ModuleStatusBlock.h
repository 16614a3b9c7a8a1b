// The one record that audio code and editor code share without a queue.
#pragma once

#include <cstdint>
#include <new>

namespace BR {

constexpr int kNumGUIBoolValues = 8;

// Same fixed size in every module. The module places its own display fields at the front with
// Emplace<T>() and reads them back with As<T>(); a torn read costs one wrong frame of display.
struct ModuleStatusBlock {
    static constexpr uint32_t kModuleBytes = 4096;

    alignas(16) uint8_t moduleData[kModuleBytes];
    bool GUIBoolValues[kNumGUIBoolValues];

    template <class T>
    T& Emplace() {
        static_assert(sizeof(T) <= kModuleBytes, "module status fields exceed the status block");
        return *new (moduleData) T();
    }
    template <class T>
    T& As() {
        return *std::launder(reinterpret_cast<T*>(moduleData));
    }
    template <class T>
    const T& As() const {
        return *std::launder(reinterpret_cast<const T*>(moduleData));
    }
};

}  // namespace BR
