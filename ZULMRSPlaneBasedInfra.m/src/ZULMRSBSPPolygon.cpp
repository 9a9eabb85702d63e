#include "ZULMRSBSPPolygon.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <ostream>
#include <thread>
#include <utility>

#include <tbb/blocked_range.h>
#include <tbb/parallel_for.h>
#include <tbb/partitioner.h>
#include <tbb/task_arena.h>
#include <tbb/task_group.h>

#include "ZULExpFloatStatus.h"
#include "ZULKLOOutput.h"
#include "ZULMRSBSPInstanceCounters.h"
#include "ZULMRSBSPPredicates.h"
#include "ZULMRSBSPQuadrupleHolder.h"
#include "ZULMRSBSPThinBox.h"

unsigned int ZULMRSBSPPolygon::m_GID = 0;

namespace
{
constexpr std::int32_t PointsLocked = 1;
constexpr std::int32_t PointSlotsSettled = 2;
/// Rounds that a waiting thread spends on the processor before it gives its time slice away.
constexpr int PausesBeforeYield = 64;
/// Vertices per task: making one is short work.
constexpr std::uint32_t PointsPerBlock = 8;

template <class Object>
void AddReference(Object* object)
{
    if (object != nullptr) {
        object->AddRef();
    }
}

template <class Object>
void ReleaseAll(std::vector<Object*>& objects)
{
    for (Object*& object : objects) {
        ZULMRSBSPReference::Release(object);
        object = nullptr;
    }
}

template <class Value>
void EraseAt(std::vector<Value>& values, std::size_t position)
{
    if (position < values.size()) {
        values.erase(values.begin() + static_cast<std::ptrdiff_t>(position));
    }
}

/// Where there is no room, as much more as fills the heap's blocks, the least of which take 24 bytes.
template <class Value>
void InsertAt(std::vector<Value>& values, std::size_t position, Value value)
{
    if (values.size() == values.capacity()) {
        values.reserve(std::max(2 * values.size() + 1, 24 / sizeof(Value)));
    }
    values.push_back(value);
    Value* const place = values.data() + position;
    std::memmove(place + 1, place, (values.size() - 1 - position) * sizeof(Value));
    *place = value;
}

template <class Object>
bool FindPosition(const std::vector<Object*>& objects, const Object* object, std::size_t& position)
{
    const auto found = std::find(objects.begin(), objects.end(), object);
    if (found == objects.end()) {
        return false;
    }
    position = static_cast<std::size_t>(found - objects.begin());
    return true;
}

bool AreParallel(const ZULMRSBSPPlane& p, const ZULMRSBSPPlane& q)
{
    return ZULMRSBSPPredicates::ArePlanesParallel(p, q) == ZULMRSExtendedTrue;
}
}  // namespace

/// Holds the points lock, also when an allocation fails.
class ZULMRSBSPPolygon::PointsGuard
{
public:
    explicit PointsGuard(ZULMRSBSPPolygon& polygon) : m_Polygon(polygon)
    {
        m_Polygon.AcquireLockForUpdatePoints();
    }
    ~PointsGuard() { m_Polygon.ReleaseLockForUpdatePoints(); }
    PointsGuard(const PointsGuard&) = delete;
    PointsGuard& operator=(const PointsGuard&) = delete;

private:
    ZULMRSBSPPolygon& m_Polygon;
};

// === Construction

ZULMRSBSPPolygon::ZULMRSBSPPolygon() : m_PointsLock(0), m_SupportingPlane(nullptr)
{
    ZULMRSBSPInstanceCounters::Increment(m_GID);
}

ZULMRSBSPPolygon::ZULMRSBSPPolygon(ZULMRSBSPPlane* supportingPlane, std::size_t nbEdges)
    : m_PointsLock(0), m_SupportingPlane(supportingPlane)
{
    if (nbEdges != 0) {
        m_Points.reserve(nbEdges);
        m_Edges.reserve(nbEdges);
        m_Orientations.reserve(nbEdges);
    }
    // Last, so that a reservation that throws leaves no reference behind.
    AddReference(m_SupportingPlane);
    ZULMRSBSPInstanceCounters::Increment(m_GID);
}

