#include "ZULMRSBSPPredicatesEvaluatorCache.h"

#include <memory>

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
        // The table's own assignment leaves a half copy behind when it throws.
        std::destroy_at(&m_Answers);
        try {
            std::construct_at(&m_Answers, other.m_Answers);
        } catch (...) {
            std::construct_at(&m_Answers);
            throw;
        }
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
    // A new table in place: the old one would keep its number of buckets, and to move or swap a table takes
    // memory, whose lack then ends the program. To make an empty one takes none.
    std::destroy_at(&m_Answers);
    std::construct_at(&m_Answers);
}
