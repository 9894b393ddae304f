#include "ScriptEngine3Expressions/Power.h"

#include <cmath>
#include <cstdlib>

namespace {

// Beyond this the powers of all but a few bases are 0 or infinite.
constexpr double kMaxExponent = 4096;
constexpr int kSmallestNormal = -1021;

// The number (high + low) * 2^scale, twice as precise as a double and with
// room for any power. `high` lies in [0.5, 1) but for its sign.
struct WideNumber {
    double high;
    double low;
    int scale;
};

WideNumber normal(double high, double low, int scale) {
    int shift = 0;
    const double top = std::frexp(high + low, &shift);
    const double rest = (high - (high + low)) + low;
    return {top, std::ldexp(rest, -shift), scale + shift};
}

// The product of two doubles and what its rounding lost.
void multiply(double a, double b, double* product, double* lost) {
    constexpr double kSplit = 134217729;  // 2^27 + 1
    const double aTop = kSplit * a - (kSplit * a - a);
    const double bTop = kSplit * b - (kSplit * b - b);
    const double aRest = a - aTop;
    const double bRest = b - bTop;
    *product = a * b;
    *lost = ((aTop * bTop - *product) + aTop * bRest + aRest * bTop) + aRest * bRest;
}

WideNumber times(const WideNumber& a, const WideNumber& b) {
    double product;
    double lost;
    multiply(a.high, b.high, &product, &lost);
    return normal(product, lost + (a.high * b.low + a.low * b.high), a.scale + b.scale);
}

WideNumber inverse(const WideNumber& a) {
    const double quotient = 1 / a.high;
    double product;
    double lost;
    multiply(quotient, a.high, &product, &lost);
    const double rest = ((1 - product) - lost - quotient * a.low) / a.high;
    return normal(quotient, rest, -a.scale);
}

}  // namespace

double evaluatePower(double base, double exponent) {
    const bool isWhole = exponent == std::trunc(exponent) && std::fabs(exponent) <= kMaxExponent;
    if (!isWhole || exponent == 0 || base == 0 || !std::isfinite(base))
        return std::pow(base, exponent);
    WideNumber square = normal(base, 0, 0);
    WideNumber result = {0.5, 0, 1};
    for (int left = std::abs(static_cast<int>(exponent)); left != 0; left /= 2) {
        if (left % 2 != 0) result = times(result, square);
        square = times(square, square);
    }
    if (exponent < 0) result = inverse(result);
    // Below the normal numbers a second rounding would show.
    if (result.scale < kSmallestNormal) return std::pow(base, exponent);
    return std::ldexp(result.high + result.low, result.scale);
}
