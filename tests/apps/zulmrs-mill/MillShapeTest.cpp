#include "MillShape.h"

#include <gtest/gtest.h>

#include "MillError.h"
#include "MillTestHelp.h"

namespace
{

std::string Complaint(std::string_view text)
{
    return MillComplaint<MillError>([text] { MillParseShape(text, "--tool"); });
}

TEST(MillShape, ReadsEveryKind)
{
    const MillShape flat = MillParseShape("flat:6", "--tool");
    EXPECT_EQ(flat.m_Kind, MillShapeKind::Flat);
    EXPECT_EQ(flat.m_Diameter, 6.0);
    const MillShape ball = MillParseShape("ball:.5", "--tool");
    EXPECT_EQ(ball.m_Kind, MillShapeKind::Ball);
    EXPECT_EQ(ball.m_Diameter, 0.5);
    const MillShape vee = MillParseShape("vee:+3.175:60.5", "--tool");
    EXPECT_EQ(vee.m_Kind, MillShapeKind::Vee);
    EXPECT_EQ(vee.m_Diameter, 3.175);
    EXPECT_EQ(vee.m_Angle, 60.5);
}

TEST(MillShape, GivesBackItsText)
{
    for (const char* text : {"flat:6", "ball:0.5", "vee:3.175:60.5"}) {
        EXPECT_EQ(MillParseShape(text, "--tool").GetText(), text);
    }
}

TEST(MillShape, RefusesWhatIsNoTool)
{
    constexpr const char* kAre = " is not a tool: flat:D, ball:D or vee:D:ANGLE are";
    for (const std::string text :
         {"", "flat", "Flat:6", "flat:6:7", "ball:6:7", "vee:6", "vee:6:60:1", "drill:3"}) {
        EXPECT_EQ(Complaint(text), "--tool: '" + text + "'" + kAre);
    }
    EXPECT_EQ(Complaint("flat:"), "--tool: 'flat:': the diameter '' is not a number");
    EXPECT_EQ(Complaint("flat:6mm"), "--tool: 'flat:6mm': the diameter '6mm' is not a number");
    EXPECT_EQ(Complaint("flat:nan"), "--tool: 'flat:nan': the diameter 'nan' is not a number");
    EXPECT_EQ(Complaint("flat:inf"), "--tool: 'flat:inf': the diameter 'inf' is not a number");
    EXPECT_EQ(Complaint("flat:+-6"), "--tool: 'flat:+-6': the diameter '+-6' is not a number");
    EXPECT_EQ(Complaint("flat:1e999"), "--tool: 'flat:1e999': the diameter '1e999' is not a number");
    EXPECT_EQ(Complaint("vee:6:x"), "--tool: 'vee:6:x': the angle 'x' is not a number");
}

TEST(MillShape, RefusesSizesThatNoToolHas)
{
    EXPECT_EQ(Complaint("flat:0"), "--tool: 'flat:0': a tool of no size");
    EXPECT_EQ(Complaint("ball:-3"), "--tool: 'ball:-3': a tool of no size");
    EXPECT_EQ(Complaint("flat:1000.1"), "--tool: 'flat:1000.1': the diameter is more than 1000 mm");
    for (const std::string angle : {"0", "4.9", "175.1", "180", "-60"}) {
        EXPECT_EQ(Complaint("vee:6:" + angle),
                  "--tool: 'vee:6:" + angle + "': the angle is not from 5 to 175 degrees");
    }
    EXPECT_EQ(Complaint("vee:6:5"), "nothing");
    EXPECT_EQ(Complaint("vee:6:175"), "nothing");
}

TEST(MillShape, KeepsComplaintsOnOneLine)
{
    EXPECT_EQ(Complaint("flat\n:6"),
              "--tool: 'flat\\x0a:6' is not a tool: flat:D, ball:D or vee:D:ANGLE are");
}

}  // namespace
