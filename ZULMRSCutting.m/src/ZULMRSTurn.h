#ifndef ZULMRSTurn_h
#define ZULMRSTurn_h

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

#include "ZULExpFloatRingExtensionTS.h"
#include "ZULExpInterval.h"
#include "ZULMRSBSPPlane.h"
#include "ZULMRSBSPPoint.h"

/// The side of a plane from which turns in it are judged, told by the two coordinates that stay when the
/// plane is projected along one axis.
struct ZULMRSTurnFrame {
    std::size_t m_U = 0;
    std::size_t m_V = 1;
    int m_Sign = 0;  ///< 0: not known yet, or a plane without a normal
};

/// The frame of a plane seen from its front (orientation 1) or its back (-1).
ZULMRSTurnFrame ZULMRSMakeTurnFrame(const ZULMRSBSPPlane& plane, int orientation);

/// Answers exactly how three numbered points of one plane turn. Keeps the numbers of the points that it was
/// asked about. Not synchronised; the points must outlive it.
class ZULMRSTurn
{
public:
    explicit ZULMRSTurn(const std::vector<const ZULMRSBSPPoint*>& points)
        : m_Points(points), m_Intervals(points.size()), m_Exact(points.size())
    {
    }

    /// 1: counter-clockwise, -1: clockwise, 0: on one line.
    int Sign(const ZULMRSTurnFrame& frame, std::uint32_t p, std::uint32_t q, std::uint32_t r);

private:
    template <class Number>
    using Store = std::vector<std::unique_ptr<const std::array<Number, 4>>>;

    template <class Number>
    const std::array<Number, 4>* Get(Store<Number>& store, std::uint32_t point);
    template <class Number>
    int StagedSign(Store<Number>& store, const ZULMRSTurnFrame& frame, std::uint32_t p, std::uint32_t q,
                   std::uint32_t r);

    const std::vector<const ZULMRSBSPPoint*>& m_Points;
    Store<ZULExpInterval> m_Intervals;
    Store<ZULExpFloatRingExtensionTS> m_Exact;
};

#endif
