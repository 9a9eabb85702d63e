#include "ZULMRSBSP3PointsPlane.h"

#include <cstddef>
#include <memory>
#include <mutex>
#include <unordered_set>
#include <utility>

#include "ZULExpFloatStatus.h"
#include "ZULExpRounding.h"
#include "ZULMRSBSPCoordinateRecord.h"
#include "ZULMRSBSPFormulas.h"
#include "ZULMRSBSPIntegerForms.h"
#include "ZULMRSBSPQuadrupleHolder.h"

namespace
{
struct RecordHash {
    std::size_t operator()(const ZULMRSBSPCoordinateRecord* record) const noexcept
    {
        return ZULMRSBSPCoordinates::Hash(record->m_Coordinates);
    }
};

// A record equals itself even where its point has a NaN, so that it can be found to be removed.
struct RecordEqual {
    bool operator()(const ZULMRSBSPCoordinateRecord* x, const ZULMRSBSPCoordinateRecord* y) const noexcept
    {
        return x == y || ZULMRSBSPCoordinates::AreEqual(x->m_Coordinates, y->m_Coordinates);
    }
};

/// The records of the process.
class RecordTable
{
public:
    /// Made on first use.
    static RecordTable& Get();

    RecordTable() { m_Records.max_load_factor(1.0F); }
    ~RecordTable()
    {
        for (const ZULMRSBSPCoordinateRecord* record : m_Records) {
            delete record;
        }
    }
    RecordTable(const RecordTable&) = delete;
    RecordTable& operator=(const RecordTable&) = delete;

    /// The record of a point, with one reference for the caller.
    ZULMRSBSPCoordinateRecord* Take(const std::array<double, 3>& point)
    {
        const std::lock_guard lock(m_Lock);
        ZULMRSBSPCoordinateRecord* record = FindOrInsert(point);
        if (record->m_References.fetch_add(1) == 0) {
            ++record->m_TableCount;
        }
        return record;
    }

    /// Called with each reference that was the last one.
    void DropLast(ZULMRSBSPCoordinateRecord* record)
    {
        const std::lock_guard lock(m_Lock);
        if (record->m_TableCount-- == 1) {
            m_Records.erase(record);
            delete record;
        }
    }

private:
    ZULMRSBSPCoordinateRecord* FindOrInsert(const std::array<double, 3>& point)
    {
        ZULMRSBSPCoordinateRecord key{point};
        if (const auto found = m_Records.find(&key); found != m_Records.end()) {
            return *found;
        }
        std::unique_ptr<ZULMRSBSPCoordinateRecord> record(new ZULMRSBSPCoordinateRecord{point});
        m_Records.insert(record.get());
        return record.release();
    }

    std::mutex m_Lock;
    std::unordered_set<ZULMRSBSPCoordinateRecord*, RecordHash, RecordEqual> m_Records;
};

// The table dies with the library. Its owner is made when the library is loaded, so it outlives the static
// objects of the host, which may hold planes.
std::unique_ptr<RecordTable> g_RecordTable;

RecordTable& RecordTable::Get()
{
    static RecordTable& table = *(g_RecordTable = std::make_unique<RecordTable>());
    return table;
}

void ReleaseRecord(ZULMRSBSPCoordinateRecord* record)
{
    if (record != nullptr && record->m_References.fetch_sub(1) == 1) {
        RecordTable::Get().DropLast(record);
    }
}

template <class Number>
std::array<Number, 4> Equation(const std::array<ZULMRSBSPCoordinateRecord*, 3>& points)
{
    return ZULMRSBSPFormulas::PlaneThroughPoints(
        ZULMRSBSPFormulas::Convert<Number>(points[0]->m_Coordinates),
        ZULMRSBSPFormulas::Convert<Number>(points[1]->m_Coordinates),
        ZULMRSBSPFormulas::Convert<Number>(points[2]->m_Coordinates));
}

constexpr std::array<ZULExpDynamic, 4> Placeholders = {
    ZULExpDynamic::Placeholder(), ZULExpDynamic::Placeholder(), ZULExpDynamic::Placeholder(),
    ZULExpDynamic::Placeholder()};
}  // namespace