ZULMRSBSPPolygon::ZULMRSBSPPolygon(ZULMRSBSPPlane* supportingPlane, std::vector<ZULMRSBSPPlane*>&& edges,
                                   std::vector<ZULMRSBSPPoint*>&& points)
    : ZULMRSBSPPolygon(supportingPlane, std::move(edges), std::move(points), std::vector<char>())
{
    m_Orientations.assign(m_Edges.size(), 0);
}

ZULMRSBSPPolygon::ZULMRSBSPPolygon(ZULMRSBSPPlane* supportingPlane, std::vector<ZULMRSBSPPlane*>&& edges,
                                   std::vector<ZULMRSBSPPoint*>&& points, std::vector<char>&& orientations)
    : m_PointsLock(0),
      m_SupportingPlane(supportingPlane),
      m_Edges(std::move(edges)),
      m_Points(std::move(points)),
      m_Orientations(std::move(orientations))
{
    AddReference(m_SupportingPlane);
    std::for_each(m_Edges.begin(), m_Edges.end(), AddReference<ZULMRSBSPPlane>);
    std::for_each(m_Points.begin(), m_Points.end(), AddReference<ZULMRSBSPPoint>);
    ZULMRSBSPInstanceCounters::Increment(m_GID);
}

ZULMRSBSPPolygon::~ZULMRSBSPPolygon()
{
    ZULMRSBSPReference::Release(m_SupportingPlane);
    m_SupportingPlane = nullptr;
    ReleaseAll(m_Edges);
    ReleaseAll(m_Points);
}

// === Loop

void ZULMRSBSPPolygon::ReserveNbEdges(std::size_t nbEdges)
{
    m_Edges.reserve(nbEdges);
}

void ZULMRSBSPPolygon::AddBoundaries(const std::vector<ZULMRSBSPPlane*>& planes)
{
    for (ZULMRSBSPPlane* plane : planes) {
        AddBoundary(plane, 0);
    }
}

void ZULMRSBSPPolygon::AddBoundary(ZULMRSBSPPlane* plane, std::size_t position, char orientation)
{
    if (plane == nullptr) {
        return;
    }
    m_Edges[position] = plane;
    m_Orientations[position] = orientation;
    plane->AddRef();
}

void ZULMRSBSPPolygon::AddBoundary(ZULMRSBSPPlane* plane, char orientation)
{
    if (plane == nullptr) {
        return;
    }
    m_Edges.push_back(plane);
    m_Orientations.push_back(orientation);
    plane->AddRef();
    UnsettlePointSlots();
}

ZULMRSErrorTypes ZULMRSBSPPolygon::ReverseLoop()
{
    if (!m_Edges.empty()) {
        std::reverse(m_Edges.begin() + 1, m_Edges.end());
    }
    if (!m_Points.empty()) {
        AddMissingPointSlots();
        std::reverse(m_Points.begin(), m_Points.begin() + static_cast<std::ptrdiff_t>(m_Edges.size()));
    }
    return ZULMRSNoError;
}

ZULMRSErrorTypes ZULMRSBSPPolygon::ReverseLoopWithoutPoint()
{
    std::reverse(m_Edges.begin(), m_Edges.end());
    std::reverse(m_Orientations.begin(), m_Orientations.end());
    return ZULMRSNoError;
}

// === Access

void ZULMRSBSPPolygon::SetSupportingPlane(ZULMRSBSPPlane* plane)
{
    ZULMRSBSPReference::Replace(m_SupportingPlane, plane);
}

std::uint32_t ZULMRSBSPPolygon::EstimateInternalSize() const
{
    const std::size_t slots = m_Points.capacity() + m_Edges.capacity();
    return static_cast<std::uint32_t>(sizeof(ZULMRSBSPPolygon) + slots * sizeof(void*));
}

// === Edges and vertices

char ZULMRSBSPPolygon::GetEdgeOrientation(std::size_t position)
{
    char& orientation = m_Orientations[position];
    if (orientation == 0) {
        orientation = ComputeEdgeOrientation(position);
    }
    return orientation;
}

