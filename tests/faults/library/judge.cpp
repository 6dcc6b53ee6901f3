#include "tests/faults/library/judge.h"

#include "tests/faults/library/kept.h"
#include "tests/faults/library/rows.h"
#include "tests/faults/library/trial.h"
#include "tests/support/questions.h"

#include <algorithm>
#include <sstream>
#include <utility>

namespace faults::library
{
namespace
{
bool has(const Record& run, Mode mode)
{
    return std::any_of(run.faults.begin(), run.faults.end(), [=](const Fault& fault) { return fault.mode == mode; });
}

bool isLikeAny(const std::string& text, std::initializer_list<const char*> patterns)
{
    return std::any_of(patterns.begin(), patterns.end(), [&](const char* pattern) { return isLike(text, pattern); });
}

bool isWalk(const Fault& fault)
{
    return isLike(fault.call.entry.operation, "IPart::EnumParts*");
}

/// The exceptions that are documented for failing calls.
bool mayThrow(const std::string& operation, const Record& run)
{
    if (has(run, Mode::raise) && isLike(run.thrown, "InjectedException: *"))
        return true;
    const bool hasWalk = std::any_of(run.faults.begin(), run.faults.end(),
                                     [](const Fault& fault) { return fault.mode == Mode::null && isWalk(fault); });
    if (hasWalk && isLike(run.thrown, "qor::AssertionFailure: *partlist != NULL*"))
        return true;
    if (isLike(operation, "SoundCard::volumeController") && isLike(run.thrown, "qor::IndexOutOfBounds: *"))
        return true;
    if (isLikeAny(operation, {"VolumeController<Regular*::masterVolumeLevelPercent"}) &&
        isLike(run.thrown, "qor::AssertionFailure: *numChannel() > 0*"))
        return true;
    return isLike(operation, "AudioDevice::setFormat*") &&
           isLike(run.thrown, "qor::AssertionFailure: *m_propertyStore.get() != NULL*");
}

std::vector<Finding> judgeExceptions(const std::string& operation, const Record& clean, const Record& run)
{
    if (run.thrown != clean.thrown && !run.thrown.empty() && !mayThrow(operation, run))
        return {{Kind::exception, run.thrown}};
    const bool mustThrow = run.faults.size() == 1 && run.faults.front().mode == Mode::raise && run.fired.front();
    if (mustThrow && !isLike(run.thrown, "InjectedException: *"))
        return {{Kind::exception, "the exception of Release does not come out: " + run.thrown}};
    return {};
}

/// Whether the call releases an interface that was only asked for, which no handle holds.
bool isWithoutHandle(const Call& call, const sim::JournalEntries& calls)
{
    std::size_t place = 0;
    std::string before; // the latest call of the object
    for (const sim::JournalEntry& entry : calls)
    {
        if (entry.operation == call.entry.operation && ++place == call.number)
            break;
        if (entry.object == call.entry.object)
            before = entry.call();
    }
    return call.entry.operation == "IPartsList::Release" || // the list of a signal path
           isLikeAny(before, {"IMMDevice::QueryInterface(IMMEndpoint*", "IMMEndpoint::GetDataFlow(*"});
}

/// The handle's guard logs what comes out of Release.
std::vector<Finding> judgeGuard(const std::string& operation, const Record& run)
{
    if (operation == "AudioDevice::isDefaultEndpoint") // holds its objects without handles
        return {};
    const bool isGuarded = run.faults.size() == 1 && run.faults.front().mode == Mode::raise &&
                           !isWithoutHandle(run.faults.front().call, run.calls);
    const bool hasRecord =
        std::any_of(run.log.begin(), run.log.end(),
                    [](const auto& record) { return record.channel == "comptr" && record.priority == 4; });
    if (isGuarded && !hasRecord)
        return {{Kind::log, "no record of the exception that came out of Release"}};
    return {};
}

std::vector<Finding> judgeReferences(const Record& run, const sim::Machine& machine)
{
    const sim::Census expected = keptAfter(run, machine);
    const sim::Census further = comparable(run.left) - expected;
    if (further.empty())
        return {};
    std::string text = "besides what is kept on purpose: " + further.describe();
    for (const auto& [name, count] : further.byInterface)
        text.append("\n      ").append(std::to_string(count)).append(" on ").append(name);
    return {{Kind::references, text}};
}

/// @p clean as the effects of the fault change it; "*" where that is not documented.
std::vector<std::string> withEffects(std::vector<std::string> clean, const std::vector<Effect>& effects,
                                     const Fault& fault)
{
    for (const Effect& effect : effects)
    {
        if (!isLike(fault.call.entry.call(), effect.call) || !isLike(nameOf(fault.mode), effect.mode))
            continue;
        for (std::string& line : clean)
        {
            if (line.compare(0, effect.answer.size(), effect.answer) == 0)
                line = effect.answer + effect.value;
        }
    }
    return clean;
}

std::vector<Finding> judgeEffects(const std::vector<Effect>& effects, const Record& clean, const Record& run)
{
    const Fault& fault = run.faults.front();
    if (run.faults.size() != 1 || fault.mode == Mode::raise || !run.thrown.empty() || FAILED(fault.call.entry.result))
        return {};
    const std::vector<std::string> expected = withEffects(clean.answers, effects, fault);
    std::string difference;
    for (std::size_t i = 0; i < std::max(expected.size(), run.answers.size()); ++i)
    {
        const std::string wanted = i < expected.size() ? expected[i] : "nothing";
        const std::string found = i < run.answers.size() ? run.answers[i] : "nothing";
        if (!isLike(found, wanted))
            difference.append("\n      ").append(found).append(" instead of ").append(wanted);
    }
    if (difference.empty())
        return {};
    return {{Kind::answer, "not what is documented:" + difference}};
}

std::vector<Finding> judgeAnswers(const Operation& operation, const sim::Machine& machine, const Record& clean,
                                  const Record& run)
{
    if (operation.effects)
        return judgeEffects(*operation.effects, clean, run);
    const bool isComparable = std::all_of(
        run.faults.begin(), run.faults.end(),
        [](const Fault& fault) { return fault.call.entry.operation.find("::QueryInterface") == std::string::npos; });
    if (operation.model == nullptr || has(run, Mode::raise) || !isComparable || !run.thrown.empty())
        return {};
    const std::vector<std::string> expected = performModel(operation, machine, run.faults);
    const std::string difference = support::firstDifference(expected, run.answers);
    if (difference.empty())
        return {};
    return {{Kind::answer, "not what the plain client answers: " + difference}};
}

void append(std::vector<Finding>& all, std::vector<Finding> more)
{
    std::move(more.begin(), more.end(), std::back_inserter(all));
}
}

std::vector<Finding> judge(const Operation& operation, const sim::Machine& machine, const Record& clean,
                           const Record& run)
{
    std::vector<Finding> all = judgeExceptions(operation.name, clean, run);
    append(all, judgeGuard(operation.name, run));
    append(all, judgeReferences(run, machine));
    append(all, judgeLog(operation.name, clean, run));
    append(all, judgeAnswers(operation, machine, clean, run));
    if (run.later != clean.later)
        all.push_back({Kind::reuse, support::firstDifference(clean.later, run.later)});
    return all;
}
}
