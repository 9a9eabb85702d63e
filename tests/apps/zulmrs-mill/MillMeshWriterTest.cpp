#include "MillMeshWriter.h"

#include <cstring>
#include <map>
#include <sstream>

#include <gtest/gtest.h>

#include "MillError.h"
#include "MillMeshReader.h"
#include "MillTestHelp.h"

namespace
{

/// A tetrahedron with coordinates that no single-precision number has.
ZULMRSSurfaceMesh Tetrahedron()
{
    ZULMRSSurfaceMesh mesh;
    mesh.m_Vertices = {{0.1, -0.0, 0.0}, {10.123456789, 0.3, 0.0}, {0.0, 20.7, 1.0 / 3.0}, {0.0, 0.0, 30.0}};
    mesh.m_Triangles = {{0, 2, 1}, {0, 1, 3}, {1, 2, 3}, {2, 0, 3}};
    return mesh;
}

std::string Written(const ZULMRSSurfaceMesh& mesh, MillMeshFormat format, std::size_t expectedTriangles)
{
    const MillTestFolder folder;
    MillOutputFile file(folder / "mesh");
    EXPECT_EQ(MillWriteMesh(mesh, format, file), expectedTriangles);
    file.Finish();
    file.Publish();
    return MillReadFile(folder / "mesh");
}

TEST(MillMeshWriter, KnowsFormatsByTheirEndings)
{
    EXPECT_EQ(MillMeshFormatOf("a.stl"), MillMeshFormat::Stl);
    EXPECT_EQ(MillMeshFormatOf("/x.obj/A.STL"), MillMeshFormat::Stl);
    EXPECT_EQ(MillMeshFormatOf("a.b.Obj"), MillMeshFormat::Obj);
    EXPECT_EQ(MillMeshFormatOf(".ply"), MillMeshFormat::Ply);
    for (const std::string path : {"a", "a.stlx", "a.stl.gz", "stl", "a."}) {
        EXPECT_EQ(MillComplaint<MillError>([&] { MillMeshFormatOf(path); }),
                  "-o: '" + path + "' does not end in .stl, .obj or .ply");
    }
}

TEST(MillMeshWriter, WritesStl)
{
    const std::string bytes = Written(Tetrahedron(), MillMeshFormat::Stl, 4);
    ASSERT_EQ(bytes.size(), 84U + 4U * 50U);
    EXPECT_FALSE(bytes.starts_with("solid")) << "readers would take it for text";
    const ZULMRSSurfaceMesh mesh = MillReadStl(bytes);
    EXPECT_EQ(mesh.m_Triangles.size(), 4U);
    EXPECT_EQ(mesh.m_Vertices.size(), 4U);
    EXPECT_TRUE(mesh.IsClosed());
    EXPECT_NEAR(mesh.GetVolume(), Tetrahedron().GetVolume(), 1e-3);
    EXPECT_EQ(static_cast<float>(mesh.m_Vertices[0].x), 0.1F);
}

TEST(MillMeshWriter, StlHasNormalsThatPointOut)
{
    const std::string bytes = Written(Tetrahedron(), MillMeshFormat::Stl, 4);
    for (std::size_t i = 0; i < 4; ++i) {
        std::array<float, 12> numbers;
        std::memcpy(numbers.data(), bytes.data() + 84 + 50 * i, sizeof numbers);
        const double length = std::hypot(numbers[0], numbers[1], numbers[2]);
        EXPECT_NEAR(length, 1.0, 1e-6);
        // The middle of the body is behind every face.
        const double side = numbers[0] * (numbers[3] - 2.5) + numbers[1] * (numbers[4] - 5.2) +
                            numbers[2] * (numbers[5] - 7.5);
        EXPECT_GT(side, 0.0);
    }
}

TEST(MillMeshWriter, StlLeavesOutTrianglesThatSinglePrecisionFlattens)
{
    // An edge of a tetrahedron split at a point that single precision cannot tell from its end.
    ZULMRSSurfaceMesh mesh = Tetrahedron();
    mesh.m_Vertices.push_back({0.0, 0.0, 30.0 - 1e-9});
    mesh.m_Triangles = {{0, 2, 1}, {0, 1, 4}, {1, 3, 4}, {1, 2, 3}, {2, 4, 3}, {2, 0, 4}};
    ASSERT_TRUE(mesh.IsClosed());
    const ZULMRSSurfaceMesh read = MillReadStl(Written(mesh, MillMeshFormat::Stl, 4));
    EXPECT_EQ(read.m_Triangles.size(), 4U);
    EXPECT_TRUE(read.IsClosed());
}

TEST(MillMeshWriter, WritesObjThatReadsBackExactly)
{
    const ZULMRSSurfaceMesh mesh = MillReadObj(Written(Tetrahedron(), MillMeshFormat::Obj, 4));
    EXPECT_EQ(mesh.m_Vertices, Tetrahedron().m_Vertices);
    EXPECT_EQ(mesh.m_Triangles, Tetrahedron().m_Triangles);
}

TEST(MillMeshWriter, WritesPlyThatReadsBackExactly)
{
    const ZULMRSSurfaceMesh mesh = MillReadPly(Written(Tetrahedron(), MillMeshFormat::Ply, 4));
    EXPECT_EQ(mesh.m_Vertices, Tetrahedron().m_Vertices);
    EXPECT_EQ(mesh.m_Triangles, Tetrahedron().m_Triangles);
}

TEST(MillMeshWriter, WritesAnEmptyMesh)
{
    const ZULMRSSurfaceMesh nothing;
    EXPECT_EQ(Written(nothing, MillMeshFormat::Stl, 0).size(), 84U);
    EXPECT_TRUE(MillReadObj(Written(nothing, MillMeshFormat::Obj, 0)).m_Vertices.empty());
    EXPECT_TRUE(MillReadPly(Written(nothing, MillMeshFormat::Ply, 0)).m_Vertices.empty());
}

}  // namespace
