/// A text is a file of settings that is written and read again as the same values, or it is refused by one sentence
/// that names the line.
#include "sonavit/settings.h"
#include "tests/fuzz/support/check.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace
{
using fuzz::check;
using sonavit::Settings;

void checkSettings(const Settings& settings)
{
    const std::string written = settings.text();
    const sonavit::Result<Settings> again = Settings::parse(written);
    check(static_cast<bool>(again), "what is written can be read");
    check(*again == settings, "settings that are written are read as the same values");
    check(again->text() == written, "and are written as the same text again");
}

void checkReferences(const Settings& settings)
{
    for (const Settings::EndpointSetting& endpoint : settings.endpoints)
        check(static_cast<bool>(sonavit::Reference::parse(endpoint.reference)), "each reference can be read");
}

/// "line 12: ..."
void checkRefusal(const sonavit::Problem& refusal, std::string_view text)
{
    const std::string start = "line ";
    const std::string& sentence = refusal.sentence();
    check(refusal.kind() == sonavit::Problem::Kind::unreadable, "a refusal says that the text cannot be read");
    check(fuzz::isOneLine(sentence) && sentence.compare(0, start.size(), start) == 0, "a refusal is one sentence");
    std::size_t digits = 0;
    const unsigned long line = std::stoul(sentence.substr(start.size()), &digits);
    check(line >= 1 && line <= fuzz::linesIn(text), "a refusal names a line of the text");
    check(sentence.compare(start.size() + digits, 2, ": ") == 0, "a refusal says why");
}
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const sonavit::Result<Settings> settings = Settings::parse(text);
    if (settings)
    {
        checkSettings(*settings);
        checkReferences(*settings);
    }
    else
        checkRefusal(settings.problem(), text);
    return 0;
}
