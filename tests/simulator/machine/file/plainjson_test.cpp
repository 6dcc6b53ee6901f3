#include "simulator/machine/file/plainjson.h"

#include "simulator/machine/file/machinefile.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <random>

namespace
{
using sim::JsonValue;

bool areEqual(const JsonValue& left, const JsonValue& right)
{
    const bool haveEqualContents = left.kind == right.kind && left.boolean == right.boolean &&
                                   left.text == right.text && left.keys == right.keys && left.line == right.line;
    return haveEqualContents && std::equal(left.elements.begin(), left.elements.end(), right.elements.begin(),
                                           right.elements.end(), areEqual);
}

/// Whether the fast reader understands @p text, and as parseAnyJson() does.
testing::AssertionResult isReadAlike(const std::string& text)
{
    const std::optional<JsonValue> plain = sim::readPlainJson(text);
    if (!plain)
        return testing::AssertionFailure() << "not understood: " << text;
    if (!areEqual(sim::parseAnyJson(text, "test.json"), *plain))
        return testing::AssertionFailure() << "another tree: " << text;
    return testing::AssertionSuccess();
}

TEST(PlainJson, ReadsWhatMachineFilesContainAsTheOtherReaderDoes)
{
    EXPECT_TRUE(isReadAlike("[]"));
    EXPECT_TRUE(isReadAlike(" {\r\n\t} \n"));
    EXPECT_TRUE(isReadAlike("[null, true, false, \"\", [], {}]"));
    EXPECT_TRUE(isReadAlike("{\"a\": 1,\n\"b\":\n[2,\n3]\n,\"c\": {\"a\": \"b\"}}"));
    EXPECT_TRUE(isReadAlike("[0, 7, -1, 123456789012345678, 0.5, -0.0, -20.25, 1.10]"));
    EXPECT_TRUE(isReadAlike(R"(["\"\\\/\b\f\n\r\t", "\\\\?\\hdaudio#func_01", "\\"])"));
    EXPECT_TRUE(isReadAlike("[\"K\xC3\xB6pfe\", \"\xE2\x82\xAC\", \"\xF0\x9F\x8E\xA7\", \"\x7F\"]"));
    EXPECT_TRUE(isReadAlike("\"only a string\""));
    EXPECT_TRUE(isReadAlike("42"));
}

TEST(PlainJson, ReadsAllShippedMachinesAsTheOtherReaderDoes)
{
    for (const std::string& name : sim::machineNames())
    {
        std::ifstream file(sim::machineFile(name), std::ios::binary);
        const std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());

        EXPECT_TRUE(isReadAlike(text)) << name;
    }
}

TEST(PlainJson, LeavesToTheOtherReaderWhatIsNotJson)
{
    for (const char* const text : {"",
                                   " ",
                                   "{",
                                   "[",
                                   "[1",
                                   "[1,",
                                   "[1,]",
                                   "[,]",
                                   "[1 2]",
                                   "[1}",
                                   "{]",
                                   "{\"a\"}",
                                   "{\"a\":}",
                                   "{\"a\" 1}",
                                   "{\"a\": 1,}",
                                   "{a: 1}",
                                   "{1: 1}",
                                   "tru",
                                   "truely",
                                   "nul",
                                   "[nulll]",
                                   "\"",
                                   "\"a",
                                   "\"\\",
                                   "\"\\\"",
                                   "\"\\x\"",
                                   "\"\n\"",
                                   "\"\t\"",
                                   "[] []",
                                   "[]x",
                                   "+1",
                                   "-",
                                   "- 1",
                                   "01",
                                   "00.5",
                                   ".5",
                                   "1.",
                                   "1.x",
                                   "0x10",
                                   "NaN",
                                   "\"\xC3\"",
                                   "\"\xC3(\"",
                                   "\"\xED\xA0\x80\"",
                                   "\"\xC0\x80\"",
                                   "\"\xF4\x90\x80\x80\"",
                                   "/**/ 1",
                                   "1 // one"})
        EXPECT_FALSE(sim::readPlainJson(text).has_value()) << text;
}

