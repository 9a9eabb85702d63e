#include "MillMeshWriter.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cctype>
#include <cmath>
#include <cstdint>

#include "MillError.h"

namespace
{

using Triangle = std::array<std::uint32_t, 3>;
using SinglePoint = std::array<float, 3>;

/// Appends numbers in little-endian order, whatever the order of the machine.
class ByteString
{
public:
    template <class Unsigned>
    void AddUnsigned(Unsigned value)
    {
        for (std::size_t i = 0; i < sizeof value; ++i) {
            m_Bytes += static_cast<char>(static_cast<unsigned char>(value >> (8 * i)));
        }
    }
    void Add(float value) { AddUnsigned(std::bit_cast<std::uint32_t>(value)); }
    void Add(double value) { AddUnsigned(std::bit_cast<std::uint64_t>(value)); }
    void Add(const SinglePoint& point)
    {
        for (const float value : point) {
            Add(value);
        }
    }
    const std::string& Get() const { return m_Bytes; }
    void Clear() { m_Bytes.clear(); }

private:
    std::string m_Bytes;
};

/// Never a negative zero: readers that join points by their bytes would take it for another place.
SinglePoint ToSingle(const ZULMathPoint& p)
{
    return {static_cast<float>(p.x) + 0.0F, static_cast<float>(p.y) + 0.0F, static_cast<float>(p.z) + 0.0F};
}

SinglePoint UnitNormal(const std::array<ZULMathPoint, 3>& corners)
{
    const ZULMathVector u = corners[1] - corners[0];
    const ZULMathVector v = corners[2] - corners[0];
    ZULMathVector n(u.y * v.z - u.z * v.y, u.z * v.x - u.x * v.z, u.x * v.y - u.y * v.x);
    n.Normalize();
    return ToSingle({n.x, n.y, n.z});
}

std::size_t WriteStl(const ZULMRSSurfaceMesh& mesh, MillOutputFile& file)
{
    std::vector<SinglePoint> points;
    points.reserve(mesh.m_Vertices.size());
    for (const ZULMathPoint& p : mesh.m_Vertices) {
        points.push_back(ToSingle(p));
    }
    const auto isDegenerate = [&points](const Triangle& t) {
        return points[t[0]] == points[t[1]] || points[t[1]] == points[t[2]] || points[t[2]] == points[t[0]];
    };
    const auto dropped = std::count_if(mesh.m_Triangles.begin(), mesh.m_Triangles.end(), isDegenerate);
    const std::size_t count = mesh.m_Triangles.size() - static_cast<std::size_t>(dropped);

    ByteString bytes;
    file.Write(fmt::format("{:80}", "binary STL, millimetres, written by zulmrs-mill"));
    bytes.AddUnsigned(static_cast<std::uint32_t>(count));
    for (const Triangle& t : mesh.m_Triangles) {
        if (isDegenerate(t)) {
            continue;
        }
        bytes.Add(UnitNormal({mesh.m_Vertices[t[0]], mesh.m_Vertices[t[1]], mesh.m_Vertices[t[2]]}));
        for (const std::uint32_t corner : t) {
            bytes.Add(points[corner]);
        }
        bytes.AddUnsigned(std::uint16_t{0});
        file.Write(bytes.Get());
        bytes.Clear();
    }
    file.Write(bytes.Get());
    return count;
}

std::size_t WriteObj(const ZULMRSSurfaceMesh& mesh, MillOutputFile& file)
{
    file.Write("# millimetres, written by zulmrs-mill\n");
    for (const ZULMathPoint& p : mesh.m_Vertices) {
        file.Write(fmt::format("v {} {} {}\n", p.x, p.y, p.z));
    }
    for (const Triangle& t : mesh.m_Triangles) {
        file.Write(fmt::format("f {} {} {}\n", t[0] + std::uint64_t{1}, t[1] + std::uint64_t{1},
                               t[2] + std::uint64_t{1}));
    }
    return mesh.m_Triangles.size();
}

std::size_t WritePly(const ZULMRSSurfaceMesh& mesh, MillOutputFile& file)
{
    file.Write(
        fmt::format("ply\n"
                    "format binary_little_endian 1.0\n"
                    "comment millimetres, written by zulmrs-mill\n"
                    "element vertex {}\n"
                    "property double x\nproperty double y\nproperty double z\n"
                    "element face {}\n"
                    "property list uchar uint vertex_indices\n"
                    "end_header\n",
                    mesh.m_Vertices.size(), mesh.m_Triangles.size()));
    ByteString bytes;
    const auto write = [&file, &bytes] {
        file.Write(bytes.Get());
        bytes.Clear();
    };
    for (const ZULMathPoint& p : mesh.m_Vertices) {
        for (const double value : {p.x, p.y, p.z}) {
            bytes.Add(value);
        }
        write();
    }
    for (const Triangle& t : mesh.m_Triangles) {
        bytes.AddUnsigned(std::uint8_t{3});
        for (const std::uint32_t corner : t) {
            bytes.AddUnsigned(corner);
        }
        write();
    }
    return mesh.m_Triangles.size();
}

}  // namespace

MillMeshFormat MillMeshFormatOf(const std::string& path)
{
    const std::size_t dot = path.rfind('.');
    std::string ending = dot == std::string::npos ? "" : path.substr(dot + 1);
    std::transform(ending.begin(), ending.end(), ending.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    if (ending == "stl") {
        return MillMeshFormat::Stl;
    }
    if (ending == "obj") {
        return MillMeshFormat::Obj;
    }
    if (ending == "ply") {
        return MillMeshFormat::Ply;
    }
    throw MillError("-o", fmt::format("'{}' does not end in .stl, .obj or .ply", path));
}

std::size_t MillWriteMesh(const ZULMRSSurfaceMesh& mesh, MillMeshFormat format, MillOutputFile& file)
{
    switch (format) {
        case MillMeshFormat::Obj:
            return WriteObj(mesh, file);
        case MillMeshFormat::Ply:
            return WritePly(mesh, file);
        case MillMeshFormat::Stl:
            break;
    }
    return WriteStl(mesh, file);
}
