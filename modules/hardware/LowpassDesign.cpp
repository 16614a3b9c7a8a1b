// Low-pass design: analogue prototype poles, frequency warping, bilinear map and the expansion of
// numerator and denominator, all in double precision.
#include "LowpassDesign.h"

#include <cmath>
#include <complex>

namespace BR {

namespace {
using Complex = std::complex<double>;
constexpr int32_t kMaxOrder = 10;
}  // namespace

void DesignLowpass(int32_t order, double ripple, double cutoff, float* feedForward, float* feedback,
                   float& gain) {
    if (order < 1) order = 1;
    if (order > kMaxOrder) order = kMaxOrder;
    const double pi = 3.14159265358979323846;

    // Prototype poles on the unit circle, left half only.
    Complex poles[kMaxOrder];
    int32_t numPoles = 0;
    for (int32_t k = 0; k < 2 * order && numPoles < order; ++k) {
        const double angle = (order % 2 == 0 ? (k + 0.5) : double(k)) * pi / order;
        const double re = std::cos(angle);
        if (re < 0.0) poles[numPoles++] = Complex(re, std::sin(angle));
    }
    if (ripple < 0.0) {
        const double d = 1.0 / std::sqrt(std::pow(10.0, -ripple * 0.1) - 1.0);
        const double a = std::log(std::sqrt(d * d + 1.0) + d) / order;
        for (int32_t i = 0; i < numPoles; ++i)
            poles[i] = Complex(poles[i].real() * std::sinh(a), poles[i].imag() * std::cosh(a));
    }
    // Prewarp so that the bilinear map puts the edge of the band exactly at `cutoff`.
    const double w = std::tan(pi * cutoff) / pi * 2.0 * pi;
    for (int32_t i = 0; i < numPoles; ++i)
        poles[i] = (2.0 + poles[i] * w) / (2.0 - poles[i] * w);

    // Numerator (z + 1)^order and denominator prod (z - p), coefficients by ascending power.
    Complex numerator[kMaxOrder + 1] = {Complex(1.0, 0.0)};
    Complex denominator[kMaxOrder + 1] = {Complex(1.0, 0.0)};
    for (int32_t i = 0; i < numPoles; ++i) {
        for (int32_t j = i + 1; j > 0; --j) {
            numerator[j] = numerator[j - 1] + numerator[j] * 1.0;
            denominator[j] = denominator[j - 1] - denominator[j] * poles[i];
        }
        numerator[0] = numerator[0] * 1.0;
        denominator[0] = -denominator[0] * poles[i];
    }
    const Complex top = denominator[order];
    Complex sumNumerator(0.0, 0.0), sumDenominator(0.0, 0.0);
    for (int32_t i = 0; i <= order; ++i) {
        feedForward[i] = float((numerator[i] / top).real());
        sumNumerator += numerator[i];
        sumDenominator += denominator[i];
        if (i < order) feedback[i] = float(-(denominator[i] / top).real());
    }
    gain = float(std::abs(sumNumerator / sumDenominator));
}

}  // namespace BR
