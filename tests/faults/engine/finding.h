/// What a run has shown, and which findings are expected.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace faults
{
/// What is wrong after a run.
enum class Kind
{
    crash,      ///< the process ended, or a sanitizer stopped it
    hang,       ///< the run did not end in time
    references, ///< references, task memory, registrations or memory that nothing explains are left
    exception,  ///< an exception of a kind that is not documented for the failure, or none where there must be one
    answer,     ///< a result that differs from what is documented for the failure
    log,        ///< a log record is missing, or one is there that must not be
    reuse,      ///< the objects do not work any more when the fault is gone
    unmet,      ///< the operation did not make the call that should fail
};

/// "crash", "hang" and so on.
const char* nameOf(Kind kind);

/// The kind of that name. @exception std::invalid_argument if there is none
Kind kindNamed(const std::string& name);

/// One finding, as text for people.
struct Finding
{
    Kind kind;
    std::string text;
};

/// The result of one run.
struct Result
{
    std::size_t failures = 0; ///< calls, or allocations, that did fail in it
    std::vector<Finding> findings;
};

/// Where a finding was made.
struct Place
{
    std::string part;
    std::string operation;
    std::string machine;
    std::string run;    ///< "12:null": Runs::name()
    std::string detail; ///< "IPart::GetName() on …": Runs::detail()
};

/// A finding that is outside the contract. Each '*' in the texts stands for any text.
struct Excuse
{
    std::string operation;
    std::string machine;
    std::string run; ///< "*:null"
    std::string detail;
    Kind kind;
    std::string reason;     ///< why, for people
    std::string text = "*"; ///< of the finding: "signal 6*"
};

/// Whether @p text is like @p pattern, in which each '*' stands for any text.
bool isLike(const std::string& text, const std::string& pattern);

/// Whether the excuse is about runs at that place.
bool isAbout(const Excuse& excuse, const Place& place);

/// Whether the excuse is about that finding.
bool excuses(const Excuse& excuse, const Place& place, const Finding& finding);
}
