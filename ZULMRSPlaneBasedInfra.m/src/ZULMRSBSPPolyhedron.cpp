#include "ZULMRSBSPPolyhedron.h"

#include <algorithm>
#include <new>
#include <tuple>

#include "ZULMRSBSPBoxFaces.h"
#include "ZULMRSBSPInstanceCounters.h"
#include "ZULMRSBSPObjectFactory.h"
#include "ZULMRSBSPPredicates.h"
#include "ZULMRSBSPQuadrupleHolder.h"
#include "ZULMRSMathUtilities.h"

// It starts at one.
unsigned int ZULMRSBSPPolyhedron::m_GID = 1;

namespace
{
/// A solid has four faces at least, most have some more.
constexpr std::size_t NbPolygonsExpected = 8;

void AddReferences(const std::vector<ZULMRSBSPPolygon*>& polygons)
{
    for (ZULMRSBSPPolygon* polygon : polygons) {
        if (polygon != nullptr) {
            polygon->AddRef();
        }
    }
}

char Negated(char orientation)
{
    return static_cast<char>(-static_cast<signed char>(orientation));
}

std::vector<ZULMRSBSPPlane*> GetSupportingPlanes(const std::vector<ZULMRSBSPPolygon*>& polygons)
{
    std::vector<ZULMRSBSPPlane*> planes;
    planes.reserve(polygons.size());
    for (const ZULMRSBSPPolygon* polygon : polygons) {
        planes.push_back(polygon->GetSupportingPlane());
    }
    return planes;
}
}  // namespace

// === Construction

ZULMRSBSPPolyhedron::ZULMRSBSPPolyhedron()
{
    ZULMRSBSPInstanceCounters::Increment(m_GID);
}

ZULMRSBSPPolyhedron::ZULMRSBSPPolyhedron(const ZULMRSBSPPolyhedron& other)
    : m_Polygons(other.m_Polygons), m_Orientations(other.m_Orientations)
{
    ZULMRSBSPInstanceCounters::Increment(m_GID);
    AddReferences(m_Polygons);
}

ZULMRSBSPPolyhedron::ZULMRSBSPPolyhedron(const std::vector<ZULMRSBSPPolyhedron*>& parts)
{
    std::size_t nbPolygons = 0;
    for (const ZULMRSBSPPolyhedron* part : parts) {
        nbPolygons += part != nullptr ? part->GetNbPolygons() : 0;
    }
    ReserveMore(nbPolygons);
    for (const ZULMRSBSPPolyhedron* part : parts) {
        if (part == nullptr) {
            continue;
        }
        m_Polygons.insert(m_Polygons.end(), part->m_Polygons.begin(), part->m_Polygons.end());
        m_Orientations.insert(m_Orientations.end(), part->m_Orientations.begin(), part->m_Orientations.end());
    }
    AddReferences(m_Polygons);
}

ZULMRSBSPPolyhedron::ZULMRSBSPPolyhedron(const ZULMathOBB& box, ZULMRSBSPObjectFactory* factory)
    : ZULMRSBSPPolyhedron()
{
    InitFromOBB(box, factory);
}

// NOLINTNEXTLINE(bugprone-unhandled-self-assignment): it takes references like any other assignment
ZULMRSBSPPolyhedron& ZULMRSBSPPolyhedron::operator=(const ZULMRSBSPPolyhedron& other)
{
    m_Polygons = other.m_Polygons;
    m_Orientations = other.m_Orientations;
    AddReferences(m_Polygons);
    return *this;
}

ZULMRSBSPPolyhedron::~ZULMRSBSPPolyhedron()
{
    for (ZULMRSBSPPolygon*& polygon : m_Polygons) {
        ZULMRSBSPReference::Release(polygon);
        polygon = nullptr;
    }
}

// === Faces

void ZULMRSBSPPolyhedron::ReserveMore(std::size_t nbPolygons)
{
    m_Polygons.reserve(m_Polygons.size() + nbPolygons);
    m_Orientations.reserve(m_Orientations.size() + nbPolygons);
}

