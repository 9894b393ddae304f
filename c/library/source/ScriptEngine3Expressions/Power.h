#pragma once

// `base` to the power of `exponent`. A whole exponent gives the same digits on
// every system: the C libraries differ there in the last of them.
double evaluatePower(double base, double exponent);
