#ifndef ZULExpSign_h
#define ZULExpSign_h

/// Sign of a number of any arithmetic: -1, 0 or 1 when it is certain (0 is always exactly zero),
/// ZULExpSignUncertain when the arithmetic cannot tell.
using ZULExpSign_t = int;

constexpr ZULExpSign_t ZULExpSignNegative = -1;
constexpr ZULExpSign_t ZULExpSignZero = 0;
constexpr ZULExpSign_t ZULExpSignPositive = 1;
constexpr ZULExpSign_t ZULExpSignUncertain = -2;

#endif
