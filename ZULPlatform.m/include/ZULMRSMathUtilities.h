#ifndef ZULMRSMathUtilities_h
#define ZULMRSMathUtilities_h

#include "ZULMathVector.h"
#include "ZULPlatformExport.h"

namespace ZULMRSMathUtilities
{
/// Completes v to a right-handed orthogonal basis (v, u1, u2): u1 and u2 are unit vectors, u2 along v x u1.
/// Returns 0; or -1 for a vector of length zero or not finite, and then u1 = (1, 0, 0), u2 = (0, 1, 0).
ZULPlatform_API int CompleteOrthogonalBasis(const ZULMathVector& v, ZULMathVector& u1, ZULMathVector& u2);
}  // namespace ZULMRSMathUtilities

#endif
