#ifndef ZULMRSBSPSharedPoints_h
#define ZULMRSBSPSharedPoints_h

#include <atomic>
#include <thread>
#include <utility>

#include "ZULExpFloatStatus.h"
#include "ZULMRSBSPPoint.h"

/// The protocol of the concurrent tables that share points. The thread whose insertion of a key succeeds
/// makes the point and publishes it as the entry's value; threads that come with the same key meanwhile wait
/// for it. An entry's value is the mark "being made", a point on which the table holds one reference, or
/// null: the point could not be made, and is not tried again. The mark is never seen by threads that respect
/// the tables' rule that nothing but creation runs beside creation.
namespace ZULMRSBSPSharedPoints
{
struct Request {
    ZULMRSBSPPoint* m_Point;  ///< with a reference for the caller; null when it could not be made
    bool m_IsNew;             ///< the key was not in the table before
};

/// The mark of a point that is being made: an address that no point can have.
inline ZULMRSBSPPoint* BeingMade()
{
    alignas(ZULMRSBSPPoint) static char mark;
    return reinterpret_cast<ZULMRSBSPPoint*>(&mark);
}

inline void Publish(ZULMRSBSPPoint*& value, ZULMRSBSPPoint* point)
{
    std::atomic_ref<ZULMRSBSPPoint*>(value).store(point, std::memory_order_release);
}

/// Waits until the value is published. Making a point takes about a microsecond: pausing bridges it, and
/// beyond that the maker is not running, so its processor is what it needs.
inline ZULMRSBSPPoint* AwaitPublished(ZULMRSBSPPoint*& value)
{
    constexpr int nbPauses = 64;
    const std::atomic_ref<ZULMRSBSPPoint*> published(value);
    for (int round = 0;; ++round) {
        ZULMRSBSPPoint* const point = published.load(std::memory_order_acquire);
        if (point != BeingMade()) {
            return point;
        }
        if (round < nbPauses) {
            ZULExpProcessor::Pause();
        } else {
            std::this_thread::yield();
        }
    }
}

/// Publishes what was made, or null when the making threw: no thread may wait for ever.
class Publisher
{
public:
    explicit Publisher(ZULMRSBSPPoint*& value) : m_Value(value) {}
    ~Publisher() { Publish(m_Value, m_Point); }
    Publisher(const Publisher&) = delete;
    Publisher& operator=(const Publisher&) = delete;

    void SetPoint(ZULMRSBSPPoint* point) { m_Point = point; }

private:
    ZULMRSBSPPoint*& m_Value;
    ZULMRSBSPPoint* m_Point = nullptr;
};

/// The point of a key, made by make() when the key is new. Safe from many threads at once.
template <class Table, class Make>
Request FindOrMake(Table& table, const typename Table::key_type& key, const Make& make)
{
    const auto [entry, isNew] = table.insert(typename Table::value_type(key, BeingMade()));
    ZULMRSBSPPoint* point = nullptr;
    if (isNew) {
        Publisher publisher(entry->second);
        point = make();
        if (point != nullptr) {
            point->AddRef();
        }
        publisher.SetPoint(point);
    } else {
        point = AwaitPublished(entry->second);
        if (point != nullptr) {
            point->AddRef();
        }
    }
    return {point, isNew};
}

template <class Table>
void ReleasePoints(Table& table)
{
    for (auto& entry : table) {
        ZULMRSBSPPoint::ReleaseObject(entry.second);
    }
}
}  // namespace ZULMRSBSPSharedPoints

#endif
