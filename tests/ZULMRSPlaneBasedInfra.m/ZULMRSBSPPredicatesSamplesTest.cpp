#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdlib>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "ZULMRSBSPPredicates.h"
#include "ZULMRSBSPPredicatesKit.h"

// Sign cases collected from the field, with signs computed in rational arithmetic by others.
namespace
{
using namespace ZULMRSBSPPredicates;
using namespace ZULTest;

const std::string Folder = ZUL_SAMPLE_INPUTS "/predicates/";

using Rows = std::vector<std::vector<double>>;

/// Rows of numbers in hexadecimal notation; a row of one level only counts as one row.
Rows ReadRows(const nlohmann::json& args)
{
    Rows rows;
    for (const nlohmann::json& row : args) {
        std::vector<double> numbers;
        for (const nlohmann::json& number : row) {
            numbers.push_back(std::strtod(number.get<std::string>().c_str(), nullptr));
        }
        rows.push_back(numbers);
    }
    return rows;
}

Point3 ToPoint(const std::vector<double>& row)
{
    return {row.at(0), row.at(1), row.at(2)};
}
Owner<ZULMRSBSPPlane> ToPlane(const std::vector<double>& row)
{
    return Own<ZULMRSBSPPlane>(
        new ZULMRSBSPCartesianPlane(Plane4{row.at(0), row.at(1), row.at(2), row.at(3)}));
}
ZULMathPoint ToMathPoint(const std::vector<double>& row)
{
    return {row.at(0), row.at(1), row.at(2)};
}

int Orient2d(const std::vector<double>& p, const std::vector<double>& q, const std::vector<double>& r)
{
    const int byDifferences = SignOf2x2DiffDeterminant(p[0], p[1], q[0], q[1], p[0], p[1], r[0], r[1]);
    const int byDeterminant = SignOf3x3Determinant(p[0], p[1], 1.0, q[0], q[1], 1.0, r[0], r[1], 1.0);
    EXPECT_EQ(byDifferences, byDeterminant);
    return byDifferences;
}

/// Positive when d is behind the plane through a, b and c. The point is given by coordinates and by planes.
int Orient3d(const std::vector<double>& a, const std::vector<double>& b, const std::vector<double>& c,
             const std::vector<double>& d)
{
    const auto plane = Own<ZULMRSBSPPlane>(new ZULMRSBSP3PointsPlane({ToPoint(a), ToPoint(b), ToPoint(c)}));
    const int side = IsPointInFrontOfPlane(*plane, ToMathPoint(d));
    const auto x = ToPlane({1.0, 0.0, 0.0, -d[0]});
    const auto y = ToPlane({0.0, 1.0, 0.0, -d[1]});
    const auto z = ToPlane({0.0, 0.0, 1.0, -d[2]});
    bool isValid = false;
    const auto point = Own<ZULMRSBSPPoint>(new ZULMRSBSP3PlanesPoint({y.get(), x.get(), z.get()}, isValid));
    EXPECT_TRUE(isValid);
    EXPECT_EQ(IsPointInFrontOfPlane(*plane, *point), side);
    return -side;
}

/// The side of the fourth plane at the meeting point of the others, in both orders of these; 0 when they have
/// none.
int Planes4(const Rows& rows)
{
    const Silence silence;
    const std::array<Owner<ZULMRSBSPPlane>, 4> planes = {ToPlane(rows[0]), ToPlane(rows[1]), ToPlane(rows[2]),
                                                         ToPlane(rows[3])};
    std::array<int, 2> sides{};
    for (std::size_t order = 0; order < 2; ++order) {
        bool isValid = false;
        const auto point = Own<ZULMRSBSPPoint>(new ZULMRSBSP3PlanesPoint(
            {planes[order].get(), planes[1 - order].get(), planes[2].get()}, isValid));
        sides[order] = IsPointInFrontOfPlane(*planes[3], *point);
    }
    EXPECT_EQ(sides[0], sides[1]);
    return sides[0];
}

int Answer(const std::string& predicate, const Rows& x)
{
    if (predicate == "det2") {
        return SignOf2x2Determinant(x[0][0], x[0][1], x[1][0], x[1][1]);
    }
    if (predicate == "det3") {
        return SignOf3x3Determinant(x[0][0], x[0][1], x[0][2], x[1][0], x[1][1], x[1][2], x[2][0], x[2][1],
                                    x[2][2]);
    }
    if (predicate == "dot3") {
        return SignOf3DimDotProduct(ToPoint(x[0]), ToPoint(x[1]));
    }
    if (predicate == "orient2d") {
        return Orient2d(x[0], x[1], x[2]);
    }
    if (predicate == "orient3d") {
        return Orient3d(x[0], x[1], x[2], x[3]);
    }
    if (predicate == "plane_point") {
        return IsPointInFrontOfPlane(*ToPlane(x[0]), ToMathPoint(x[1]));
    }
    if (predicate == "planes4") {
        return Planes4(x);
    }
    if (predicate == "det4") {
        return Planes4(x) * SignOf3PlanesDeterminant(*ToPlane(x[0]), *ToPlane(x[1]), *ToPlane(x[2]));
    }
    ADD_FAILURE() << "unknown predicate " << predicate;
    return 99;
}

TEST(ZULMRSBSPPredicatesSamples, CollectedCases)
{
    std::ifstream file(Folder + "cases.json");
    ASSERT_TRUE(file) << Folder;
    const nlohmann::json document = nlohmann::json::parse(file);
    std::size_t count = 0;
    for (const nlohmann::json& sample : document.at("cases")) {
        EXPECT_EQ(Answer(sample.at("predicate"), ReadRows(sample.at("args_hex"))),
                  sample.at("expected_sign").get<int>())
            << sample.at("id");
        ++count;
    }
    EXPECT_EQ(count, document.at("count").get<std::size_t>());
}

/// Calls check(points, sign) for every record: an id, the coordinates of the points, the sign.
template <class Check>
std::size_t ForEveryRecord(const std::string& name, std::size_t points, std::size_t dimension,
                           const Check& check)
{
    std::ifstream file(Folder + name);
    EXPECT_TRUE(file) << Folder << name;
    std::size_t count = 0;
    for (std::string line; std::getline(file, line);) {
        if (line.empty() || line[0] == '#') {
            continue;
        }
        std::istringstream words(line);
        std::string word;
        words >> word;
        const std::string id = word;
        Rows rows(points, std::vector<double>(dimension));
        for (std::vector<double>& row : rows) {
            for (double& number : row) {
                words >> word;
                number = std::strtod(word.c_str(), nullptr);
            }
        }
        int sign = 99;
        words >> sign;
        EXPECT_FALSE(words.fail()) << line;
        check(rows, sign, id);
        ++count;
    }
    return count;
}

TEST(ZULMRSBSPPredicatesSamples, RecordsOfThreePointsInThePlane)
{
    const auto check = [](const Rows& x, int sign, const std::string& id) {
        EXPECT_EQ(Orient2d(x[0], x[1], x[2]), sign) << id;
        EXPECT_EQ(Orient2d(x[1], x[0], x[2]), -sign) << id;
    };
    EXPECT_EQ(ForEveryRecord("orient2d_nanevski.txt", 3, 2, check), 500U);
}

TEST(ZULMRSBSPPredicatesSamples, RecordsOfFourPointsInSpace)
{
    const auto check = [](const Rows& x, int sign, const std::string& id) {
        EXPECT_EQ(Orient3d(x[0], x[1], x[2], x[3]), sign) << id;
        EXPECT_EQ(Orient3d(x[1], x[0], x[2], x[3]), -sign) << id;
    };
    EXPECT_EQ(ForEveryRecord("orient3d_nanevski.txt", 4, 3, check), 500U);
}
}  // namespace
