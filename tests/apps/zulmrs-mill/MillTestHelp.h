#ifndef MillTestHelp_h
#define MillTestHelp_h

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>
#include <stdlib.h>

#include "MillTool.h"
#include "MillToolProfile.h"
#include "ZULVoxelMill.h"

/// A folder of its own, removed at the end.
class MillTestFolder
{
public:
    MillTestFolder()
    {
        std::string name = (std::filesystem::temp_directory_path() / "zulmrs-mill-test-XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr) {
            ADD_FAILURE() << "no temporary folder";
        }
        m_Path = name;
    }
    ~MillTestFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_Path, ignored);
    }
    MillTestFolder(const MillTestFolder&) = delete;
    MillTestFolder& operator=(const MillTestFolder&) = delete;

    std::string operator/(std::string_view name) const { return (m_Path / name).string(); }
    std::string GetPath() const { return m_Path.string(); }

    std::string Add(std::string_view name, std::string_view text) const
    {
        std::ofstream(*this / name, std::ios::binary) << text;
        return *this / name;
    }

    /// Names of all that is in the folder, in order.
    std::vector<std::string> List() const
    {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(m_Path)) {
            names.push_back(entry.path().filename().string());
        }
        std::sort(names.begin(), names.end());
        return names;
    }

private:
    std::filesystem::path m_Path;
};

inline std::string MillReadFile(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    EXPECT_TRUE(file) << path;
    return {std::istreambuf_iterator<char>(file), {}};
}

/// What the call throws as an Error, or "nothing".
template <class Error, class Call>
std::string MillComplaint(const Call& call)
{
    try {
        call();
    } catch (const Error& error) {
        return error.what();
    }
    return "nothing";
}

inline MillTool MillMakeTool(const MillShape& shape, int sides,
                             MillSidesKind kind = MillSidesKind::Circumscribed)
{
    return MillTool(MillMakeToolProfile(shape, sides, kind, "--tool"));
}

/// The tool as the column count knows it, in millimetres.
inline ZULVoxelTool MillVoxelTool(const MillTool& tool)
{
    ZULVoxelTool voxelTool;
    for (const MillTool::Facet& facet : tool.GetFacets()) {
        voxelTool.AddHalfSpace(static_cast<double>(facet.m_Normal.m_X),
                               static_cast<double>(facet.m_Normal.m_Y),
                               static_cast<double>(facet.m_Normal.m_Z),
                               static_cast<double>(facet.m_Height) / kMillNanometresPerMm);
    }
    voxelTool.m_Reach = MillToMm(tool.GetReach());
    return voxelTool;
}

#endif
