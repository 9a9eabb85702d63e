#ifndef ZULVoxelMill_h
#define ZULVoxelMill_h

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

#include "ZULMathPoint.h"

/// A tool without an upper end, as half-spaces n . x <= h round the tip: what the column count knows of a
/// tool.
struct ZULVoxelTool {
    /// nx, ny, nz, h with nz < 0, and with nz = 0.
    std::vector<std::array<double, 4>> m_Lower;
    std::vector<std::array<double, 4>> m_Walls;
    /// Nothing of the tool is farther from its axis, along X or Y.
    double m_Reach = 0.0;

    void AddHalfSpace(double nx, double ny, double nz, double h)
    {
        (nz < 0.0 ? m_Lower : m_Walls).push_back({nx, ny, nz, h});
    }
};

/// An independent, slow and simple count of what is left of a box under tools without an upper end, which
/// leave a height over every place. One column stands at a random place in every cell of a grid, so that the
/// sum of all columns is an unbiased estimate of the volume, whose error shrinks with the square root of the
/// number of cells that an edge of the part crosses.
class ZULVoxelMill
{
public:
    /// About columnCount columns of square cross-section.
    ZULVoxelMill(const ZULMathPoint& min, const ZULMathPoint& max, std::size_t columnCount,
                 std::uint32_t seed = 1)
        : m_Min(min), m_Max(max)
    {
        const double width = max.x - min.x;
        const double depth = max.y - min.y;
        const double spacing = std::sqrt(width * depth / static_cast<double>(columnCount));
        m_CountX = std::max<std::size_t>(3, static_cast<std::size_t>(width / spacing));
        m_CountY = std::max<std::size_t>(3, static_cast<std::size_t>(depth / spacing));
        m_StepX = width / static_cast<double>(m_CountX);
        m_StepY = depth / static_cast<double>(m_CountY);
        m_Columns.resize(m_CountX * m_CountY);
        std::mt19937 random(seed);
        std::uniform_real_distribution<double> within(0.0, 1.0);
        for (std::size_t j = 0; j < m_CountY; ++j) {
            for (std::size_t i = 0; i < m_CountX; ++i) {
                m_Columns[j * m_CountX + i] = {min.x + (static_cast<double>(i) + within(random)) * m_StepX,
                                               min.y + (static_cast<double>(j) + within(random)) * m_StepY,
                                               max.z};
            }
        }
    }

    /// Takes away what the tool passes while its tip goes straight from start to end.
    void Sweep(const ZULVoxelTool& tool, const ZULMathPoint& start, const ZULMathPoint& end)
    {
        const auto cells = [&tool](double a, double b, double low, double step, std::size_t count) {
            const double first = std::floor((std::min(a, b) - tool.m_Reach - low) / step);
            const double last = std::floor((std::max(a, b) + tool.m_Reach - low) / step) + 1.0;
            const auto most = static_cast<double>(count);
            return std::array<std::size_t, 2>{static_cast<std::size_t>(std::clamp(first, 0.0, most)),
                                              static_cast<std::size_t>(std::clamp(last, 0.0, most))};
        };
        if (std::min(start.z, end.z) >= m_Max.z) {
            return;
        }
        const auto x = cells(start.x, end.x, m_Min.x, m_StepX, m_CountX);
        const auto y = cells(start.y, end.y, m_Min.y, m_StepY, m_CountY);
        for (std::size_t j = y[0]; j < y[1]; ++j) {
            for (std::size_t i = x[0]; i < x[1]; ++i) {
                ZULMathPoint& column = m_Columns[j * m_CountX + i];
                column.z = std::min(column.z, LowestPass(tool, start, end, column));
            }
        }
    }

    double GetVolume() const
    {
        double sum = 0.0;
        for (const ZULMathPoint& column : m_Columns) {
            sum += std::max(column.z - m_Min.z, 0.0);
        }
        return sum * m_StepX * m_StepY;
    }

