#ifndef ZULMathOBB_h
#define ZULMathOBB_h

#include <array>
#include <cstddef>

#include "ZULMathPoint.h"
#include "ZULMathVector.h"
#include "ZULPlatformExport.h"

/// An oriented box: centre, three axes and the half-length ("extent") along each. The box spans from -extent
/// to +extent along each axis. A plain value; nothing normalises or checks the axes.
class ZULPlatform_API ZULMathOBBBase
{
public:
    /// Centre at the origin, the unit axes, extents 0.
    ZULMathOBBBase();
    ZULMathOBBBase(const ZULMathVector& axisU, const ZULMathVector& axisV, const ZULMathVector& axisW,
                   const ZULMathVector& extents, const ZULMathPoint& center);

    const ZULMathVector& GetAxisU() const { return m_Axes[0]; }
    const ZULMathVector& GetAxisV() const { return m_Axes[1]; }
    const ZULMathVector& GetAxisW() const { return m_Axes[2]; }
    /// Half-lengths along U, V, W, in the unit of the coordinates.
    const ZULMathVector& GetExtents() const { return m_Extents; }
    const ZULMathPoint& GetCenter() const { return m_Center; }

    /// The point with the given coordinates in the box's own frame: ((u U + v V) + w W) + centre.
    ZULMathPoint UVWtoXYZ(const ZULMathPoint& uvw) const;
    /// The reverse of UVWtoXYZ for orthonormal axes.
    ZULMathPoint XYZtoUVW(const ZULMathPoint& xyz) const;

    /// Eight times the product of the extents.
    double Volume() const;

    /// Fits the box to the points: it contains every one of them, and is tight (the eight corners of a box
    /// give that box back to within 1e-12 relative; its volume never exceeds that of the axis-aligned box).
    /// Returns 0, or a negative value for no point or a coordinate that is not finite; the box is then
    /// unchanged.
    int DefineElements(const ZULMathPoint* points, std::size_t count);

    /// Adds the distance to the three extents. A negative distance shrinks the box, never below extents 0.
    void Inflate(double distance);

private:
    std::array<ZULMathVector, 3> m_Axes;
    ZULMathVector m_Extents;
    ZULMathPoint m_Center;
};

/// The oriented box of the geometry interfaces: its base part and one byte of state of its own (0: nothing
/// derived kept).
class ZULPlatform_API ZULMathOBB : public ZULMathOBBBase
{
public:
    ZULMathOBB() = default;
    explicit ZULMathOBB(const ZULMathOBBBase& base) : ZULMathOBBBase(base) {}

    void SetBase(const ZULMathOBBBase& base)
    {
        static_cast<ZULMathOBBBase&>(*this) = base;
        m_State = 0;
    }

    unsigned char GetState() const { return m_State; }

private:
    unsigned char m_State = 0;
};

#endif
