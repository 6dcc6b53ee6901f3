#include "sonavit/jsontree.h"

#include "sonavit/problem.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace
{
using namespace sonavit;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

std::string reasonFor(const std::string& text, const json::Limits& limits = {1000, 10, 3})
{
    const Result<json::Value> tree = json::treeOf(text, limits, "read");
    EXPECT_FALSE(tree) << text;
    EXPECT_EQ(Problem::Kind::unreadable, tree.problem().kind());
    EXPECT_EQ("read", tree.problem().operation());
    return tree.problem().sentence();
}

/// The parser has a position of its own, which counts from another place.
TEST(JsonTreeOfBrokenText, NamesOnePositionAlone)
{
    const std::string reason = reasonFor("{\n  \"a\": 1,\n  b\n}");

    EXPECT_THAT(reason, StartsWith("line 3: syntax error"));
    EXPECT_THAT(reason, Not(HasSubstr("parse error")));
    EXPECT_THAT(reason, Not(HasSubstr("column")));
}

TEST(JsonTreeOfBrokenText, NamesWhatIsTooMuch)
{
    EXPECT_EQ("line 1: the text is larger than 3 bytes", reasonFor("[1, 2]", {3, 10, 3}));
    EXPECT_EQ("line 2: more than 2 values", reasonFor("[1,\n2]", {1000, 2, 3}));
    EXPECT_EQ("line 1: lists and objects are nested deeper than 3 levels", reasonFor("[[[[]]]]"));
    EXPECT_EQ("line 2: \"a\" is there twice", reasonFor("{\"a\": 1,\n\"a\": 2}"));
}

TEST(JsonTree, KnowsKindsLinesAndMembers)
{
    const Result<json::Value> tree =
        json::treeOf("{\"a\": [1.5, \"b\"],\n\"c\": true, \"d\": null}", {1000, 10, 3}, "read");

    ASSERT_TRUE(tree);
    EXPECT_EQ(json::Kind::object, tree->kind);
    const json::Value* const list = tree->member("a");
    ASSERT_NE(nullptr, list);
    EXPECT_EQ(json::Kind::list, list->kind);
    ASSERT_EQ(2u, list->items.size());
    EXPECT_EQ(1.5, list->items[0].number);
    EXPECT_EQ("b", list->items[1].string);
    ASSERT_NE(nullptr, tree->member("c"));
    EXPECT_TRUE(tree->member("c")->boolean);
    EXPECT_EQ(2u, tree->member("c")->line);
    EXPECT_EQ(nullptr, tree->member("d"));
    EXPECT_EQ(nullptr, tree->member("e"));
}

TEST(JsonKind, HasWordsForMessages)
{
    EXPECT_STREQ("null", json::wordsOf(json::Kind::null));
    EXPECT_STREQ("true or false", json::wordsOf(json::Kind::boolean));
    EXPECT_STREQ("a number", json::wordsOf(json::Kind::number));
    EXPECT_STREQ("a string", json::wordsOf(json::Kind::string));
    EXPECT_STREQ("a list", json::wordsOf(json::Kind::list));
    EXPECT_STREQ("an object", json::wordsOf(json::Kind::object));
}
}
