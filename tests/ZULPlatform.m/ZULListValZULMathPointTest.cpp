#include "ZULListValZULMathPoint.h"

#include <gtest/gtest.h>

TEST(ZULListValZULMathPoint, PositionsStartAtOne)
{
    ZULListValZULMathPoint list;
    EXPECT_EQ(list.Size(), 0);
    list.Append({1.0, 2.0, 3.0});
    list.Append({4.0, 5.0, 6.0});
    ASSERT_EQ(list.Size(), 2);
    EXPECT_EQ(list[1], ZULMathPoint(1.0, 2.0, 3.0));
    EXPECT_EQ(list[2], ZULMathPoint(4.0, 5.0, 6.0));
    list[1] = ZULMathPoint(7.0, 8.0, 9.0);
    const ZULListValZULMathPoint& constant = list;
    EXPECT_EQ(constant[1], ZULMathPoint(7.0, 8.0, 9.0));
    list.RemoveAll();
    EXPECT_EQ(list.Size(), 0);
}
