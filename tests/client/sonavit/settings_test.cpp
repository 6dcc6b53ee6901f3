#include "sonavit/settings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>

namespace
{
using namespace sonavit;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

// The shortest references: a flow and the checksum.
constexpr const char* anyOutput = "snv1:AQEA1b7MMQ";
constexpr const char* anyInput = "snv1:AQEBQr3MMA";

Settings studio()
{
    Settings::EndpointSetting speakers;
    speakers.name = "Speakers (Analog Audio)";
    speakers.flow = Flow::output;
    speakers.reference = anyOutput;
    speakers.master = Decibels(-18.5);
    speakers.channels = {Decibels(-18.5), std::nullopt};
    speakers.isMuted = false;
    Settings::EndpointSetting microphone;
    microphone.name = "Mikrofon \"\xC3\xBC\"\n\\";
    microphone.flow = Flow::input;
    microphone.reference = anyInput;
    microphone.controls = {{"{2}.id/0001", "Mic Boost", {Decibels(0), Decibels(30)}, std::nullopt},
                           {"{2}.id/0002", "Capture", {}, true}};
    microphone.selectors = {{"{2}.id/0003", "Source", 2, "Line In"}, {"{2}.id/0004", "Other", std::nullopt, ""}};
    Settings settings;
    settings.endpoints = {speakers, microphone};
    return settings;
}

constexpr const char* studioText = R"json({
  "settingsVersion": 1,
  "comment": "Levels are in dB, such as -20.5. Change them, muted and inputName; what you remove is left as it is. Keep reference and id.",
  "unit": "dB",
  "endpoints": [
    {
      "name": "Speakers (Analog Audio)",
      "flow": "render",
      "volume": {"muted": false, "master": -18.5, "channels": [-18.5, null]},
      "reference": "snv1:AQEA1b7MMQ"
    },
    {
      "name": "Mikrofon \"ü\"\n\\",
      "flow": "capture",
      "controls": [
        {"name": "Mic Boost", "channels": [0, 30], "id": "{2}.id/0001"},
        {"name": "Capture", "muted": true, "id": "{2}.id/0002"}
      ],
      "selectors": [
        {"name": "Source", "inputName": "Line In", "input": 2, "id": "{2}.id/0003"},
        {"name": "Other", "id": "{2}.id/0004"}
      ],
      "reference": "snv1:AQEBQr3MMA"
    }
  ]
}
)json";

std::string replaced(std::string text, const std::string& what, const std::string& by)
{
    const std::size_t at = text.find(what);
    EXPECT_NE(at, std::string::npos) << what;
    return text.replace(at, what.size(), by);
}

/// The text of the studio with @p by in the place of @p what.
std::string edited(const std::string& what, const std::string& by)
{
    return replaced(studioText, what, by);
}

std::string refusalOf(const std::string& text)
{
    const Result<Settings> settings = Settings::parse(text);
    if (settings)
        return "accepted";
    EXPECT_EQ(settings.problem().kind(), Problem::Kind::unreadable);
    EXPECT_EQ(settings.problem().operation(), "Settings::parse");
    EXPECT_EQ(settings.problem().object(), "");
    return settings.problem().sentence();
}

TEST(SettingsText, HasOneSettingALine)
{
    EXPECT_EQ(studio().text(), studioText);
    EXPECT_THAT(Settings().text(), EndsWith("\n  \"unit\": \"dB\",\n  \"endpoints\": []\n}\n"));
}

TEST(SettingsText, IsReadAgainAsTheSameValues)
{
    EXPECT_EQ(*Settings::parse(studio().text()), studio());
    EXPECT_EQ(*Settings::parse(Settings().text()), Settings());
    Settings empty;
    empty.endpoints = {Settings::EndpointSetting()};
    empty.endpoints[0].reference = anyOutput;
    empty.endpoints[0].controls = {Settings::ControlSetting()};
    empty.endpoints[0].selectors = {Settings::SelectorSetting()};
    EXPECT_EQ(*Settings::parse(empty.text()), empty);
}

TEST(SettingsText, KeepsEveryLevelExactly)
{
    std::mt19937_64 random(9);
    Settings settings = studio();
    std::vector<std::optional<Decibels>>& channels = settings.endpoints[0].channels;
    channels = {Decibels(std::numeric_limits<double>::max()), Decibels(std::numeric_limits<double>::denorm_min()),
                Decibels(-96.0 + 1.0 / 3), Decibels(double(-18.7382F))};
    while (channels.size() < 10000)
    {
        const std::uint64_t bits = random();
        double value = 0;
        std::memcpy(&value, &bits, sizeof(value));
        if (std::isfinite(value))
            channels.emplace_back(Decibels(value));
    }

    EXPECT_EQ(*Settings::parse(settings.text()), settings);
}