    /// Six standard deviations of GetVolume. The variance of one column is at most a quarter of the square of
    /// how much the height varies over its cell, which the heights of the neighbours show.
    double GetTolerance() const
    {
        double sum = 0.0;
        for (std::size_t j = 0; j < m_CountY; ++j) {
            for (std::size_t i = 0; i < m_CountX; ++i) {
                const double range = HeightRange(i, j);
                sum += range * range / 4.0;
            }
        }
        return 6.0 * std::sqrt(sum) * m_StepX * m_StepY;
    }

private:
    /// Height over the way, a + b t for 0 <= t <= 1.
    struct Line {
        double m_A;
        double m_B;
    };

    /// The lowest height at which the tool passes a place, infinite if it does not: the facets' heights over
    /// the place are linear along the way, the walls bound the part of the way that reaches the place.
    double LowestPass(const ZULVoxelTool& tool, const ZULMathPoint& start, const ZULMathPoint& end,
                      const ZULMathPoint& place)
    {
        const double rx = place.x - start.x;
        const double ry = place.y - start.y;
        const double dx = end.x - start.x;
        const double dy = end.y - start.y;
        double from = 0.0;
        double to = 1.0;
        for (const auto& [nx, ny, nz, h] : tool.m_Walls) {
            const double excess = nx * rx + ny * ry - h;
            const double gain = nx * dx + ny * dy;
            if (gain > 0.0) {
                from = std::max(from, excess / gain);
            } else if (gain < 0.0) {
                to = std::min(to, excess / gain);
            } else if (excess > 0.0) {
                return HUGE_VAL;
            }
        }
        if (from > to) {
            return HUGE_VAL;
        }
        m_Lines.clear();
        for (const auto& [nx, ny, nz, h] : tool.m_Lower) {
            m_Lines.push_back(
                {(nx * rx + ny * ry - h) / -nz + start.z, (nx * dx + ny * dy) / nz + end.z - start.z});
        }
        return LowestOfHighest(from, to);
    }

    const Line& HighestAt(double t) const
    {
        return *std::max_element(m_Lines.begin(), m_Lines.end(), [t](const Line& p, const Line& q) {
            return p.m_A + p.m_B * t < q.m_A + q.m_B * t;
        });
    }

    /// The minimum over [from, to] of the highest line, by meeting the falling and the rising one.
    double LowestOfHighest(double from, double to) const
    {
        Line falling = HighestAt(from);
        if (falling.m_B >= 0.0) {
            return falling.m_A + falling.m_B * from;
        }
        Line rising = HighestAt(to);
        if (rising.m_B <= 0.0) {
            return rising.m_A + rising.m_B * to;
        }
        for (std::size_t i = 0;; ++i) {
            const double t = (falling.m_A - rising.m_A) / (rising.m_B - falling.m_B);
            const double height = falling.m_A + falling.m_B * t;
            const Line& highest = HighestAt(t);
            const double above = highest.m_A + highest.m_B * t - height;
            if (above <= 1e-12 || i > m_Lines.size()) {
                return height + std::max(above, 0.0);
            }
            (highest.m_B < 0.0 ? falling : rising) = highest;
        }
    }

    double HeightRange(std::size_t i, std::size_t j) const
    {
        double low = m_Max.z;
        double high = m_Min.z;
        for (std::size_t v = j - std::min<std::size_t>(j, 1); v < std::min(j + 2, m_CountY); ++v) {
            for (std::size_t u = i - std::min<std::size_t>(i, 1); u < std::min(i + 2, m_CountX); ++u) {
                const double z = std::max(m_Columns[v * m_CountX + u].z, m_Min.z);
                low = std::min(low, z);
                high = std::max(high, z);
            }
        }
        return high - low;
    }

    ZULMathPoint m_Min;
    ZULMathPoint m_Max;
    std::size_t m_CountX = 0;
    std::size_t m_CountY = 0;
    double m_StepX = 0.0;
    double m_StepY = 0.0;
    /// Place and height.
    std::vector<ZULMathPoint> m_Columns;
    std::vector<Line> m_Lines;
};

#endif
