#include "tools/sonavit/output/json.h"

#include <gtest/gtest.h>

#include <limits>
#include <optional>

using sonavit::program::Json;

TEST(ProgramJson, KeepsMembersInOrder)
{
    EXPECT_EQ(R"({"b":1,"a":"x","c":null})", Json::object({{"b", 1}, {"a", "x"}, {"c", {}}}).line());
}

TEST(ProgramJson, WritesNumbersAsNumbers)
{
    EXPECT_EQ("72", Json(72u).line());
    EXPECT_EQ("-18.0", Json(-18.0f).line());
    EXPECT_EQ("0.1", Json(0.1f).line());
    EXPECT_EQ("-65.25", Json(-65.25f).line());
    EXPECT_EQ("16777216.0", Json(16777216.0f).line());
}

TEST(ProgramJson, WritesIntegersOfEachTypeExactly)
{
    EXPECT_EQ("-2147483648", Json(std::numeric_limits<int>::min()).line());
    EXPECT_EQ("-9223372036854775808", Json(std::numeric_limits<long long>::min()).line());
    EXPECT_EQ("18446744073709551615", Json(std::numeric_limits<unsigned long long>::max()).line());
    EXPECT_EQ("4294967295", Json(0xFFFFFFFFul).line());
    EXPECT_EQ("7", Json(std::size_t(7)).line());
    EXPECT_EQ("8", Json(static_cast<unsigned short>(8)).line());
    EXPECT_EQ("true", Json(true).line());
}

TEST(ProgramJson, WritesNullForWhatIsNoNumber)
{
    EXPECT_EQ("null", Json(std::numeric_limits<float>::quiet_NaN()).line());
    EXPECT_EQ("null", Json(std::numeric_limits<float>::infinity()).line());
    EXPECT_EQ("null", Json(std::optional<unsigned>()).line());
    EXPECT_EQ("0", Json(std::optional<unsigned>(0)).line());
}

TEST(ProgramJson, EscapesTexts)
{
    EXPECT_EQ(R"("USB\\VID \"x\"\n")", Json("USB\\VID \"x\"\n").line());
    EXPECT_EQ("\"\xEF\xBF\xBD\"", Json("\xFF").line()); // no UTF-8
}

TEST(ProgramJson, BeginsDocumentsWithTheVersion)
{
    EXPECT_EQ(R"({"schemaVersion":2,"x":true})", Json::document({{"x", true}}).line());
}

TEST(ProgramJson, CopiesDeeply)
{
    Json original = Json::object({{"a", 1}});
    Json copy = original;
    copy.set("a", 2);

    EXPECT_EQ(R"({"a":1})", original.line());
    EXPECT_EQ(R"({"a":2})", copy.line());
}

TEST(ProgramJson, IsAssignedDeeply)
{
    const Json original = Json::object({{"a", 1}, {"b", 3}});
    Json copy;
    copy = original;
    copy.set("a", 2);
    const Json& same = copy;
    copy = same;

    EXPECT_EQ(R"({"a":1,"b":3})", original.line());
    EXPECT_EQ(R"({"a":2,"b":3})", copy.line());
}

TEST(ProgramJson, GivesEachMemberALineInADocumentForPeople)
{
    Json list = Json::array();
    list.append(1).append("x");

    EXPECT_EQ("{\n  \"list\": [\n    1,\n    \"x\"\n  ]\n}", Json::object({{"list", list}}).text());
}