TEST(SettingsText, LeavesOutLevelsThatAreNotFinite)
{
    Settings settings = studio();
    settings.endpoints[0].master = Decibels(-std::numeric_limits<double>::infinity());
    settings.endpoints[0].channels[0] = Decibels(std::numeric_limits<double>::infinity());
    const Result<Settings> read = Settings::parse(settings.text());

    EXPECT_FALSE(read->endpoints[0].master.has_value());
    EXPECT_EQ(read->endpoints[0].channels, (std::vector<std::optional<Decibels>>{std::nullopt, std::nullopt}));
}

TEST(SettingsText, ReplacesIllFormedUtf8)
{
    Settings settings = studio();
    settings.endpoints[0].name = "a\xFFz";

    EXPECT_EQ(Settings::parse(settings.text())->endpoints[0].name, "a\xEF\xBF\xBDz");
}

TEST(SettingsParse, IgnoresMembersThatItDoesNotKnow)
{
    EXPECT_EQ(*Settings::parse(edited("\"unit\"", "\"later\": [{\"a\": [1, null]}, true],\n \"unit\"")), studio());
    EXPECT_EQ(*Settings::parse(edited("\"muted\": false", "\"muted\": false, \"pan\": 0.5")), studio());
    EXPECT_EQ(*Settings::parse(edited("\"id\": \"{2}.id/0004\"", "\"color\": \"red\", \"id\": \"{2}.id/0004\"")),
              studio());
}

TEST(SettingsParse, TakesAMemberThatIsNullForNone)
{
    EXPECT_TRUE(Settings::parse(edited("[0, 30]", "null"))->endpoints[1].controls[0].channels.empty());
    EXPECT_FALSE(Settings::parse(edited("\"muted\": false", "\"muted\": null"))->endpoints[0].isMuted.has_value());
    EXPECT_EQ(*Settings::parse(edited("\"unit\": \"dB\"", "\"unit\": null")), studio());
}

TEST(SettingsParse, ReadsAFileOfWindows)
{
    std::string text = studioText;
    for (std::size_t at = text.find('\n'); at != std::string::npos; at = text.find('\n', at + 2))
        text.replace(at, 1, "\r\n");

    EXPECT_EQ(*Settings::parse("\xEF\xBB\xBF" + text), studio());
}

TEST(SettingsParse, NamesTheLineOfWhatIsNoJson)
{
    EXPECT_THAT(refusalOf(""), StartsWith("line 1: "));
    EXPECT_THAT(refusalOf("{\n}\nx"), StartsWith("line 3: "));
    EXPECT_THAT(refusalOf(edited("\"dB\",", "\"dB\"")), StartsWith("line 5: "));
    EXPECT_THAT(refusalOf(edited("-18.5,", "-18,5,,")), StartsWith("line 9: "));
    EXPECT_THAT(refusalOf(edited("Analog", "A\xFF")), StartsWith("line 7: "));
    EXPECT_EQ(refusalOf(edited("\"muted\": false", "\"muted\": false, \"muted\": true")),
              "line 9: \"muted\" is there twice");
}

TEST(SettingsParse, RefusesNumbersThatAreNone)
{
    for (const char* const number : {"NaN", "Infinity", "-inf", "0x10", "1e999", "-1e999", "+1", ".5", "1.", "--1"})
        EXPECT_THAT(refusalOf(edited("-18.5,", number + std::string(","))), StartsWith("line 9: ")) << number;
    EXPECT_EQ(refusalOf(edited("-18.5,", "\"-18.5\",")), "line 9: \"master\" is a string, expected a number");
    EXPECT_EQ(refusalOf(edited("[0, 30]", "[0, \"30\"]")),
              "line 16: an item of \"channels\" is a string, expected a number");
    for (const char* const input : {"-1", "2.5", "4294967296", "1e300", "-1e-300"})
        EXPECT_THAT(refusalOf(edited("\"input\": 2", "\"input\": " + std::string(input))),
                    HasSubstr("expected a whole number from 0 to 4294967295"))
            << input;
    EXPECT_EQ(refusalOf(edited("\"input\": 2", "\"input\": 4294967295")), "accepted");
}

