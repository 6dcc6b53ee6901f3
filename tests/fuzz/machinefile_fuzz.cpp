/// A text is a machine that is written and read again as the same machine, or it is refused by one sentence that names
/// the place. Both readers of JSON give the same tree.
#include "simulator/machine/file/json.h"
#include "simulator/machine/file/machinefile.h"
#include "simulator/machine/file/plainjson.h"
#include "tests/fuzz/support/check.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace
{
using fuzz::check;

constexpr const char* fileName = "fuzz.json";
/// Somewhat more than the 2,000 bytes or so that are promised.
constexpr std::size_t longestMessage = 2500;

bool equal(const sim::JsonValue& left, const sim::JsonValue& right)
{
    if (left.kind != right.kind || left.boolean != right.boolean || left.text != right.text ||
        left.keys != right.keys || left.line != right.line || left.elements.size() != right.elements.size())
        return false;
    for (std::size_t i = 0; i < left.elements.size(); ++i)
    {
        if (!equal(left.elements[i], right.elements[i]))
            return false;
    }
    return true;
}

void checkFastReader(const std::string& text)
{
    const std::optional<sim::JsonValue> plain = sim::readPlainJson(text);
    if (plain)
        check(equal(*plain, sim::parseAnyJson(text, fileName)), "the fast reader reads what the other one reads");
}

void checkMachine(const sim::Machine& machine)
{
    const std::string written = sim::writeMachine(machine);
    const sim::Machine again = sim::readMachine(written, fileName);
    check(again == machine, "a machine that is written is read as the same machine");
    check(sim::writeMachine(again) == written, "and is written as the same text again");
}

void checkRefusal(const sim::MachineFileError& refusal, const std::string& text)
{
    const std::string sentence = refusal.what();
    const std::string start = fileName + (":" + std::to_string(refusal.line()));
    check(refusal.line() >= 1 && refusal.line() <= fuzz::linesIn(text), "a refusal names a line of the text");
    check(sentence.compare(0, start.size(), start) == 0, "a refusal begins with file and line");
    check(fuzz::isOneLine(sentence) && sentence.size() <= longestMessage, "a refusal is one sentence");
    check(refusal.place().empty() || refusal.place().front() == '/', "a refusal names the place in the machine");
    check(!refusal.expected().empty() && !refusal.found().empty(), "a refusal says what was expected and found");
}
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text(reinterpret_cast<const char*>(data), size);
    try
    {
        checkFastReader(text);
        checkMachine(sim::readMachine(text, fileName));
    }
    catch (const sim::MachineFileError& refusal)
    {
        checkRefusal(refusal, text);
    }
    return 0;
}