void ZULMRSBSPPolyhedron::AddAPolygon(ZULMRSBSPPolygon* polygon, char orientation)
{
    if (polygon == nullptr) {
        return;
    }
    if (m_Polygons.capacity() == 0) {
        ReserveMore(NbPolygonsExpected);
    }
    m_Polygons.push_back(polygon);
    m_Orientations.push_back(orientation);
    polygon->AddRef();
}

void ZULMRSBSPPolyhedron::AddPolygons(const std::vector<Face>& faces)
{
    ReserveMore(faces.size());
    for (const Face& face : faces) {
        AddAPolygon(face.first, face.second);
    }
}

void ZULMRSBSPPolyhedron::AddPolygons(const std::vector<ZULMRSBSPPolygon*>& polygons,
                                      const std::vector<char>& orientations, bool reverse)
{
    if (orientations.size() < polygons.size()) {
        return;
    }
    ReserveMore(polygons.size());
    for (std::size_t i = polygons.size(); i-- > 0;) {
        AddAPolygon(polygons[i], reverse ? Negated(orientations[i]) : orientations[i]);
    }
}

void ZULMRSBSPPolyhedron::AddPolygons(
    const tbb::concurrent_vector<Face, tbb::cache_aligned_allocator<Face>>& faces)
{
    const std::size_t nbFaces = std::min(faces.size(), faces.capacity());
    ReserveMore(nbFaces);
    for (std::size_t i = 0; i < nbFaces; ++i) {
        AddAPolygon(faces[i].first, faces[i].second);
    }
}

void ZULMRSBSPPolyhedron::RemovePolygon(ZULMRSBSPPolygon* polygon)
{
    std::size_t position = 0;
    if (polygon == nullptr || !FindPolygonPosition(polygon, position)) {
        return;
    }
    m_Polygons.erase(m_Polygons.begin() + static_cast<std::ptrdiff_t>(position));
    m_Orientations.erase(m_Orientations.begin() + static_cast<std::ptrdiff_t>(position));
    polygon->Release();
}

void ZULMRSBSPPolyhedron::ReplacePolygons(const std::vector<Face>& faces)
{
    const bool passReferences = !m_Polygons.empty();
    m_Polygons.clear();
    m_Orientations.clear();
    AddPolygons(faces);
    if (!passReferences) {
        return;
    }
    // Given up only now: the caller's reference may be the only one.
    for (const Face& face : faces) {
        ZULMRSBSPPolygon::ReleaseObject(face.first);
    }
}

void ZULMRSBSPPolyhedron::ReversePolygonsOrientation()
{
    for (char& orientation : m_Orientations) {
        orientation = Negated(orientation);
    }
}

// === Access

bool ZULMRSBSPPolyhedron::FindPolygonPosition(const ZULMRSBSPPolygon* polygon, std::size_t& position) const
{
    const auto found = std::find(m_Polygons.begin(), m_Polygons.end(), polygon);
    if (found == m_Polygons.end()) {
        return false;
    }
    position = static_cast<std::size_t>(found - m_Polygons.begin());
    return true;
}

ZULMRSBSPPolyhedron::PolygonConstIterator ZULMRSBSPPolyhedron::FindPolygonWithSuppportingPlane(
    const ZULMRSBSPPlane* plane) const
{
    if (plane == nullptr) {
        return m_Polygons.end();
    }
    return std::find_if(m_Polygons.begin(), m_Polygons.end(), [plane](const ZULMRSBSPPolygon* polygon) {
        return polygon->GetSupportingPlane() == plane;
    });
}

ZULMRSBSPPolyhedron::PolygonConstIterator ZULMRSBSPPolyhedron::FindPolygonSharingEdge(
    const ZULMRSBSPPolygonEdge& edge, std::size_t& position, ZULMRSBSPPolygon* excluded) const
{
    if (edge == ZULMRSBSPPolygonEdge()) {
        return m_Polygons.end();
    }
    return std::find_if(m_Polygons.begin(), m_Polygons.end(), [&](const ZULMRSBSPPolygon* polygon) {
        return polygon != excluded && polygon->FindEdgePosition(edge, position);
    });
}

