// The host-side parameter object: a value with a linear taper, read lock-free by the audio thread.
#pragma once

#include <atomic>
#include <string>

namespace BR {

// Stands in for the platform's parameter object. Every row gets a linear taper over its whole range
// and a two-decimal display, whatever its unit; Master Bypass is a two-step boolean.
class Parameter {
public:
    enum class Kind { Float, Boolean };

    Parameter(std::string identifier, std::string name, Kind kind, float minimum, float maximum,
              float defaultValue);

    const std::string& Identifier() const { return identifier; }
    const std::string& Name() const { return name; }
    Kind GetKind() const { return kind; }
    float Minimum() const { return minimum; }
    float Maximum() const { return maximum; }
    float DefaultValue() const { return defaultValue; }
    int32_t NumberOfSteps() const { return kind == Kind::Boolean ? 2 : 0; }

    float GetValueAsFloat() const { return value.load(std::memory_order_relaxed); }
    bool GetValueAsBool() const { return GetValueAsFloat() != 0.0f; }
    // Clamps to the taper's ends; a boolean stores 0 or 1.
    void SetValue(float newValue);

    double GetNormalizedValue() const;
    static double Normalize(float v, float lo, float hi) {
        return hi == lo ? 0.0 : (double(v) - lo) / (double(hi) - lo);
    }
    float ValueFromNormalized(double normalized) const;

    // The platform's own display: "bypass"/"on" for the boolean, two decimals otherwise.
    std::string ValueString() const;

    // Set when the value changed since the host last looked; the automation delegate's dirty list.
    bool TakeDirty() { return dirty.exchange(false, std::memory_order_acq_rel); }
    void MarkDirty() { dirty.store(true, std::memory_order_release); }

private:
    std::string identifier;
    std::string name;
    Kind kind;
    float minimum;
    float maximum;
    float defaultValue;
    std::atomic<float> value;
    std::atomic<bool> dirty{false};
};

}  // namespace BR
