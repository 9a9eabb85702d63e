#include "ZULMRSBSPReferenceCount.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <thread>
#include <vector>

#include "ZULMRSBSPCartesianPlane.h"
#include "ZULMRSBSPPoint.h"
#include "ZULTestPlaneStub.h"
#include "ZULTestSupport.h"

using ZULTest::PlaneStub;

namespace
{
using Destroyed = std::vector<const PlaneStub*>;

PlaneStub* NewStub(Destroyed& destroyed)
{
    auto* plane = new PlaneStub({1.0, 0.0, 0.0, 0.0});
    plane->m_Destroyed = &destroyed;
    return plane;
}

// Stands first: no thread but this one has been started yet.
TEST(ReferenceCount, HoldsFromBeforeTheFirstThreadToAfterTheLast)
{
    Destroyed destroyed;
    PlaneStub* plane = NewStub(destroyed);
    for (int i = 0; i < 1000; ++i) {
        plane->AddRef();
    }
    for (int i = 0; i < 400; ++i) {
        plane->Release();
    }
    EXPECT_EQ(plane->GetRefCount(), 600);
    std::vector<std::thread> threads;
    for (int t = 0; t < 3; ++t) {
        threads.emplace_back([plane] {
            for (int i = 0; i < 200; ++i) {
                plane->AddRef();
                plane->Release();
                plane->Release();
            }
        });
        plane->AddRef();
        plane->Release();
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(plane->GetRefCount(), 0);
    EXPECT_TRUE(destroyed.empty());
    plane->Release();
    EXPECT_EQ(destroyed, Destroyed{plane});
}

TEST(ReferenceCount, StartsAtZeroAndDiesAtTheReleaseThatFindsZero)
{
    Destroyed destroyed;
    PlaneStub* plane = NewStub(destroyed);
    EXPECT_EQ(plane->GetRefCount(), 0);
    plane->AddRef();
    EXPECT_EQ(plane->GetRefCount(), 1);
    plane->Release();
    EXPECT_EQ(plane->GetRefCount(), 0);
    EXPECT_TRUE(destroyed.empty());
    plane->Release();
    EXPECT_EQ(destroyed, Destroyed{plane});
}

TEST(ReferenceCount, ReplaceByTheObjectHeldChangesNothing)
{
    Destroyed destroyed;
    ZULMRSBSPPlane* slot = NewStub(destroyed);
    ZULMRSBSPPlane* const held = slot;
    ZULMRSBSPPlane::Replace(slot, held);
    EXPECT_EQ(slot, held);
    EXPECT_EQ(held->GetRefCount(), 0);
    EXPECT_TRUE(destroyed.empty());
    held->Release();

    ZULMRSBSPPlane* empty = nullptr;
    ZULMRSBSPPlane::Replace(empty, nullptr);
    EXPECT_EQ(empty, nullptr);
}

TEST(ReferenceCount, ReplaceTakesTheNewReferenceAndReleasesTheOld)
{
    Destroyed destroyed;
    PlaneStub* first = NewStub(destroyed);
    PlaneStub* second = NewStub(destroyed);
    ZULMRSBSPPlane* slot = first;
    ZULMRSBSPPlane::Replace(slot, second);
    EXPECT_EQ(slot, second);
    EXPECT_EQ(second->GetRefCount(), 1);
    EXPECT_EQ(destroyed, Destroyed{first});

    ZULMRSBSPPlane::Replace(slot, nullptr);
    EXPECT_EQ(slot, nullptr);
    EXPECT_EQ(second->GetRefCount(), 0);
    ZULMRSBSPPlane::Replace(slot, second);
    EXPECT_EQ(second->GetRefCount(), 1);
    second->Release();
    second->Release();
    EXPECT_EQ(destroyed, (Destroyed{first, second}));
}

/// A plane that keeps another one alive until it dies.
class HolderPlane : public PlaneStub
{
public:
    explicit HolderPlane(ZULMRSBSPPlane* held) : PlaneStub({0.0, 1.0, 0.0, 0.0}), m_Held(held) {}
    HolderPlane(const HolderPlane&) = delete;
    HolderPlane& operator=(const HolderPlane&) = delete;
    ~HolderPlane() override { m_Held->Release(); }

private:
    ZULMRSBSPPlane* m_Held;
};

TEST(ReferenceCount, ReplaceSavesAnObjectThatLivesOnlyThroughTheOldOne)
{
    Destroyed destroyed;
    PlaneStub* inner = NewStub(destroyed);
    ZULMRSBSPPlane* slot = new HolderPlane(inner);
    ZULMRSBSPPlane::Replace(slot, inner);
    EXPECT_EQ(slot, inner);
    EXPECT_TRUE(destroyed.empty());
    EXPECT_EQ(inner->GetRefCount(), 0);
    inner->Release();
    EXPECT_EQ(destroyed, Destroyed{inner});
}

TEST(ReferenceCount, ReleaseObjectAcceptsNull)
{
    ZULMRSBSPPlane::ReleaseObject(nullptr);
    ZULMRSBSPPoint::ReleaseObject(nullptr);
    Destroyed destroyed;
    PlaneStub* plane = NewStub(destroyed);
    plane->AddRef();
    ZULMRSBSPPlane::ReleaseObject(plane);
    EXPECT_EQ(plane->GetRefCount(), 0);
    ZULMRSBSPPlane::ReleaseObject(plane);
    EXPECT_EQ(destroyed, Destroyed{plane});
}

TEST(ReferenceCount, PointsFollowTheSameProtocol)
{
    ZULMRSBSPPoint* point = ZULMRSBSPPointNS::CreatePoint(ZULMathPoint(1.0, 2.0, 3.0));
    ZULMRSBSPPoint* other = ZULMRSBSPPointNS::CreatePoint(ZULMathPoint(4.0, 5.0, 6.0));
    EXPECT_EQ(point->GetRefCount(), 0);
    ZULMRSBSPPoint* slot = nullptr;
    ZULMRSBSPPoint::Replace(slot, point);
    EXPECT_EQ(point->GetRefCount(), 1);
    ZULMRSBSPPoint::Replace(slot, point);
    EXPECT_EQ(point->GetRefCount(), 1);
    ZULMRSBSPPoint::Replace(slot, other);
    EXPECT_EQ(point->GetRefCount(), 0);
    EXPECT_EQ(other->GetRefCount(), 1);
    ZULMRSBSPPoint::Replace(slot, nullptr);
    EXPECT_EQ(slot, nullptr);
    ZULMRSBSPPoint::ReleaseObject(point);
    other->Release();
}

TEST(ReferenceCount, CopiesTakeTheCountOver)
{
    auto plane = ZULTest::Own(new ZULMRSBSPCartesianPlane({1.0, 2.0, 3.0, 4.0}));
    plane->AddRef();
    plane->AddRef();
    const ZULMRSBSPCartesianPlane copy(*plane);
    EXPECT_EQ(copy.GetRefCount(), 2);
    ZULMRSBSPCartesianPlane target({0.0, 0.0, 1.0, 0.0});
    target = *plane;
    EXPECT_EQ(target.GetRefCount(), 2);
    EXPECT_EQ(plane->GetRefCount(), 2);
    plane->Release();
    plane->Release();
}

TEST(ReferenceCount, ExactlyOneThreadDestroys)
{
    constexpr int nbThreads = 4;
    constexpr int nbRounds = 2000;
    Destroyed destroyed;
    PlaneStub* plane = NewStub(destroyed);
    for (int i = 1; i < nbThreads; ++i) {
        plane->AddRef();
    }
    std::vector<std::thread> threads;
    for (int i = 0; i < nbThreads; ++i) {
        threads.emplace_back([plane] {
            for (int round = 0; round < nbRounds; ++round) {
                ZULMRSBSPPlane* slot = nullptr;
                ZULMRSBSPPlane::Replace(slot, plane);
                ZULMRSBSPPlane::Replace(slot, nullptr);
            }
            ZULMRSBSPPlane::ReleaseObject(plane);
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(destroyed, Destroyed{plane});
}
}  // namespace