std::uint32_t ZULMRSBSPPolyhedron::EstimateInternalSize() const
{
    return static_cast<std::uint32_t>(sizeof(ZULMRSBSPPolyhedron) + m_Polygons.capacity() * sizeof(void*) +
                                      m_Orientations.capacity());
}

// === Queries

ZULMRSErrorTypes ZULMRSBSPPolyhedron::BuildOneRingOfVertices(
    std::unordered_map<ZULMRSBSPPoint*, std::vector<ZULMRSBSPPolygon*>>& ring) const
{
    for (ZULMRSBSPPolygon* polygon : m_Polygons) {
        if (polygon->GetNbPoints() != polygon->GetNbEdges()) {
            return ZULMRSErrorPointsNotUpdated;
        }
        for (ZULMRSBSPPoint* point : polygon->GetPoints()) {
            if (point == nullptr) {
                return ZULMRSErrorPointsNotUpdated;
            }
            ring[point].push_back(polygon);
        }
    }
    return ZULMRSNoError;
}

ZULMRSErrorTypes ZULMRSBSPPolyhedron::ComputeAllEdges(std::unordered_set<ZULMRSBSPPlane*>& edgePlanes) const
{
    for (const ZULMRSBSPPolygon* polygon : m_Polygons) {
        edgePlanes.insert(polygon->GetAllEdges().begin(), polygon->GetAllEdges().end());
    }
    return ZULMRSNoError;
}

std::unordered_set<ZULMRSBSPPoint*> ZULMRSBSPPolyhedron::GetAllPoints() const
{
    std::unordered_set<ZULMRSBSPPoint*> points;
    for (const ZULMRSBSPPolygon* polygon : m_Polygons) {
        points.insert(polygon->GetPoints().begin(), polygon->GetPoints().end());
    }
    return points;
}

std::vector<ZULMRSBSPPolyhedron::Face> ZULMRSBSPPolyhedron::GetAllPolygonsAndOrientations() const
{
    std::vector<Face> faces;
    if (m_Polygons.size() == m_Orientations.size()) {
        faces.reserve(m_Polygons.size());
        for (std::size_t i = 0; i < m_Polygons.size(); ++i) {
            faces.emplace_back(m_Polygons[i], m_Orientations[i]);
        }
    }
    return faces;
}

namespace
{
/// Whether no face rejects the point. All predicates are evaluated before an answer is looked at.
template <class Point>
bool IsBehindAllFaces(const std::vector<ZULMRSBSPPolygon*>& polygons, const std::vector<char>& orientations,
                      const Point& point)
{
    std::vector<ZULMRSExtendedBool> inFront;
    inFront.reserve(polygons.size());
    for (const ZULMRSBSPPlane* plane : GetSupportingPlanes(polygons)) {
        inFront.push_back(plane != nullptr ? ZULMRSBSPPredicates::IsPointInFrontOfPlane(*plane, point)
                                           : ZULMRSExtendedUndetermined);
    }
    for (std::size_t i = 0; i < inFront.size(); ++i) {
        const auto outward = static_cast<signed char>(orientations.at(i));
        if ((inFront[i] == ZULMRSExtendedTrue && outward == 1) ||
            (inFront[i] == ZULMRSExtendedFalse && outward == -1)) {
            return false;
        }
    }
    return true;
}

/// Raises error to the point's own.
ZULMathPoint GetApproximation(const ZULMRSBSPPoint& point, double& error)
{
    const ZULMRSBSPQuadrupleHolder<double> numbers(point.GetApproximatedXYZError());
    if (!numbers) {
        return {};
    }
    error = std::max(error, numbers[3]);
    return {numbers[0], numbers[1], numbers[2]};
}
}  // namespace

bool ZULMRSBSPPolyhedron::PointIsInside(const ZULMathPoint& point) const
{
    return IsBehindAllFaces(m_Polygons, m_Orientations, point);
}

bool ZULMRSBSPPolyhedron::PointIsInside(const ZULMRSBSPPoint* point) const
{
    return point != nullptr && IsBehindAllFaces(m_Polygons, m_Orientations, *point);
}

