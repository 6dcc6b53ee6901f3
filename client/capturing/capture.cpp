#include "sonavit/capture.h"

#include "client/anonymity/anonymity.h"
#include "client/capturing/faults.h"
#include "client/capturing/survey.h"
#include "simulator/machine/file/machinefile.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace sonavit
{
inline namespace v1
{
namespace
{
bool isId(const std::string& text)
{
    return text.find_first_of("\\{") != std::string::npos;
}

/// The ids in reports of failures, and the notes.
std::vector<std::string*> reportsOf(capturing::Survey& survey)
{
    std::vector<std::string*> texts;
    const auto addId = [&](std::string& text)
    {
        if (isId(text))
            texts.push_back(&text);
    };
    for (std::vector<capturing::FailedCall>* const failures : {&survey.failures, &survey.recorded})
    {
        for (capturing::FailedCall& failure : *failures)
        {
            addId(failure.object);
            for (std::string& argument : failure.arguments)
                addId(argument);
        }
    }
    for (std::string& note : survey.notes)
        texts.push_back(&note);
    return texts;
}

/// Why the text is no machine file; no value if it is one.
std::optional<Problem> problemOf(const std::string& text)
{
    try
    {
        sim::readMachine(text, "the captured file");
        return std::nullopt;
    }
    catch (const sim::MachineFileError& error)
    {
        return Problem(Problem::Kind::unreadable, "capture", "", error.what());
    }
}

std::vector<Problem> problemsOf(const capturing::Survey& survey)
{
    std::vector<Problem> problems;
    for (const std::vector<capturing::FailedCall>* const failures : {&survey.failures, &survey.recorded})
    {
        for (const capturing::FailedCall& failure : *failures)
            problems.push_back(failure.problem());
    }
    return problems;
}
}

Result<Capture> capture(System& system, const CaptureOptions& options)
{
    Result<capturing::Survey> survey = capturing::survey(system, "capture");
    if (!survey)
        return survey.problem();
    sim::Machine& machine = survey->machine;
    machine.name = options.name;
    machine.description = "Captured by sonavit.";
    machine.faults = capturing::faultRules(survey->failures);
    if (options.isAnonymous)
        anonymity::makeAnonymous(machine, options.names, reportsOf(*survey));
    Capture result;
    result.text = sim::writeMachine(machine);
    if (std::optional<Problem> problem = problemOf(result.text))
        return std::move(*problem);
    result.problems = problemsOf(*survey);
    result.notes = std::move(survey->notes);
    return result;
}
}
}
