#include "ZULMRSBSPPredicatesEvaluator.h"

#include "ZULMRSBSPPredicates.h"

ZULMRSBSPPredicatesEvaluator::~ZULMRSBSPPredicatesEvaluator() = default;

ZULMRSExtendedBool ZULMRSBSPPredicatesEvaluator::IsPointInFrontOfPlane(const ZULMRSBSPPlane& plane,
                                                                       const ZULMRSBSPPoint& point)
{
    return ZULMRSBSPPredicates::IsPointInFrontOfPlane(plane, point);
}

ZULMRSExtendedBool ZULMRSBSPPredicatesEvaluator::ArePointsEqual(const ZULMRSBSPPoint& p,
                                                                const ZULMRSBSPPoint& q)
{
    return ZULMRSBSPPredicates::ArePointsEqual(p, q);
}

void ZULMRSBSPPredicatesEvaluator::clear() {}