TEST(SettingsParse, NamesTheLineOfAMemberOfAnotherKind)
{
    EXPECT_EQ(refusalOf("[]"), "line 1: the settings are a list, expected an object");
    EXPECT_EQ(refusalOf("\n\n\"text\""), "line 3: the settings are a string, expected an object");
    EXPECT_EQ(refusalOf(edited("\"muted\": true", "\"muted\": \"yes\"")),
              "line 17: \"muted\" is a string, expected true or false");
    EXPECT_EQ(refusalOf(edited("\"Source\"", "7")), "line 20: \"name\" is a number, expected a string");
    EXPECT_EQ(refusalOf(edited("\"snv1:AQEBQr3MMA\"", "{}")), "line 23: \"reference\" is an object, expected a string");
    EXPECT_EQ(refusalOf(edited("[0, 30]", "30")), "line 16: \"channels\" is a number, expected a list");
    EXPECT_EQ(refusalOf(edited("[\n    {", "[true,\n    {")),
              "line 5: an item of \"endpoints\" is true or false, expected an object");
}

TEST(SettingsParse, RefusesAFileThatHoldsNoSettings)
{
    EXPECT_EQ(refusalOf("{}"), "line 1: \"settingsVersion\" is missing: this is no file of settings");
    EXPECT_EQ(refusalOf("{\"settingsVersion\": 1}"), "line 1: \"endpoints\" is missing");
    EXPECT_EQ(refusalOf(edited("Version\": 1", "Version\": 2")), "line 2: \"settingsVersion\" is 2, expected 1");
    EXPECT_EQ(refusalOf(edited("\"dB\"", "\"%\"")), "line 4: \"unit\" is \"%\", expected \"dB\"");
}

TEST(SettingsParse, RefusesASettingThatCannotBeFound)
{
    EXPECT_EQ(refusalOf(edited("\"reference\": \"snv1:AQEBQr3MMA\"", "\"ref\": \"snv1:AQEBQr3MMA\"")),
              "line 12: an endpoint without \"reference\"");
    EXPECT_EQ(refusalOf(edited("\"name\": \"Capture\", \"muted\": true, \"id\"", "\"title\": \"Capture\", \"part\"")),
              "line 17: a control without \"name\" and \"id\"");
    EXPECT_EQ(refusalOf(edited("\"name\": \"Other\", \"id\"", "\"part\"")),
              "line 21: a selector without \"name\" and \"id\"");
    EXPECT_EQ(refusalOf(edited("\"name\": \"Capture\", ", "")), "accepted");
}

/// References are long, and half of one is soon lost; nothing is restored before the whole file is read.
TEST(SettingsParse, RefusesAReferenceThatIsNone)
{
    EXPECT_EQ(refusalOf(edited(anyInput, "snv1:AQEBQr3MM")),
              "line 23: \"reference\" cannot be read: the reference is incomplete or was changed");
    EXPECT_EQ(refusalOf(edited(anyOutput, "")),
              "line 10: \"reference\" cannot be read: a reference begins with \"snv1:\"");
    EXPECT_EQ(refusalOf(edited(anyOutput, std::string(" ") + anyOutput + " ")), "accepted");
}

TEST(SettingsParse, RefusesAMemberWhoseNameIsMisspelt)
{
    EXPECT_EQ(refusalOf(edited("\"muted\": true", "\"mutted\": true")),
              "line 17: \"mutted\" is unknown, expected \"muted\"");
    EXPECT_EQ(refusalOf(edited("\"muted\": false", "\"Muted\": false")),
              "line 9: \"Muted\" is unknown, expected \"muted\"");
    EXPECT_EQ(refusalOf(edited("\"channels\": [0", "\"chanels\": [0")),
              "line 16: \"chanels\" is unknown, expected \"channels\"");
    EXPECT_EQ(refusalOf(edited("\"inputName\"", "\"inputname\"")),
              "line 20: \"inputname\" is unknown, expected \"inputName\"");
    EXPECT_EQ(refusalOf(edited("\"master\"", "\"mastre\"")), "line 9: \"mastre\" is unknown, expected \"master\"");
    EXPECT_EQ(refusalOf(edited("\"controls\"", "\"control\"")),
              "line 15: \"control\" is unknown, expected \"controls\"");
    EXPECT_EQ(refusalOf(edited("\"volume\"", "\"volum\"")), "line 9: \"volum\" is unknown, expected \"volume\"");
    EXPECT_EQ(refusalOf(edited("\"endpoints\"", "\"endpoint\": [], \"endpoints\"")),
              "line 5: \"endpoint\" is unknown, expected \"endpoints\"");
    EXPECT_EQ(refusalOf(edited("\"name\": \"Source\"", "\"names\": \"Source\"")),
              "line 20: \"names\" is unknown, expected \"name\"");
}

