#include "Sweeps.h"

#include <CGAL/Exact_predicates_inexact_constructions_kernel.h>
#include <CGAL/Surface_mesh.h>
#include <CGAL/convex_hull_3.h>

#include <cmath>
#include <cstdint>
#include <fstream>
#include <numbers>
#include <numeric>
#include <set>
#include <stdexcept>
#include <string>

namespace ZULBench
{
namespace
{
using Point = CGAL::Exact_predicates_inexact_constructions_kernel::Point_3;
using Mesh = CGAL::Surface_mesh<Point>;
using Whole = std::int64_t;

constexpr double Radius = 1500;
/// Above everything, wherever the tip is.
constexpr double Shank = 12000;

/// The corners of the cutter, its tip at the origin.
std::vector<Corner> MakeTool()
{
    std::vector<Corner> corners = {{0, 0, 0}};
    for (int side = 0; side < 8; ++side) {
        const double angle = std::numbers::pi / 8 * (2 * side + 1);
        for (const double slope : {std::numbers::pi / 6, std::numbers::pi / 3, std::numbers::pi / 2}) {
            const double radius = Radius * std::sin(slope);
            corners.push_back({std::round(radius * std::cos(angle)), std::round(radius * std::sin(angle)),
                               std::round(Radius * (1 - std::cos(slope)))});
        }
        corners.push_back({corners.back()[0], corners.back()[1], Shank});
    }
    return corners;
}

/// The places of the first cutting moves, which are lines, and where they start.
std::vector<Corner> ReadPlaces(std::size_t nbMoves)
{
    std::ifstream file(ZUL_BENCH_RELIEF);
    std::vector<Corner> places;
    Corner place{};
    bool isCutting = false;
    for (std::string line; places.size() <= nbMoves && std::getline(file, line);) {
        if (line.starts_with("(") || line.starts_with("%") || line.starts_with("O")) {
            continue;
        }
        isCutting = line.starts_with("G1") ? true : line.starts_with("G0") ? false : isCutting;
        bool hasMoved = false;
        if (isCutting && places.empty()) {
            places.push_back(place);
        }
        for (std::size_t axis = 0; axis < 3; ++axis) {
            const std::size_t found = line.find("XYZ"[axis]);
            if (found != std::string::npos) {
                place[axis] = std::round(1000 * std::stod(line.substr(found + 1)));
                hasMoved = true;
            }
        }
        if (isCutting && hasMoved) {
            places.push_back(place);
        }
    }
    if (places.size() <= nbMoves) {
        throw std::runtime_error("too few moves in " ZUL_BENCH_RELIEF);
    }
    return places;
}

/// The plane through the corners of a triangle, in whole numbers without common factor.
Equation PlaneThrough(const Point& p, const Point& q, const Point& r)
{
    Whole u[3];
    Whole v[3];
    Whole origin[3];
    for (int i = 0; i < 3; ++i) {
        u[i] = static_cast<Whole>(q[i] - p[i]);
        v[i] = static_cast<Whole>(r[i] - p[i]);
        origin[i] = static_cast<Whole>(p[i]);
    }
    Whole normal[3];
    Whole divisor = 0;
    for (int i = 0; i < 3; ++i) {
        const int j = (i + 1) % 3;
        const int k = (i + 2) % 3;
        normal[i] = u[j] * v[k] - u[k] * v[j];
        divisor = std::gcd(divisor, normal[i]);
    }
    Equation plane{};
    for (int i = 0; i < 3; ++i) {
        plane[i] = static_cast<double>(normal[i] / divisor);
        plane[3] -= plane[i] * static_cast<double>(origin[i]);
    }
    return plane;
}

/// The convex hull of the tool at two places.
Sweep MakeSweep(const std::vector<Corner>& tool, const Corner& start, const Corner& end)
{
    std::vector<Point> points;
    for (const Corner& place : {start, end}) {
        for (const Corner& corner : tool) {
            points.emplace_back(place[0] + corner[0], place[1] + corner[1], place[2] + corner[2]);
        }
    }
    Mesh hull;
    CGAL::convex_hull_3(points.begin(), points.end(), hull);
    Sweep sweep;
    for (const auto vertex : hull.vertices()) {
        const Point& point = hull.point(vertex);
        sweep.m_Corners.push_back({point.x(), point.y(), point.z()});
    }
    std::set<Equation> planes;
    for (const auto face : hull.faces()) {
        const auto first = hull.halfedge(face);
        const auto second = hull.next(first);
        planes.insert(PlaneThrough(hull.point(hull.source(first)), hull.point(hull.target(first)),
                                   hull.point(hull.target(second))));
    }
    sweep.m_Planes.assign(planes.begin(), planes.end());
    return sweep;
}
}  // namespace

std::vector<Sweep> MakeSweeps(std::size_t nbMoves)
{
    const std::vector<Corner> tool = MakeTool();
    const std::vector<Corner> places = ReadPlaces(nbMoves);
    std::vector<Sweep> sweeps;
    for (std::size_t i = 0; i < nbMoves; ++i) {
        sweeps.push_back(MakeSweep(tool, places[i], places[i + 1]));
    }
    return sweeps;
}
}  // namespace ZULBench
