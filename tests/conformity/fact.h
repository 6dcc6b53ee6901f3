/// @file
/// Facts of Core Audio, each with what is expected of a platform and the check that finds out.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace conformity
{
class System;

enum class Verdict
{
    agrees,
    differs,
    notTried, ///< the system has nothing to try it on, or a change is not allowed
};

struct Finding
{
    Verdict verdict = Verdict::notTried;
    std::string found;
};

/// A sentence about the platform that one check decides.
struct Fact
{
    std::string text;
    std::string expected;
    std::string source; ///< who says so: documentation, tests that were run on Windows, reports
    std::function<Finding(System&)> check;
};

using Facts = std::vector<Fact>;

/// The facts by subject, in the order in which they are checked.
Facts identityFacts();
Facts enumerationFacts();
Facts notificationFacts();
Facts propertyFacts();
Facts formatFacts();
Facts topologyFacts();
Facts partFacts();
Facts volumeFacts();
Facts streamFacts();

/// All of them. Those of identity come first: one of them counts references before anybody else holds one.
Facts allFacts();

/// The finding of a check that makes one trial.
Finding compared(const std::string& found, const std::string& expected);

/// Collects what one check sees and turns it into a finding.
class Observation
{
public:
    /// One trial: @p isRight, or @p seen was found at @p place. The first deviation is the finding.
    void see(bool isRight, const std::string& seen, const std::string& place = {});

    /// @p absence says why there was no trial.
    Finding finding(const std::string& absence) const;

private:
    unsigned m_trials = 0;
    unsigned m_deviations = 0;
    std::string m_first;
    std::string m_usual;
};
}
