#include "client/capturing/faults.h"

#include "simulator/machine/propertykeys.h"

#include <optional>
#include <utility>

namespace sonavit::capturing
{
namespace
{
/// A property key has its name, where machine files have one.
std::string argumentOf(const std::string& argument)
{
    const std::optional<PROPERTYKEY> key = sim::keyFromText(argument);
    return key ? sim::keyText(*key) : argument;
}
}

std::vector<sim::FaultRule> faultRules(const std::vector<FailedCall>& failures)
{
    std::vector<sim::FaultRule> rules;
    for (const FailedCall& failure : failures)
    {
        sim::FaultRule rule;
        rule.operation = failure.operation;
        if (!failure.object.empty())
            rule.object = failure.object;
        for (const std::string& argument : failure.arguments)
            rule.arguments.push_back(argumentOf(argument));
        if (failure.outcome == FailedCall::Outcome::nullSuccess)
            rule.outcome = sim::FaultRule::Outcome::nullSuccess;
        else
            rule.result = failure.code;
        rules.push_back(std::move(rule));
    }
    return rules;
}
}