ZULMathOBB ZULMRSBSPPolyhedron::GetOBB(double* error)
{
    for (ZULMRSBSPPolygon* polygon : m_Polygons) {
        if (polygon->UpdatePoints() != ZULMRSNoError) {
            return {};
        }
    }
    double largestError = 0.0;
    std::vector<ZULMathPoint> corners;
    for (const ZULMRSBSPPoint* point : GetAllPoints()) {
        corners.push_back(point != nullptr ? GetApproximation(*point, largestError) : ZULMathPoint());
    }
    ZULMathOBB box;
    if (corners.empty() || box.DefineElements(corners.data(), corners.size()) < 0) {
        return {};
    }
    const double reported = largestError * 1.5;
    if (error != nullptr) {
        *error = reported;
    }
    box.Inflate(reported * 1.5);
    return box;
}

namespace
{
/// The planes whose normals reach least and farthest in a direction; the first and the last of several.
std::pair<ZULMRSBSPPlane*, ZULMRSBSPPlane*> GetExtremePlanes(const std::vector<ZULMRSBSPPlane*>& planes,
                                                             const ZULMathVector& direction)
{
    std::pair<ZULMRSBSPPlane*, ZULMRSBSPPlane*> extreme(nullptr, nullptr);
    double least = 0.0;
    double most = 0.0;
    for (ZULMRSBSPPlane* plane : planes) {
        const double key = direction * plane->GetNormalVector();
        if (extreme.first == nullptr || key < least) {
            extreme.first = plane;
            least = key;
        }
        if (extreme.second == nullptr || key >= most) {
            extreme.second = plane;
            most = key;
        }
    }
    return extreme;
}
}  // namespace

std::array<ZULMRSBSPPlane*, 6> ZULMRSBSPPolyhedron::GetBoundingPlanes(const ZULMathVector& first,
                                                                      const ZULMathVector& second) const
{
    constexpr double ParallelLength = 0.0001;
    ZULMathVector direction2 = second;
    ZULMathVector direction3 = first ^ second;
    // The second direction counts only when it is nearly parallel to the first.
    if (!(direction3.Norm() < ParallelLength)) {
        ZULMRSMathUtilities::CompleteOrthogonalBasis(first, direction2, direction3);
    }
    std::vector<ZULMRSBSPPlane*> planes = GetSupportingPlanes(m_Polygons);
    planes.erase(std::remove(planes.begin(), planes.end(), nullptr), planes.end());
    std::array<ZULMRSBSPPlane*, 6> bounding{};
    std::tie(bounding[0], bounding[1]) = GetExtremePlanes(planes, first);
    std::tie(bounding[3], bounding[2]) = GetExtremePlanes(planes, direction3);
    std::tie(bounding[5], bounding[4]) = GetExtremePlanes(planes, direction2);
    return bounding;
}

// === Box

