#include <cmath>

#include <gmpxx.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "MillMeshReader.h"
#include "MillTestHelp.h"
#include "ZULMRSCellCheck.h"
#include "ZULMRSCuttingSolid.h"

namespace
{

struct RealMesh {
    std::string m_File;
    ZULMRSSurfaceMesh m_Mesh;
    mpq_class m_SignedVolume;
    bool m_IsConvex = false;
};

std::vector<RealMesh> ReadAll()
{
    const std::string folder = std::string(ZUL_SAMPLE_INPUTS) + "/mesh/";
    std::vector<RealMesh> meshes;
    const auto index = nlohmann::json::parse(MillReadFile(folder + "index.json"));
    for (const auto& entry : index["files"]) {
        RealMesh mesh;
        mesh.m_File = entry["file"];
        const std::string text = MillReadFile(folder + mesh.m_File);
        mesh.m_Mesh = mesh.m_File.ends_with(".obj") ? MillReadObj(text) : MillReadOff(text);
        EXPECT_EQ(mesh.m_Mesh.m_Vertices.size(), entry["vertices"].get<std::size_t>());
        EXPECT_EQ(mesh.m_Mesh.m_Triangles.size(), entry["facets"].get<std::size_t>());
        mesh.m_SignedVolume = mpq_class(entry["signed_volume_exact"].get<std::string>());
        mesh.m_IsConvex = entry["convex_exact"] == "yes";
        meshes.push_back(std::move(mesh));
    }
    EXPECT_FALSE(meshes.empty());
    return meshes;
}

std::array<mpq_class, 3> Exact(const ZULMathPoint& p)
{
    return {mpq_class(p.x), mpq_class(p.y), mpq_class(p.z)};
}

mpq_class SignedVolume(const ZULMRSSurfaceMesh& mesh)
{
    mpq_class sixfold;
    for (const auto& t : mesh.m_Triangles) {
        const auto a = Exact(mesh.m_Vertices[t[0]]);
        const auto b = Exact(mesh.m_Vertices[t[1]]);
        const auto c = Exact(mesh.m_Vertices[t[2]]);
        sixfold += a[0] * (b[1] * c[2] - b[2] * c[1]) + a[1] * (b[2] * c[0] - b[0] * c[2]) +
                   a[2] * (b[0] * c[1] - b[1] * c[0]);
    }
    return sixfold / 6;
}

/// The planes of the facets of a convex mesh, turned out of it, each moved to touch the mesh from outside.
ZULMRSConvexTool ToolOf(const ZULMRSSurfaceMesh& mesh, double orientation)
{
    ZULMRSConvexTool tool;
    for (const auto& t : mesh.m_Triangles) {
        const ZULMathPoint& a = mesh.m_Vertices[t[0]];
        const ZULMathVector u = mesh.m_Vertices[t[1]] - a;
        const ZULMathVector v = mesh.m_Vertices[t[2]] - a;
        const std::array<double, 3> n{orientation * (u.y * v.z - u.z * v.y),
                                      orientation * (u.z * v.x - u.x * v.z),
                                      orientation * (u.x * v.y - u.y * v.x)};
        double height = -HUGE_VAL;
        for (const ZULMathPoint& p : mesh.m_Vertices) {
            height = std::max(height, n[0] * p.x + n[1] * p.y + n[2] * p.z);
        }
        tool.m_HalfSpaces.push_back({n[0], n[1], n[2], -height});
    }
    return tool;
}

/// An axis-parallel box round the mesh, half as large again.
ZULMathOBB BoxRound(const ZULMRSSurfaceMesh& mesh)
{
    ZULMathPoint low = mesh.m_Vertices[0];
    ZULMathPoint high = low;
    for (const ZULMathPoint& p : mesh.m_Vertices) {
        low = {std::min(low.x, p.x), std::min(low.y, p.y), std::min(low.z, p.z)};
        high = {std::max(high.x, p.x), std::max(high.y, p.y), std::max(high.z, p.z)};
    }
    const ZULMathVector size = high - low;
    return ZULMathOBB(ZULMathOBBBase({1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0},
                                     {0.75 * size.x, 0.75 * size.y, 0.75 * size.z},
                                     low + ZULMathVector(size.x / 2.0, size.y / 2.0, size.z / 2.0)));
}

TEST(MillRealMeshes, AreClosedAndHaveTheirExactVolume)
{
    for (const RealMesh& mesh : ReadAll()) {
        EXPECT_TRUE(mesh.m_Mesh.IsClosed()) << mesh.m_File;
        EXPECT_EQ(SignedVolume(mesh.m_Mesh), mesh.m_SignedVolume) << mesh.m_File;
        const double volume = mesh.m_SignedVolume.get_d();
        EXPECT_NEAR(mesh.m_Mesh.GetVolume(), volume, 1e-9 * std::fabs(volume)) << mesh.m_File;
    }
}

TEST(MillRealMeshes, ConvexOnesCutTheirVolumeOutOfABox)
{
    int convex = 0;
    for (const RealMesh& mesh : ReadAll()) {
        // A tetrahedron is convex whichever way it is turned.
        if (!mesh.m_IsConvex && mesh.m_Mesh.m_Vertices.size() != 4) {
            continue;
        }
        ++convex;
        SCOPED_TRACE(mesh.m_File);
        const double expected = std::fabs(mesh.m_SignedVolume.get_d());
        const ZULMRSConvexTool tool = ToolOf(mesh.m_Mesh, mesh.m_SignedVolume < 0 ? -1.0 : 1.0);

        ZULMRSCuttingSolid hollow(BoxRound(mesh.m_Mesh));
        const double stock = hollow.GetVolume();
        EXPECT_TRUE(hollow.Subtract(tool));
        EXPECT_NEAR(stock - hollow.GetVolume(), expected, 1e-9 * stock);
        EXPECT_TRUE(hollow.ExtractSurface().IsClosed());
        EXPECT_TRUE(ZULMRSCheckCells(hollow.GetCells()).IsValid());
        EXPECT_FALSE(hollow.Subtract(tool)) << "once more changes nothing";

        ZULMRSCuttingSolid kept(BoxRound(mesh.m_Mesh));
        EXPECT_TRUE(kept.KeepInside(tool));
        EXPECT_NEAR(kept.GetVolume(), expected, 1e-9 * stock);
        EXPECT_TRUE(kept.ExtractSurface().IsClosed());
        EXPECT_TRUE(ZULMRSCheckCells(kept.GetCells()).IsValid());
    }
    EXPECT_EQ(convex, 3);
}

/// A part that is not convex: its convex hull's planes are no use, but every facet's plane splits a block.
TEST(MillRealMeshes, FacetsOfAPartSplitABlockWithoutLoss)
{
    for (const RealMesh& mesh : ReadAll()) {
        SCOPED_TRACE(mesh.m_File);
        ZULMRSCuttingSolid block(BoxRound(mesh.m_Mesh));
        const double volume = block.GetVolume();
        const ZULMRSConvexTool planes = ToolOf(mesh.m_Mesh, 1.0);
        // Coplanar facets give nearly equal planes: cells thinner than any double can tell.
        const std::size_t count = std::min<std::size_t>(planes.m_HalfSpaces.size(), 24);
        for (std::size_t i = 0; i < count; ++i) {
            block.Split(planes.m_HalfSpaces[i]);
        }
        EXPECT_GT(block.GetNbCells(), 4U);
        EXPECT_NEAR(block.GetVolume(), volume, 1e-9 * volume);
        EXPECT_TRUE(ZULMRSCheckCells(block.GetCells()).IsValid());
        const ZULMRSSurfaceMesh surface = block.ExtractSurface();
        EXPECT_TRUE(surface.IsClosed());
        EXPECT_EQ(surface.m_Vertices.size(), 8U) << "walls within do not show";
    }
}

}  // namespace
