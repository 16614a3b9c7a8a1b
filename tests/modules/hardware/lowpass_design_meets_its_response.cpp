// DesignLowpass against the response it promises: the magnitude of the filter's impulse response,
// measured by a direct Fourier sum, at the cutoff (-3.01 dB Butterworth, -ripple dB Chebyshev), in
// the stop band (the warped analogue formula) and at 0 Hz (unity after the gain is divided out).
#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <cstdio>

#include "modules/hardware/LowpassDesign.h"

namespace {

constexpr double kPi = 3.14159265358979323846;

// |H(f)| from the first `length` samples of the impulse response; f is a fraction of the rate.
template <int32_t Order>
double MeasuredMagnitude(const BR::LowpassCoefficients<Order>& c, double f, int length = 1 << 15) {
    BR::DirectFormFilter<Order> filter;
    filter.SetCoefficients(&c);
    std::complex<double> sum(0.0, 0.0);
    for (int n = 0; n < length; ++n) {
        const double h = filter.Process(n == 0 ? 1.0f : 0.0f);
        sum += h * std::polar(1.0, -2.0 * kPi * f * n);
    }
    return std::abs(sum);
}

double Decibels(double m) {
    return 20.0 * std::log10(m);
}

// Butterworth of order N: 1 / sqrt(1 + (tan(pi f) / tan(pi fc))^(2N)).
double ButterworthMagnitude(int order, double f, double fc) {
    const double r = std::tan(kPi * f) / std::tan(kPi * fc);
    return 1.0 / std::sqrt(1.0 + std::pow(r, 2.0 * order));
}

// Chebyshev of the first kind in the warped frequency: 1 / sqrt(1 + eps^2 T_N(r)^2).
double ChebyshevMagnitude(int order, double rippleDb, double f, double fc) {
    const double eps2 = std::pow(10.0, rippleDb * 0.1) - 1.0;
    const double r = std::tan(kPi * f) / std::tan(kPi * fc);
    const double t = r <= 1.0 ? std::cos(order * std::acos(r)) : std::cosh(order * std::acosh(r));
    return 1.0 / std::sqrt(1.0 + eps2 * t * t);
}

}  // namespace

TEST(LowpassDesign, ButterworthFifthOrderAtSeveralCutoffsAndRates) {
    // Cutoffs from 2 % of the rate up: below that a fifth order direct form in floats loses the
    // precision of its poles, which is why the users of this design keep their cutoffs higher.
    for (double rate : {44100.0, 48000.0, 96000.0}) {
        for (double hz : {2000.0, 4000.0, 8000.0}) {
            const double fc = hz / rate;
            BR::LowpassCoefficients<5> c;
            c.Design(0.0, fc);
            EXPECT_NEAR(Decibels(MeasuredMagnitude(c, 0.0)), 0.0, 0.05) << rate << " " << hz;
            const double atCutoff = Decibels(MeasuredMagnitude(c, fc));
            EXPECT_NEAR(atCutoff, -3.0103, 0.05) << rate << " " << hz;
            for (double k : {1.5, 2.0, 3.0}) {
                const double f = fc * k;
                if (f >= 0.45) continue;
                const double expected = ButterworthMagnitude(5, f, fc);
                EXPECT_NEAR(Decibels(MeasuredMagnitude(c, f)), Decibels(expected), 0.3)
                    << rate << " " << hz << " " << k;
            }
            // An octave up a fifth order has fallen by 30 dB.
            if (2.0 * fc < 0.45) {
                EXPECT_LT(Decibels(MeasuredMagnitude(c, fc * 2.0)), -29.5);
            }
        }
    }
}

TEST(LowpassDesign, ChebyshevOneDecibelAsTheCombinersUseIt) {
    for (double fc : {0.04464286, 0.041666668, 0.0625, 0.1}) {
        BR::LowpassCoefficients<5> c;
        c.Design(-1.0, fc);
        EXPECT_NEAR(Decibels(MeasuredMagnitude(c, 0.0)), 0.0, 0.05) << fc;
        EXPECT_NEAR(Decibels(MeasuredMagnitude(c, fc)), -1.0, 0.05) << fc;
        // Pass band ripples between 0 and -1 dB.
        for (double k : {0.2, 0.5, 0.8, 0.95}) {
            const double db = Decibels(MeasuredMagnitude(c, fc * k));
            EXPECT_LE(db, 0.05) << fc << " " << k;
            EXPECT_GE(db, -1.05) << fc << " " << k;
        }
        for (double k : {1.5, 2.0, 3.0}) {
            const double expected = Decibels(ChebyshevMagnitude(5, 1.0, fc * k, fc));
            EXPECT_NEAR(Decibels(MeasuredMagnitude(c, fc * k)), expected, 0.2) << fc << " " << k;
        }
        std::printf("Chebyshev 5th order cutoff %.6f: %.3f dB at cutoff, %.2f dB at twice it\n", fc,
                    Decibels(MeasuredMagnitude(c, fc)), Decibels(MeasuredMagnitude(c, 2.0 * fc)));
    }
}

TEST(LowpassDesign, TenthOrderButterworthAsCVInputUsesIt) {
    for (double fc : {0.068, 0.117, 0.3}) {
        BR::LowpassCoefficients<10> c;
        c.Design(0.0, fc);
        // A tenth order in floats is coarser: a few tenths of a decibel.
        EXPECT_NEAR(Decibels(MeasuredMagnitude(c, 0.0)), 0.0, 0.3) << fc;
        EXPECT_NEAR(Decibels(MeasuredMagnitude(c, fc)), -3.0103, 0.3) << fc;
        const double f = std::min(fc * 1.5, 0.45);
        const double expected = Decibels(ButterworthMagnitude(10, f, fc));
        // Below -90 dB lies the noise floor of the float arithmetic.
        if (expected > -90.0) {
            EXPECT_NEAR(Decibels(MeasuredMagnitude(c, f)), expected, 1.0) << fc;
        } else {
            EXPECT_LT(Decibels(MeasuredMagnitude(c, f)), -90.0) << fc;
        }
        // The carrier at half the rate is a zero of the design.
        EXPECT_LT(MeasuredMagnitude(c, 0.5), 1e-3) << fc;
    }
}

TEST(LowpassDesign, RawGainIsTheMagnitudeAtZeroHertz) {
    float a[6], b[5], gain = 0.0f;
    BR::DesignLowpass(5, 0.0, 0.05, a, b, gain);
    double sumA = 0.0, sumB = 0.0;
    for (float v : a)
        sumA += v;
    for (float v : b)
        sumB += v;
    EXPECT_NEAR(gain, sumA / (1.0 - sumB), 1e-3 * gain);
    // Zeros at -1: the taps are binomial multiples of one another.
    EXPECT_NEAR(a[1] / a[0], 5.0, 1e-3);
    EXPECT_NEAR(a[2] / a[0], 10.0, 1e-3);
}
