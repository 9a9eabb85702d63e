#ifndef ZULMRSBSPPredicatesEvaluator_h
#define ZULMRSBSPPredicatesEvaluator_h

#include "ZULMRSBSPPlane.h"
#include "ZULMRSBSPPoint.h"
#include "ZULMRSExtendedBool.h"
#include "ZULMRSPlaneBasedInfraExport.h"

/// The predicates as an object, so that a user may choose at run time how questions are answered. This one
/// asks ZULMRSBSPPredicates every time. No state: safe from any number of threads.
class ZULMRSPlaneBasedInfra_API ZULMRSBSPPredicatesEvaluator
{
public:
    ZULMRSBSPPredicatesEvaluator() = default;
    ZULMRSBSPPredicatesEvaluator(const ZULMRSBSPPredicatesEvaluator& other) = default;
    ZULMRSBSPPredicatesEvaluator& operator=(const ZULMRSBSPPredicatesEvaluator& other) = default;
    virtual ~ZULMRSBSPPredicatesEvaluator();

    /// As ZULMRSBSPPredicates::IsPointInFrontOfPlane.
    virtual ZULMRSExtendedBool IsPointInFrontOfPlane(const ZULMRSBSPPlane& plane,
                                                     const ZULMRSBSPPoint& point);
    /// As ZULMRSBSPPredicates::ArePointsEqual.
    virtual ZULMRSExtendedBool ArePointsEqual(const ZULMRSBSPPoint& p, const ZULMRSBSPPoint& q);
    /// Forgets whatever is remembered; here nothing is.
    virtual void clear();
};

#endif