TEST(PlainJson, LeavesToTheOtherReaderWhatIsRareOrRefused)
{
    for (const char* const text : {R"("\u0041")", R"("\u0000")", "1e3", "[1E3]", "-0", "1234567890123456789",
                                   "0.123456789012345678", R"({"a": 1, "b": 2, "a": 3})", "\xEF\xBB\xBF[]"})
        EXPECT_FALSE(sim::readPlainJson(text).has_value()) << text;
    EXPECT_FALSE(sim::readPlainJson(std::string("\"a\0b\"", 5)).has_value());
    EXPECT_FALSE(sim::readPlainJson(std::string("[]\0", 3)).has_value());
}

TEST(PlainJson, ReadsAsManyLevelsAsTheOtherReader)
{
    const auto nested = [](std::size_t depth) { return std::string(depth, '[') + std::string(depth, ']'); };

    EXPECT_TRUE(isReadAlike(nested(sim::deepestNesting)));
    EXPECT_FALSE(sim::readPlainJson(nested(sim::deepestNesting + 1)).has_value());
}

TEST(PlainJson, UnderstandsNoDocumentOtherwiseThanTheOtherReader)
{
    const std::string pieces[] = {"{",    "}",    "[",    "]",    ",",    ":",    "\"",   "\\",      "-",
                                  "0",    "1",    ".",    "e",    "+",    " ",    "\n",   "/",       "u0041",
                                  "null", "true", "\x01", "\x7F", "\xC3", "\xA9", "\xED", "\"a\": 1"};
    std::mt19937 random(20); // the same documents in each run
    const auto below = [&](std::size_t limit) { return random() % limit; };
    int understood = 0;
    for (int round = 0; round < 20000; ++round)
    {
        std::string text = R"({"a": [0, -1.5, "b\\c\n"], "d": {"e": null, "f": [true, false, []]}})";
        for (std::size_t change = below(3); change < 3; ++change)
            text.replace(below(text.size()), below(3), pieces[below(std::size(pieces))]);

        const std::optional<JsonValue> plain = sim::readPlainJson(text);
        understood += plain ? 1 : 0;
        if (plain)
        {
            ASSERT_TRUE(isReadAlike(text));
        }
    }

    EXPECT_GT(understood, 100);
}

TEST(ParseJson, ReadsWhatTheFastReaderDoesNotUnderstand)
{
    const JsonValue value = sim::parseJson(R"({"name": "\u0041", "cost": 1e3})", "test.json");

    EXPECT_EQ("A", value.member("name")->text);
    EXPECT_EQ("1e3", value.member("cost")->text);
}

TEST(ParseJson, FindsAKeyTwiceAmongMany)
{
    std::string text = "{";
    for (int key = 0; key < 40; ++key)
        text += "\"key" + std::to_string(key) + "\": 0,\n";

    try
    {
        sim::parseJson(text + "\"key39\": 0}", "test.json");
        ADD_FAILURE() << "the key is taken";
    }
    catch (const sim::MachineFileError& error)
    {
        EXPECT_STREQ("test.json:41: expected each key once, found duplicate \"key39\"", error.what());
    }
}

TEST(JsonPointer, LeadsToAnyPartOfADocument)
{
    const JsonValue document = sim::parseJson(R"({"a": [0, {"b/c": 1}], "d~": {"e": [2]}})", "test.json");

    EXPECT_EQ("", document.pointerTo(document));
    EXPECT_EQ("/a", document.pointerTo(document.elements[0]));
    EXPECT_EQ("/a/1/b~1c", document.pointerTo(document.elements[0].elements[1].elements[0]));
    EXPECT_EQ("/d~0/e/0", document.pointerTo(document.elements[1].elements[0].elements[0]));
}
}