TEST(SettingsParse, ReadsTheFlow)
{
    EXPECT_EQ(Settings::parse(studioText)->endpoints.at(1).flow, Flow::input);
    EXPECT_EQ(Settings::parse(edited("      \"flow\": \"capture\",\n", ""))->endpoints.at(1).flow, std::nullopt);
    EXPECT_EQ(refusalOf(edited("\"capture\",\n", "\"input\",\n")),
              "line 14: \"flow\" is \"input\", expected \"render\" or \"capture\"");
}

TEST(SettingsParse, RefusesDeepNesting)
{
    const auto nested = [](std::size_t depth)
    { return edited("\"unit\"", "\"later\": " + std::string(depth, '[') + std::string(depth, ']') + ", \"unit\""); };

    EXPECT_EQ(refusalOf(nested(63)), "accepted"); // and the object around it
    EXPECT_EQ(refusalOf(nested(64)), "line 4: lists and objects are nested deeper than 64 levels");
    EXPECT_THAT(refusalOf(std::string(16000000, '[')), HasSubstr("deeper than 64 levels"));
    EXPECT_THAT(refusalOf("{\"a\":" + std::string(1000000, '{')), StartsWith("line 1: "));
}

TEST(SettingsParse, RefusesHugeTexts)
{
    const auto withZeros = [](std::size_t count)
    {
        std::string zeros = "0";
        for (std::size_t i = 1; i < count; ++i)
            zeros += ",0";
        return edited("[0, 30]", "[" + zeros + "]");
    };

    EXPECT_EQ(refusalOf(withZeros(199000)), "accepted");
    EXPECT_EQ(refusalOf(withZeros(200000)), "line 16: more than 200000 values");
    EXPECT_EQ(refusalOf(studioText + std::string(16U * 1024 * 1024, ' ')),
              "line 1: the text is larger than 16777216 bytes");
    EXPECT_EQ(refusalOf(studioText + std::string(16U * 1024 * 1024 - std::strlen(studioText), ' ')), "accepted");
}

TEST(SettingsParse, ReadsOrRefusesEveryTextThatIsCutOrChanged)
{
    const std::string text = studioText;
    const std::size_t end = text.rfind('}');
    std::mt19937 random(10);
    unsigned accepted = 0;

    for (std::size_t size = 0; size <= end; ++size)
        EXPECT_THAT(refusalOf(text.substr(0, size)), StartsWith("line ")) << size;
    for (int round = 0; round < 4000; ++round)
    {
        std::string changed = text;
        for (unsigned count = 1 + random() % 3; count > 0; --count)
            changed[random() % changed.size()] = "{}[]\",:0-en\\\n \xC3"[random() % 15];
        const Result<Settings> settings = Settings::parse(changed);

        if (!settings)
            continue;
        ++accepted;
        ASSERT_EQ(*Settings::parse(settings->text()), *settings);
    }

    EXPECT_GT(accepted, 200u); // else only refusals were tested
    EXPECT_LT(accepted, 3800u);
}

TEST(RestoreReport, CountsWhatBecameOfTheSettings)
{
    using Outcome = RestoredSetting::Outcome;
    RestoreReport report;
    const auto add = [&report](Outcome outcome) { report.settings.push_back({"", outcome, std::nullopt}); };

    EXPECT_EQ(report.sentence(), "0 restored, 0 unchanged");
    add(Outcome::restored);
    add(Outcome::unchanged);
    add(Outcome::unchanged);
    EXPECT_TRUE(report.isComplete());
    EXPECT_EQ(report.sentence(), "1 restored, 2 unchanged");
    add(Outcome::notFound);
    EXPECT_FALSE(report.isComplete());
    EXPECT_EQ(report.sentence(), "1 restored, 2 unchanged, 1 not found");
    report.settings.back().outcome = Outcome::failed;
    EXPECT_FALSE(report.isComplete());
    EXPECT_EQ(report.sentence(), "1 restored, 2 unchanged, 1 failed");
}
}
