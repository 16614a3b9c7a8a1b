// Low-pass design by the bilinear transform (Butterworth, or Chebyshev with a ripple) and the direct
// form filter that runs it, shared by the CV combiners, the Voice Controller and CV Input.
#pragma once

#include <cmath>
#include <cstdint>

namespace BR {

// Fills feedForward[order + 1], feedback[order] and gain. `cutoff` is a fraction of the sample rate;
// `ripple` below 0 asks for a Chebyshev design with -ripple dB of pass-band ripple, else Butterworth.
// feedForward[i] multiplies x[n - order + i]; feedback[i] multiplies y[n - order + i]. `gain` is the
// magnitude at 0 Hz, which callers divide out. Orders from 1 to 10.
void DesignLowpass(int32_t order, double ripple, double cutoff, float* feedForward, float* feedback,
                   float& gain);

// One coefficient set, shared by every filter of an instance. `cutoff` and `ripple` are the design's.
template <int32_t Order>
struct LowpassCoefficients {
    float feedForward[Order + 1] = {};
    float feedback[Order] = {};
    float gain = 1.0f;
    float cutoff = 0.0f;
    float ripple = 0.0f;

    // Designs, then divides the feed-forward taps by the gain so that 0 Hz passes unchanged.
    void Design(double rippleDb, double cutoffFraction) {
        DesignLowpass(Order, rippleDb, cutoffFraction, feedForward, feedback, gain);
        // The gain divided out is that of the taps as stored: the float rounding of the feedback
        // taps moves the response at 0 Hz by a few tenths of a percent, and a control voltage
        // must pass unchanged.
        double sumForward = 0.0, sumBack = 0.0;
        for (float a : feedForward)
            sumForward += a;
        for (float b : feedback)
            sumBack += b;
        const double storedGain = sumForward / (1.0 - sumBack);
        if (std::isfinite(storedGain) && storedGain > 0.0) gain = float(storedGain);
        for (float& a : feedForward)
            a /= gain;
        gain = 1.0f;
        cutoff = float(cutoffFraction);
        ripple = float(rippleDb);
    }
};

// Direct form: y[n] = sum a[i] x[n - Order + i] + sum b[i] y[n - Order + i], all in floats.
// Histories hold the earlier samples oldest first, the latest last.
template <int32_t Order>
class DirectFormFilter {
public:
    void SetCoefficients(const LowpassCoefficients<Order>* shared) { coefficients = shared; }
    void Clear() {
        for (float& v : x)
            v = 0.0f;
        for (float& v : y)
            v = 0.0f;
    }

    float Process(float input) {
        const LowpassCoefficients<Order>& c = *coefficients;
        for (int32_t i = 0; i < Order; ++i)
            x[i] = x[i + 1];
        x[Order] = input;
        float sum = 0.0f;
        for (int32_t i = 0; i <= Order; ++i)
            sum += c.feedForward[i] * x[i];
        for (int32_t i = 0; i < Order; ++i)
            sum += c.feedback[i] * y[i + 1];
        for (int32_t i = 0; i < Order; ++i)
            y[i] = y[i + 1];
        y[Order] = sum;
        return sum;
    }

    float LatestOutput() const { return y[Order]; }

private:
    const LowpassCoefficients<Order>* coefficients = nullptr;
    float x[Order + 1] = {};
    float y[Order + 1] = {};
};

using FifthOrderFilter = DirectFormFilter<5>;
using TenthOrderFilter = DirectFormFilter<10>;

// Non-numbers become 0 and magnitudes are held within +-limit, so a stray sample can neither poison
// a filter's history for good nor overflow it.
inline float SanitizeSample(float x, float limit = 1.0e4f) {
    if (!(x == x)) return 0.0f;
    return x > limit ? limit : (x < -limit ? -limit : x);
}

}  // namespace BR