char ZULMRSBSPPolygon::ComputeEdgeOrientation(std::size_t position) const
{
    const ZULMRSBSPPlane* const plane = m_Edges[position];
    const std::size_t nbPoints = m_Points.size();
    if (plane == nullptr) {
        return 0;
    }
    // The two ends of the edge, which lie on its plane, come last.
    for (std::size_t step = 1; step <= nbPoints; ++step) {
        const ZULMRSBSPPoint* const point = m_Points[(position + step) % nbPoints];
        if (point == nullptr) {
            continue;
        }
        const ZULMRSExtendedBool inFront = ZULMRSBSPPredicates::IsPointInFrontOfPlane(*plane, *point);
        if (inFront != ZULMRSExtendedUndetermined) {
            return static_cast<char>(inFront == ZULMRSExtendedTrue ? -1 : 1);
        }
    }
    return 0;
}

ZULMRSBSPPoint* ZULMRSBSPPolygon::GetCachedPoint(std::size_t position)
{
    if (ArePointSlotsSettled() && position < m_Points.size()) {
        if (ZULMRSBSPPoint* const point = LoadPoint(position)) {
            return point;
        }
    }
    const PointsGuard guard(*this);
    if (position < m_Points.size() && m_Points[position] != nullptr) {
        return m_Points[position];
    }
    AddMissingPointSlots();
    if (position >= m_Edges.size()) {
        return nullptr;
    }
    ZULMRSBSPPoint* const point = CreateVertex(position);
    StorePoint(position, point);
    return point;
}

void ZULMRSBSPPolygon::SetCachedPoint(std::size_t position, ZULMRSBSPPoint* point)
{
    ResizePoints();
    if (position >= m_Points.size()) {
        AddMissingPointSlots();
    }
    if (point != nullptr && position < m_Points.size() && m_Points[position] == nullptr) {
        m_Points[position] = point;
        point->AddRef();
    }
}

void ZULMRSBSPPolygon::ResizePoints()
{
    UnsettlePointSlots();
    if (m_Points.empty()) {
        m_Points.resize(m_Edges.size(), nullptr);
    }
}

ZULMRSBSPPolygonEdge ZULMRSBSPPolygon::GetPolygonEdge(std::size_t position) const
{
    const std::size_t nbPoints = m_Points.size();
    if (nbPoints == 0) {
        return {};
    }
    return {m_Points[(position + nbPoints - 1) % nbPoints], m_Points[position], false};
}

std::vector<ZULMRSBSPPolygonEdge> ZULMRSBSPPolygon::GetAllPolygonEdges(bool oriented) const
{
    std::vector<ZULMRSBSPPolygonEdge> edges;
    edges.reserve(m_Points.size());
    const ZULMRSBSPPoint* previous = m_Points.empty() ? nullptr : m_Points.back();
    for (const ZULMRSBSPPoint* point : m_Points) {
        edges.emplace_back(previous, point, !oriented);
        previous = point;
    }
    return edges;
}

bool ZULMRSBSPPolygon::FindEdgePosition(const ZULMRSBSPPolygonEdge& edge, std::size_t& position) const
{
    if (m_Points.size() < 2) {
        return false;
    }
    const ZULMRSBSPPoint* previous = m_Points.back();
    for (std::size_t k = 0; k < m_Points.size(); ++k) {
        if (edge == ZULMRSBSPPolygonEdge(previous, m_Points[k], true)) {
            position = k;
            return true;
        }
        previous = m_Points[k];
    }
    return false;
}

int ZULMRSBSPPolygon::GetEdgePosition(const ZULMRSBSPPolygonEdge& edge) const
{
    const std::size_t nbPoints = m_Points.size();
    for (std::size_t k = 0; k < nbPoints; ++k) {
        const std::size_t next = (k + 1) % nbPoints;
        const ZULMRSBSPPolygonEdge forward(m_Points[k], m_Points[next], false);
        const ZULMRSBSPPolygonEdge backward(m_Points[next], m_Points[k], false);
        if (edge == forward || edge == backward) {
            return static_cast<int>(next);
        }
    }
    return -1;
}

bool ZULMRSBSPPolygon::FindEdgePosition(const ZULMRSBSPPlane* plane, std::size_t& position) const
{
    return FindPosition(m_Edges, plane, position);
}

bool ZULMRSBSPPolygon::FindPointPosition(const ZULMRSBSPPoint* point, std::size_t& position) const
{
    return FindPosition(m_Points, point, position);
}

ZULMRSBSPPoint* ZULMRSBSPPolygon::CreateVertex(std::size_t position) const
{
    bool isValid = false;
    return ZULMRSBSPPointNS::CreatePoint(m_SupportingPlane, m_Edges[position],
                                         m_Edges[(position + 1) % m_Edges.size()], isValid, true);
}

