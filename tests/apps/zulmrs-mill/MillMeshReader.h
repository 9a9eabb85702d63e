#ifndef MillMeshReader_h
#define MillMeshReader_h

#include <array>
#include <cstdint>
#include <cstring>
#include <map>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "ZULMRSSurfaceMesh.h"

/// Readers of just what the tests need; on a little-endian machine.

/// Points of equal coordinates become one.
inline ZULMRSSurfaceMesh MillReadStl(const std::string& bytes)
{
    ZULMRSSurfaceMesh mesh;
    std::uint32_t count = 0;
    if (bytes.size() < 84) {
        ADD_FAILURE() << "no STL";
        return mesh;
    }
    std::memcpy(&count, bytes.data() + 80, sizeof count);
    EXPECT_EQ(bytes.size(), 84 + 50 * std::size_t{count});
    std::map<std::array<char, 12>, std::uint32_t> numbers;
    for (std::size_t at = 84; at + 50 <= bytes.size(); at += 50) {
        std::array<std::uint32_t, 3> triangle{};
        for (std::size_t k = 0; k < 3; ++k) {
            std::array<char, 12> key;
            std::memcpy(key.data(), bytes.data() + at + 12 + 12 * k, key.size());
            const auto [place, isNew] =
                numbers.emplace(key, static_cast<std::uint32_t>(mesh.m_Vertices.size()));
            if (isNew) {
                std::array<float, 3> p;
                std::memcpy(p.data(), key.data(), sizeof p);
                mesh.m_Vertices.push_back({p[0], p[1], p[2]});
            }
            triangle[k] = place->second;
        }
        mesh.m_Triangles.push_back(triangle);
    }
    return mesh;
}

/// Triangles "f A B C" or "f A//N B//N C//N".
inline ZULMRSSurfaceMesh MillReadObj(const std::string& text)
{
    ZULMRSSurfaceMesh mesh;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line);
        std::string kind;
        words >> kind;
        if (kind == "v") {
            std::string x, y, z;
            words >> x >> y >> z;
            mesh.m_Vertices.push_back({std::stod(x), std::stod(y), std::stod(z)});
        } else if (kind == "f") {
            std::array<std::uint32_t, 3> triangle{};
            for (std::uint32_t& corner : triangle) {
                std::string word;
                words >> word;
                corner = static_cast<std::uint32_t>(std::stoul(word)) - 1;
            }
            mesh.m_Triangles.push_back(triangle);
        }
    }
    return mesh;
}

inline ZULMRSSurfaceMesh MillReadPly(const std::string& bytes)
{
    ZULMRSSurfaceMesh mesh;
    const std::string end = "end_header\n";
    const std::size_t head = bytes.find(end);
    EXPECT_NE(head, std::string::npos);
    const auto count = [&bytes](const std::string& element) {
        return std::stoul(bytes.substr(bytes.find("element " + element) + 9 + element.size()));
    };
    mesh.m_Vertices.resize(count("vertex"));
    mesh.m_Triangles.resize(count("face"));
    const char* at = bytes.data() + head + end.size();
    EXPECT_EQ(bytes.size() - head - end.size(), 24 * mesh.m_Vertices.size() + 13 * mesh.m_Triangles.size());
    for (ZULMathPoint& p : mesh.m_Vertices) {
        std::array<double, 3> numbers;
        std::memcpy(numbers.data(), at, sizeof numbers);
        p = {numbers[0], numbers[1], numbers[2]};
        at += sizeof numbers;
    }
    for (auto& triangle : mesh.m_Triangles) {
        EXPECT_EQ(*at, 3);
        std::memcpy(triangle.data(), at + 1, 12);
        at += 13;
    }
    return mesh;
}

/// Polygons are cut into fans.
inline ZULMRSSurfaceMesh MillReadOff(const std::string& text)
{
    ZULMRSSurfaceMesh mesh;
    std::istringstream words(text);
    std::string word;
    std::size_t vertices = 0;
    std::size_t faces = 0;
    words >> word >> vertices >> faces >> word;
    mesh.m_Vertices.resize(vertices);
    for (ZULMathPoint& p : mesh.m_Vertices) {
        std::string x, y, z;
        words >> x >> y >> z;
        p = {std::stod(x), std::stod(y), std::stod(z)};
    }
    for (std::size_t i = 0; i < faces; ++i) {
        std::size_t corners = 0;
        words >> corners;
        std::vector<std::uint32_t> loop(corners);
        for (std::uint32_t& corner : loop) {
            words >> corner;
        }
        for (std::size_t k = 2; k < corners; ++k) {
            mesh.m_Triangles.push_back({loop[0], loop[k - 1], loop[k]});
        }
    }
    return mesh;
}

#endif
