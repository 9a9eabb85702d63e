#include "ZULMRSBSPPredicatesEvaluatorCache.h"

#include "ZULMRSBSPHash.h"
#include "ZULMRSBSPPredicates.h"

ZULMRSBSPPredicatesEvaluatorCache::ZULMRSBSPPredicatesEvaluatorCache() = default;
ZULMRSBSPPredicatesEvaluatorCache::ZULMRSBSPPredicatesEvaluatorCache(
    const ZULMRSBSPPredicatesEvaluatorCache& other) = default;
ZULMRSBSPPredicatesEvaluatorCache::~ZULMRSBSPPredicatesEvaluatorCache() = default;

ZULMRSBSPPredicatesEvaluatorCache& ZULMRSBSPPredicatesEvaluatorCache::operator=(
    const ZULMRSBSPPredicatesEvaluatorCache& other)
{
    if (this != &other) {
        // First, so that a copy that throws leaves nothing behind; the table's own assignment does.
        clear();
        Table copy(other.m_Answers);
        m_Answers = std::move(copy);
    }
    return *this;
}

std::size_t ZULMRSBSPPredicatesEvaluatorCache::KeyHash::operator()(const Key& key) const
{
    return ZULMRSBSPHash::OfPointers(key.second, key.first);
}

ZULMRSExtendedBool ZULMRSBSPPredicatesEvaluatorCache::IsPointInFrontOfPlane(const ZULMRSBSPPlane& plane,
                                                                            const ZULMRSBSPPoint& point)
{
    Answer& answer = m_Answers.insert({Key(&plane, &point), Answer()}).first->second;
    // An entry without answer is new, or another thread is still at it: that one is not waited for.
    if (!answer.IsKnown()) {
        answer.Set(ZULMRSBSPPredicates::IsPointInFrontOfPlane(plane, point));
    }
    return answer.Get();
}

void ZULMRSBSPPredicatesEvaluatorCache::clear()
{
    // A new map: the old one would keep its buckets.
    m_Answers = Table();
}