namespace
{
using BoxPlanes = std::array<ZULMRSBSPPlane*, ZULMRSBSPBoxFaces::NbPlanes>;
using BoxCorners = std::array<ZULMRSBSPPoint*, ZULMRSBSPBoxFaces::Corners.size()>;

/// Positive sides outside.
std::array<std::array<double, 4>, ZULMRSBSPBoxFaces::NbPlanes> GetBoxEquations(const ZULMathOBB& box)
{
    const ZULMathVector& extents = box.GetExtents();
    const ZULMathPoint lowest = box.UVWtoXYZ({-extents.x, -extents.y, -extents.z});
    const ZULMathPoint highest = box.UVWtoXYZ({extents.x, extents.y, extents.z});
    return {ZULMRSBSPPlaneNS::CreatePlaneEquation(lowest, -box.GetAxisW()),
            ZULMRSBSPPlaneNS::CreatePlaneEquation(highest, box.GetAxisW()),
            ZULMRSBSPPlaneNS::CreatePlaneEquation(highest, box.GetAxisV()),
            ZULMRSBSPPlaneNS::CreatePlaneEquation(lowest, -box.GetAxisV()),
            ZULMRSBSPPlaneNS::CreatePlaneEquation(lowest, -box.GetAxisU()),
            ZULMRSBSPPlaneNS::CreatePlaneEquation(highest, box.GetAxisU())};
}

ZULMRSBSPPlane* CreateBoxPlane(const std::array<double, 4>& equation, ZULMRSBSPObjectFactory* factory,
                               bool& isOpposite)
{
    if (factory == nullptr) {
        return ZULMRSBSPPlaneNS::CreateCartesianPlane(equation);
    }
    return factory->CreatePlane(equation, isOpposite,
                                ZULMRSBSPCreatePlane_AcceptOpposite | ZULMRSBSPCreatePlane_Quantize);
}

ZULMRSBSPPoint* CreateBoxCorner(const ZULMRSBSPBoxFaces::Corner& corner, const BoxPlanes& planes,
                                ZULMRSBSPObjectFactory* factory)
{
    bool isValid = false;
    if (factory == nullptr) {
        return ZULMRSBSPPointNS::CreatePoint(planes[corner[0]], planes[corner[1]], planes[corner[2]], isValid,
                                             true);
    }
    return factory->CreatePoint(planes[corner[0]], planes[corner[1]], planes[corner[2]], isValid);
}

/// All four corners or none.
void SetBoxPoints(ZULMRSBSPPolygon& polygon, const std::array<std::size_t, 4>& numbers,
                  const BoxCorners& corners)
{
    for (const std::size_t number : numbers) {
        if (corners[number] == nullptr) {
            return;
        }
    }
    polygon.GetPoints().resize(numbers.size(), nullptr);
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        polygon.SetCachedPoint(i, corners[numbers[i]]);
    }
}

/// Null when memory is exhausted.
ZULMRSBSPPolygon* CreateBoxPolygon(const ZULMRSBSPBoxFaces::Face& face, const BoxPlanes& planes,
                                   const BoxCorners& corners)
{
    auto* const polygon =
        new (std::nothrow) ZULMRSBSPPolygon(planes[face.m_SupportingPlane], face.m_Boundaries.size());
    if (polygon != nullptr) {
        for (const ZULMRSBSPBoxFaces::Plane boundary : face.m_Boundaries) {
            polygon->AddBoundary(planes[boundary], 0);
        }
        SetBoxPoints(*polygon, face.m_Corners, corners);
    }
    return polygon;
}
}  // namespace

void ZULMRSBSPPolyhedron::InitFromOBB(const ZULMathOBB& box, ZULMRSBSPObjectFactory* factory)
{
    const auto equations = GetBoxEquations(box);
    BoxPlanes planes{};
    std::array<bool, ZULMRSBSPBoxFaces::NbPlanes> isOpposite{};
    for (std::size_t i = 0; i < planes.size(); ++i) {
        planes[i] = CreateBoxPlane(equations[i], factory, isOpposite[i]);
    }
    BoxCorners corners{};
    for (std::size_t i = 0; i < corners.size(); ++i) {
        corners[i] = CreateBoxCorner(ZULMRSBSPBoxFaces::Corners[i], planes, factory);
    }
    ReserveMore(ZULMRSBSPBoxFaces::Faces.size());
    std::array<ZULMRSBSPPolygon*, ZULMRSBSPBoxFaces::Faces.size()> polygons{};
    for (std::size_t i = 0; i < polygons.size(); ++i) {
        const ZULMRSBSPBoxFaces::Face& face = ZULMRSBSPBoxFaces::Faces[i];
        polygons[i] = CreateBoxPolygon(face, planes, corners);
        const bool reverse = isOpposite[face.m_SupportingPlane];
        if (reverse && polygons[i] != nullptr) {
            polygons[i]->ReverseLoop();
        }
        AddAPolygon(polygons[i], static_cast<char>(reverse ? -1 : 1));
    }
    std::for_each(corners.begin(), corners.end(), ZULMRSBSPPoint::ReleaseObject);
    std::for_each(planes.begin(), planes.end(), ZULMRSBSPPlane::ReleaseObject);
    std::for_each(polygons.begin(), polygons.end(), ZULMRSBSPPolygon::ReleaseObject);
}