// === Maintenance of the vertices

ZULMRSErrorTypes ZULMRSBSPPolygon::UpdatePoints()
{
    if (ArePointSlotsSettled() && m_Points.size() == m_Edges.size()) {
        return ZULMRSNoError;
    }
    const PointsGuard guard(*this);
    if (m_Points.size() != m_Edges.size()) {
        AddMissingPointSlots();
        CreateMissingPoints();
    }
    return ZULMRSNoError;
}

void ZULMRSBSPPolygon::CreateMissingPoints()
{
    const auto nbEdges = static_cast<std::uint32_t>(m_Edges.size());
    const std::uint32_t nbBlocks = nbEdges / PointsPerBlock + (nbEdges % PointsPerBlock != 0 ? 1 : 0);
    if (nbBlocks <= 1) {
        // Nothing to share out: the scheduler would only cost.
        CreateBlockOfPoints(0, nbEdges);
        return;
    }
    // The lock is held meanwhile, so this thread must not pick up a task from outside the loop: it might
    // want the same lock.
    tbb::this_task_arena::isolate([this, nbEdges, nbBlocks] {
        tbb::task_group_context context(tbb::task_group_context::isolated);
        tbb::parallel_for(
            tbb::blocked_range<std::uint32_t>(0, nbBlocks, 1),
            [this, nbEdges](const tbb::blocked_range<std::uint32_t>& blocks) {
                for (std::uint32_t block = blocks.begin(); block != blocks.end(); ++block) {
                    CreateBlockOfPoints(block, nbEdges);
                }
            },
            tbb::auto_partitioner(), context);
    });
}

void ZULMRSBSPPolygon::CreateBlockOfPoints(std::uint32_t block, std::uint32_t nbEdges)
{
    const std::uint32_t first = block * PointsPerBlock;
    const std::uint32_t end = first + std::min(PointsPerBlock, nbEdges - first);
    for (std::uint32_t k = first; k != end; ++k) {
        if (m_Points[k] == nullptr) {
            StorePoint(k, CreateVertex(k));
        }
    }
}

ZULMRSErrorTypes ZULMRSBSPPolygon::InsertPointOnEdge(std::size_t position, ZULMRSBSPPoint* point,
                                                     ZULMRSBSPPlane* plane, char orientation)
{
    const std::size_t last = std::min({m_Points.size(), m_Edges.size(), m_Orientations.size()});
    if (point == nullptr || plane == nullptr || position > last) {
        return ZULMRSErrorInvalidInput;
    }
    point->AddRef();
    plane->AddRef();
    InsertAt(m_Points, position, point);
    InsertAt(m_Edges, position, plane);
    InsertAt(m_Orientations, position, orientation);
    UnsettlePointSlots();
    return ZULMRSNoError;
}

ZULMRSErrorTypes ZULMRSBSPPolygon::RemovePoints(const std::vector<ZULMRSBSPPoint*>& points)
{
    std::vector<std::size_t> positions;
    positions.reserve(points.size());
    for (const ZULMRSBSPPoint* point : points) {
        std::size_t position = 0;
        if (FindPointPosition(point, position)) {
            positions.push_back(position);
        }
    }
    // From the highest down, so that the lower ones stay true.
    std::sort(positions.begin(), positions.end(), std::greater<>());
    for (const std::size_t position : positions) {
        EraseAt(m_Points, position);
        EraseAt(m_Edges, position);
        EraseAt(m_Orientations, position);
    }
    UnsettlePointSlots();
    return ZULMRSNoError;
}

void ZULMRSBSPPolygon::ReplacePoint(ZULMRSBSPPoint* oldPoint, ZULMRSBSPPoint* newPoint)
{
    if (oldPoint == nullptr || newPoint == nullptr) {
        return;
    }
    std::replace(m_Points.begin(), m_Points.end(), oldPoint, newPoint);
    // One reference changes hands however many slots did.
    ZULMRSBSPPoint::Replace(oldPoint, newPoint);
}

void ZULMRSBSPPolygon::DEBUG_ClearAllPoints()
{
    UnsettlePointSlots();
    ReleaseAll(m_Points);
    m_Points.clear();
}

