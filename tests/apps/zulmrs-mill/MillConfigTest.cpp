#include "MillConfig.h"

#include <gtest/gtest.h>

#include "MillError.h"
#include "MillTestHelp.h"

namespace
{

std::string StockComplaint(const std::string& text)
{
    return MillComplaint<MillError>([&text] { MillParseStock(text); });
}

std::string ToolComplaint(const std::vector<std::string>& texts)
{
    MillToolTable table;
    return MillComplaint<MillError>([&] {
        for (const std::string& text : texts) {
            table.Add(text);
        }
    });
}

TEST(MillConfig, ReadsABoxOfStock)
{
    const MillStockChoice stock = MillParseStock("-1.5,-2,-20,100,+60.25,0");
    EXPECT_FALSE(stock.m_IsAuto);
    EXPECT_EQ(stock.m_Min, ZULMathPoint(-1.5, -2.0, -20.0));
    EXPECT_EQ(stock.m_Max, ZULMathPoint(100.0, 60.25, 0.0));
}

TEST(MillConfig, ReadsAMargin)
{
    EXPECT_TRUE(MillParseStock("auto:0").m_IsAuto);
    EXPECT_EQ(MillParseStock("auto:0").m_Margin, 0.0);
    EXPECT_EQ(MillParseStock("auto:2.5").m_Margin, 2.5);
}

TEST(MillConfig, RefusesStockThatIsNone)
{
    EXPECT_EQ(StockComplaint("auto"), "--stock: 'auto' is not a number");
    EXPECT_EQ(StockComplaint("auto:"), "--stock: '' is not a number");
    EXPECT_EQ(StockComplaint("auto:x"), "--stock: 'x' is not a number");
    EXPECT_EQ(StockComplaint("auto:-1"), "--stock: the margin -1 is negative");
    EXPECT_EQ(StockComplaint("auto:nan"), "--stock: 'nan' is not a number");
    EXPECT_EQ(StockComplaint(""), "--stock: '' is not a number");
    EXPECT_EQ(StockComplaint("0,0,0,1,1"),
              "--stock: '0,0,0,1,1' has 5 numbers, not the six of X0,Y0,Z0,X1,Y1,Z1");
    EXPECT_EQ(StockComplaint("0,0,0,1,1,1,1"),
              "--stock: '0,0,0,1,1,1,1' has 7 numbers, not the six of X0,Y0,Z0,X1,Y1,Z1");
    EXPECT_EQ(StockComplaint("0,0,0,1,,1"), "--stock: '' is not a number");
    EXPECT_EQ(StockComplaint("0,0,0,1,1,1x"), "--stock: '1x' is not a number");
    EXPECT_EQ(StockComplaint("0,0,0,0,1,1"), "--stock: '0,0,0,0,1,1': X0 is not below X1");
    EXPECT_EQ(StockComplaint("0,2,0,1,1,1"), "--stock: '0,2,0,1,1,1': Y0 is not below Y1");
    EXPECT_EQ(StockComplaint("0,0,0,1,1,1e-7"), "--stock: '0,0,0,1,1,1e-7': Z0 is not below Z1");
    EXPECT_EQ(StockComplaint("0,0,0,1,1,1e9"), "--stock: 1e9 is too far out");
}

TEST(MillConfig, FindsTheShapeOfATool)
{
    MillToolTable table;
    EXPECT_EQ(table.Find(1), nullptr);
    table.Add("1=flat:6");
    table.Add("0=ball:3");
    EXPECT_EQ(table.Find(1)->GetText(), "flat:6");
    EXPECT_EQ(table.Find(0)->GetText(), "ball:3");
    EXPECT_EQ(table.Find(2), nullptr);
    EXPECT_EQ(table.Find(kNcNoTool), nullptr);
    table.Add("vee:6:60");
    EXPECT_EQ(table.Find(1)->GetText(), "flat:6");
    EXPECT_EQ(table.Find(2)->GetText(), "vee:6:60");
    EXPECT_EQ(table.Find(kNcNoTool)->GetText(), "vee:6:60");
}

TEST(MillConfig, RefusesToolsThatAreNone)
{
    EXPECT_EQ(ToolComplaint({"=flat:6"}), "--tool: '' is not a tool number");
    EXPECT_EQ(ToolComplaint({"T1=flat:6"}), "--tool: 'T1' is not a tool number");
    EXPECT_EQ(ToolComplaint({"-1=flat:6"}), "--tool: '-1' is not a tool number");
    EXPECT_EQ(ToolComplaint({"1.5=flat:6"}), "--tool: '1.5' is not a tool number");
    EXPECT_EQ(ToolComplaint({"100000000=flat:6"}), "--tool: '100000000' is not a tool number");
    EXPECT_EQ(ToolComplaint({"1=flat:0"}), "--tool: 'flat:0': a tool of no size");
    EXPECT_EQ(ToolComplaint({"1=flat:6", "2=flat:6", "1=flat:8"}),
              "--tool: '1=flat:8': tool 1 has a shape already");
    EXPECT_EQ(ToolComplaint({"flat:6", "flat:6"}),
              "--tool: 'flat:6': a shape for all tools was given already");
}

}  // namespace
