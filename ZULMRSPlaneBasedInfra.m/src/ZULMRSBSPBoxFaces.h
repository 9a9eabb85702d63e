#ifndef ZULMRSBSPBoxFaces_h
#define ZULMRSBSPBoxFaces_h

#include <array>
#include <cstddef>

/// How the planes, corners and faces of a box hang together. The order within each table is the order in
/// which the objects are made.
namespace ZULMRSBSPBoxFaces
{
/// Planes, named by the outward direction along the box's axes.
enum Plane : std::size_t { MinusW, PlusW, PlusV, MinusV, MinusU, PlusU };
constexpr std::size_t NbPlanes = 6;

/// Corners by the planes that meet there, as a point holds them.
using Corner = std::array<Plane, 3>;
constexpr std::array<Corner, 8> Corners{{{MinusU, MinusV, MinusW},
                                         {PlusU, MinusV, MinusW},
                                         {PlusU, PlusV, MinusW},
                                         {MinusU, PlusV, MinusW},
                                         {MinusU, MinusV, PlusW},
                                         {PlusU, MinusV, PlusW},
                                         {PlusU, PlusV, PlusW},
                                         {MinusU, PlusV, PlusW}}};

/// A face: its plane, its loop, counter-clockwise seen from outside for right-handed axes, and its corners,
/// corner i on boundaries i and i+1.
struct Face {
    Plane m_SupportingPlane;
    std::array<Plane, 4> m_Boundaries;
    std::array<std::size_t, 4> m_Corners;
};
constexpr std::array<Face, NbPlanes> Faces{{{MinusW, {PlusV, PlusU, MinusV, MinusU}, {2, 1, 0, 3}},
                                            {PlusW, {PlusV, MinusU, MinusV, PlusU}, {7, 4, 5, 6}},
                                            {PlusV, {MinusU, PlusW, PlusU, MinusW}, {7, 6, 2, 3}},
                                            {MinusV, {MinusU, MinusW, PlusU, PlusW}, {0, 1, 5, 4}},
                                            {MinusU, {MinusW, MinusV, PlusW, PlusV}, {0, 4, 7, 3}},
                                            {PlusU, {MinusW, PlusV, PlusW, MinusV}, {2, 6, 5, 1}}}};
}  // namespace ZULMRSBSPBoxFaces

#endif