int ZULMRSBSPPolygon::Check() const
{
    const std::size_t nbEdges = m_Edges.size();
    const void* const self = this;
    int problems = 0;
    for (std::size_t i = 0; i < nbEdges; ++i) {
        const ZULMRSBSPPlane* const edge = m_Edges[i];
        const ZULMRSBSPPlane* const next = m_Edges[(i + 1) % nbEdges];
        if (edge == nullptr) {
            continue;
        }
        if (m_SupportingPlane != nullptr && AreParallel(*edge, *m_SupportingPlane)) {
            ++problems;
            ZULKLOOutput::GetOut() << "ZULMRSBSPPolygon::Check  ID " << self
                                   << " Colinear Supporting Plane (ID="
                                   << static_cast<const void*>(m_SupportingPlane) << ") parallel to Edge ID  "
                                   << static_cast<const void*>(edge) << "\n";
        }
        if (nbEdges > 1 && next != nullptr && AreParallel(*edge, *next)) {
            ++problems;
            ZULKLOOutput::GetOut() << "ZULMRSBSPPolygon::Check  ID " << self << ". "
                                   << static_cast<std::uint64_t>(i)
                                   << "th Edge is a Colinear Edges ID=" << static_cast<const void*>(next)
                                   << " parallel to consecutive Edge ID=" << static_cast<const void*>(edge)
                                   << "\n";
        }
    }
    return problems;
}

// === Box

ZULMRSErrorTypes ZULMRSBSPPolygon::GetOBB(ZULMathOBB& box)
{
    if (m_SupportingPlane == nullptr) {
        return ZULMRSErrorInvalidInput;
    }
    const ZULMRSErrorTypes error = UpdatePoints();
    if (error != ZULMRSNoError) {
        return ZULMRSBSPThinBox::ReportUpdateError(error);
    }
    const ZULExpFloatScope scope;
    ZULMRSBSPThinBox::Builder builder(*m_SupportingPlane);
    for (const ZULMRSBSPPoint* point : m_Points) {
        if (point == nullptr) {
            return ZULMRSErrorInvalidInput;
        }
        const ZULMRSBSPQuadrupleHolder<double> xyz(point->GetApproximatedXYZError());
        if (!xyz) {
            return ZULMRSErrorInvalidInput;
        }
        builder.Include(xyz[0], xyz[1], xyz[2]);
    }
    box.SetBase(builder.Build());
    return ZULMRSNoError;
}

// === Lock of the points

void ZULMRSBSPPolygon::AcquireLockForUpdatePoints()
{
    int pauses = 0;
    while ((m_PointsLock.fetch_or(PointsLocked) & PointsLocked) != 0) {
        // Waiting only reads, which leaves the word to the thread that holds the lock.
        while ((m_PointsLock.load(std::memory_order_relaxed) & PointsLocked) != 0) {
            if (pauses < PausesBeforeYield) {
                ++pauses;
                ZULExpProcessor::Pause();
            } else {
                std::this_thread::yield();
            }
        }
    }
}

void ZULMRSBSPPolygon::ReleaseLockForUpdatePoints()
{
    const bool settled = !m_Points.empty() && m_Points.size() >= m_Edges.size();
    m_PointsLock.store(settled ? PointSlotsSettled : 0);
}

/// True when no holder of the lock will change the length of the points array any more.
bool ZULMRSBSPPolygon::ArePointSlotsSettled() const
{
    return (m_PointsLock.load(std::memory_order_acquire) & PointSlotsSettled) != 0;
}

/// For operations that have the polygon to themselves.
void ZULMRSBSPPolygon::UnsettlePointSlots()
{
    m_PointsLock.store(0, std::memory_order_relaxed);
}

void ZULMRSBSPPolygon::AddMissingPointSlots()
{
    if (m_Points.size() < m_Edges.size()) {
        m_Points.resize(m_Edges.size(), nullptr);
    }
}

ZULMRSBSPPoint* ZULMRSBSPPolygon::LoadPoint(std::size_t position)
{
    return std::atomic_ref(m_Points[position]).load(std::memory_order_acquire);
}

void ZULMRSBSPPolygon::StorePoint(std::size_t position, ZULMRSBSPPoint* point)
{
    std::atomic_ref(m_Points[position]).store(point, std::memory_order_release);
}