ZULMRSBSP3PointsPlane::ZULMRSBSP3PointsPlane(const std::array<std::array<double, 3>, 3>& points)
    : m_Points{}, m_Equation(Placeholders), m_EquationValid(false)
{
    try {
        for (std::size_t i = 0; i < m_Points.size(); ++i) {
            m_Points[i] = RecordTable::Get().Take(points[i]);
        }
    } catch (...) {
        for (ZULMRSBSPCoordinateRecord* record : m_Points) {
            ReleaseRecord(record);
        }
        throw;
    }
    Init();
}

ZULMRSBSP3PointsPlane::ZULMRSBSP3PointsPlane(const ZULMRSBSP3PointsPlane& other)
    : ZULMRSBSPPlane(other),
      m_IntegerForm(other.m_IntegerForm),
      m_Points(other.m_Points),
      m_Equation(other.m_Equation),
      m_EquationValid(other.m_EquationValid)
{
    for (ZULMRSBSPCoordinateRecord* record : m_Points) {
        record->m_References.fetch_add(1);
    }
}

ZULMRSBSP3PointsPlane& ZULMRSBSP3PointsPlane::operator=(const ZULMRSBSP3PointsPlane& other)
{
    ZULMRSBSPPlane::operator=(other);
    for (std::size_t i = 0; i < m_Points.size(); ++i) {
        ZULMRSBSPCoordinateRecord* old = m_Points[i];
        other.m_Points[i]->m_References.fetch_add(1);
        m_Points[i] = other.m_Points[i];
        ReleaseRecord(old);
    }
    m_IntegerForm = other.m_IntegerForm;
    m_Equation = other.m_Equation;
    m_EquationValid = other.m_EquationValid;
    return *this;
}

ZULMRSBSP3PointsPlane::~ZULMRSBSP3PointsPlane()
{
    for (ZULMRSBSPCoordinateRecord* record : m_Points) {
        ReleaseRecord(record);
    }
}

void ZULMRSBSP3PointsPlane::Init()
{
    {
        // The equation goes straight to memory that outlives the scope: it is complete when the status is
        // read.
        const ZULExpFloatScope scope;
        m_Equation = Equation<ZULExpDynamic>(m_Points);
        m_EquationValid = !scope.IsFaulted();
    }
    if (m_EquationValid) {
        m_IntegerForm = ZULMRSBSPIntegerForms::OfPlane(m_Equation);
    }
}

ZULMRSBSPPlaneType ZULMRSBSP3PointsPlane::GetType() const
{
    return ZULMRSBSPPlaneType_3Points;
}

bool ZULMRSBSP3PointsPlane::IsCanonical(int& /*axis*/) const
{
    return false;
}

ZULMRSBSPQuadruple<ZULExpDynamic> ZULMRSBSP3PointsPlane::GetStdEquation_ExpDynamic() const
{
    return {m_EquationValid ? &m_Equation : nullptr, false};
}

ZULMRSBSPQuadruple<ZULExpInterval> ZULMRSBSP3PointsPlane::GetStdEquation_ExpInterval() const
{
    const ZULExpRounding rounding;
    ZULMRSBSPQuadrupleMaker::Owner<ZULExpInterval> equation =
        ZULMRSBSPQuadrupleMaker::Allocate<ZULExpInterval>();
    if (equation == nullptr) {
        return {nullptr, false};
    }
    // The guard has cleared the status.
    *equation = Equation<ZULExpInterval>(m_Points);
    if ((_statusfp() & ZULExpFloatFault) != 0) {
        return {nullptr, false};
    }
    return ZULMRSBSPQuadrupleMaker::HandOver(std::move(equation));
}

ZULMRSBSPQuadruple<ZULExpFloatRingExtensionTS> ZULMRSBSP3PointsPlane::GetStdEquation_FloatRing() const
{
    ZULMRSBSPQuadrupleMaker::Owner<ZULExpFloatRingExtensionTS> equation =
        ZULMRSBSPQuadrupleMaker::Allocate<ZULExpFloatRingExtensionTS>();
    if (equation != nullptr) {
        *equation = Equation<ZULExpFloatRingExtensionTS>(m_Points);
    }
    return ZULMRSBSPQuadrupleMaker::HandOver(std::move(equation));
}

std::array<std::array<double, 3>, 3> ZULMRSBSP3PointsPlane::Get3Points() const
{
    return {m_Points[0]->m_Coordinates, m_Points[1]->m_Coordinates, m_Points[2]->m_Coordinates};
}
