#ifndef ZULMRSBSPPredicatesEvaluatorCache_h
#define ZULMRSBSPPredicatesEvaluatorCache_h

#include <atomic>
#include <cstddef>
#include <utility>

#include <tbb/concurrent_unordered_map.h>

#include "ZULMRSBSPPredicatesEvaluator.h"

/// Remembers the sides of points, per plane object and point object; equality of points is asked anew every
/// time. Grows until clear(). Keys are addresses and hold no reference: clear() before a plane or a point
/// that was asked about is changed, released or its address used again. IsPointInFrontOfPlane may be called
/// on one cache from many threads at once, and no thread waits for another; clear(), assignment and
/// destruction need the cache to themselves. std::bad_alloc when memory is exhausted; the cache then is as
/// before.
class ZULMRSPlaneBasedInfra_API ZULMRSBSPPredicatesEvaluatorCache : public ZULMRSBSPPredicatesEvaluator
{
public:
    ZULMRSBSPPredicatesEvaluatorCache();
    /// Copies take over every answer. A copy that fails for lack of memory leaves the target empty.
    ZULMRSBSPPredicatesEvaluatorCache(const ZULMRSBSPPredicatesEvaluatorCache& other);
    ZULMRSBSPPredicatesEvaluatorCache& operator=(const ZULMRSBSPPredicatesEvaluatorCache& other);
    ~ZULMRSBSPPredicatesEvaluatorCache() override;

    ZULMRSExtendedBool IsPointInFrontOfPlane(const ZULMRSBSPPlane& plane,
                                             const ZULMRSBSPPoint& point) override;
    void clear() override;

private:
    using Key = std::pair<const ZULMRSBSPPlane*, const ZULMRSBSPPoint*>;

    struct KeyHash {
        std::size_t operator()(const Key& key) const;
    };

    /// An answer that several threads may store at once, all the same one; until then it is none.
    class Answer
    {
    public:
        Answer() = default;
        Answer(const Answer& other) : m_Value(other.m_Value.load(std::memory_order_relaxed)) {}
        Answer& operator=(const Answer&) = delete;
        ~Answer() = default;

        bool IsKnown() const { return Get() != Unknown; }
        ZULMRSExtendedBool Get() const { return m_Value.load(std::memory_order_relaxed); }
        void Set(ZULMRSExtendedBool value) { m_Value.store(value, std::memory_order_relaxed); }

    private:
        static constexpr auto Unknown = static_cast<ZULMRSExtendedBool>(2);

        std::atomic<ZULMRSExtendedBool> m_Value{Unknown};
    };

    using Table = tbb::concurrent_unordered_map<Key, Answer, KeyHash>;

    Table m_Answers;
};

#endif
