#include <gtest/gtest.h>

#include <thread>

#include "ZULBlockPool.h"
#include "ZULTestAllocation.h"

// A program that watches the heap sees every block.
namespace
{
TEST(ZULBlockPoolGlobalHeap, EveryBlockIsOneOfTheGlobalHeap)
{
    EXPECT_TRUE(ZULBlockPool::UseGlobalHeap());
    for (const std::size_t size : {16U, 100U, 512U, 513U}) {
        const long before = ZULTest::GetLiveBlocks();
        void* const first = ZULBlockPool::Allocate(size);
        void* const second = ZULBlockPool::Allocate(size);
        EXPECT_EQ(ZULTest::GetLiveBlocks(), before + 2);
        ZULBlockPool::Free(first, size);
        ZULBlockPool::FreeOfUnknownSize(second);
        EXPECT_EQ(ZULTest::GetLiveBlocks(), before);
    }
}

TEST(ZULBlockPoolGlobalHeap, FailuresOfTheGlobalHeapAreSeen)
{
    const ZULTest::AllocationFailure failure(1);
    EXPECT_EQ(ZULBlockPool::Allocate(64), nullptr);
    void* const block = ZULBlockPool::Allocate(64);
    EXPECT_NE(block, nullptr);
    ZULBlockPool::Free(block, 64);
}

TEST(ZULBlockPoolGlobalHeap, InEveryThread)
{
    std::thread([] {
        const long before = ZULTest::GetAllocations();
        ZULBlockPool::Free(ZULBlockPool::Allocate(64), 64);
        EXPECT_EQ(ZULTest::GetAllocations(), before + 1);
    }).join();
    EXPECT_TRUE(ZULBlockPool::UseGlobalHeap());
}
}  // namespace
