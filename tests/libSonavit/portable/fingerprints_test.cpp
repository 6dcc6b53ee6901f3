// What the library's operations do that others can see, byte for byte: the platform's calls, the log, the traced
// functions, all in their order, and the results. The library may become faster; it must not do anything else.
//
// A transcript that differs fails with its operation and its machine. To see the difference, write the transcripts of
// this build and of one that passes, each with
//
//     SONAVIT_TRANSCRIPTS=FOLDER library_test --gtest_filter='*Transcripts*'
//
// and compare the folders. FOLDER/fingerprints.txt contains the fingerprints of the build. To make them anew, after a
// change that is meant:
//
//     LC_ALL=C sort FOLDER/fingerprints.txt > tests/libSonavit/portable/fingerprints.txt
#include "tests/libSonavit/portable/supportmachines.h"
#include "tests/libSonavit/portable/supportoperations.h"
#include "tests/libSonavit/portable/supporttranscript.h"
#include "tests/support/pace.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <map>

using support::Fingerprint;
using support::Operation;

namespace
{
/// "cards on desktop" and its fingerprint, from the file.
const std::map<std::string, std::string>& knownFingerprints()
{
    static const std::map<std::string, std::string> known = []
    {
        std::map<std::string, std::string> result;
        std::ifstream file(SONAVIT_FINGERPRINTS);
        std::string operation, machine, print;
        while (file >> operation >> machine && std::getline(file >> std::ws, print))
            result[operation + " on " + machine] = print;
        return result;
    }();
    return known;
}

/// Keeps transcripts and fingerprints in the folder that the environment names, if it names one.
class TranscriptFolder
{
public:
    TranscriptFolder(const std::string& operation, const std::string& machine)
        : m_operation(operation),
          m_machine(machine)
    {
        if (const char* const folder = std::getenv("SONAVIT_TRANSCRIPTS"))
            m_folder = std::string(folder) + "/";
    }

    void keep(const std::string& text) const
    {
        if (!m_folder.empty())
            std::ofstream(m_folder + m_operation + "." + m_machine + ".txt", std::ios::app) << text;
    }

    void keep(const Fingerprint& fingerprint) const
    {
        if (!m_folder.empty())
            std::ofstream(m_folder + "fingerprints.txt", std::ios::app)
                << m_operation + " " + m_machine + " " + printed(fingerprint) + "\n";
    }

private:
    std::string m_operation;
    std::string m_machine;
    std::string m_folder;
};

void expectKnown(const std::string& operation, const std::string& machine, const Fingerprint& fingerprint)
{
    TranscriptFolder(operation, machine).keep(fingerprint);
    const auto known = knownFingerprints().find(operation + " on " + machine);
    const bool isKnown = known != knownFingerprints().end();
    EXPECT_EQ(isKnown ? known->second : "none", printed(fingerprint))
        << "the transcript of " << operation << " on the machine " << machine
        << " differs (hash and number of lines). See it with: SONAVIT_TRANSCRIPTS=FOLDER, as this test's source says";
}

std::string nameOf(const testing::TestParamInfo<std::string>& machine)
{
    std::string name = machine.param;
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
}

/// One of so many is played where there is time for few cases only: a sanitizer judges what the others show, too.
constexpr std::size_t machinesForOne = 12;
constexpr std::size_t operationsForOne = 5;

/// The parameter is the name of the machine: a process for each operation would take longer than the operations.
class Transcripts : public testing::TestWithParam<std::string>
{
};

/// Each call of an operation fails once, and succeeds once without doing anything; of an operation with many calls,
/// calls at equal distances do. All that then happens is one fingerprint.
class TranscriptsWithFailures : public testing::TestWithParam<std::string>
{
protected:
    static void addFailures(const Operation& operation, const sim::Machine& machine, const TranscriptFolder& folder,
                            Fingerprint& fingerprint)
    {
        constexpr std::size_t enough = 40;
        const std::vector<std::string> calls = support::callsIn(transcriptOf(operation, machine));
        const std::size_t distance = calls.size() / enough + 1;
        std::map<std::string, std::uint32_t> numbers;
        for (std::size_t i = 0; i < calls.size(); ++i)
        {
            const std::string& call = calls[i];
            const std::uint32_t number = ++numbers[call];
            if (i % distance != 0)
                continue;
            for (const bool fails : {true, false})
            {
                const auto plan = [&](sim::FaultPlan& faults)
                { (fails ? faults.fail(call) : faults.succeedWithNull(call)).at(number); };
                const std::string text = "= " + std::string(fails ? "failing " : "without effect ") + call + " " +
                                         std::to_string(number) + "\n" + transcriptOf(operation, machine, plan);
                folder.keep(text);
                fingerprint.add(text);
            }
        }
    }
};
}

TEST_P(Transcripts, HaveTheKnownFingerprints)
{
    const sim::Machine machine = support::transcriptMachine(GetParam());
    for (const Operation& operation : support::operations())
    {
        const std::string text = transcriptOf(operation, machine);

        TranscriptFolder(operation.name, GetParam()).keep(text);
        Fingerprint fingerprint;
        fingerprint.add(text);
        expectKnown(operation.name, GetParam(), fingerprint);
    }
}

INSTANTIATE_TEST_SUITE_P(All, Transcripts,
                         testing::ValuesIn(support::share(support::transcriptMachines(), machinesForOne)), nameOf);

TEST_P(TranscriptsWithFailures, HaveTheKnownFingerprints)
{
    const sim::Machine machine = support::transcriptMachine(GetParam());
    for (const Operation& operation : support::share(support::operations(), operationsForOne))
    {
        const std::string name = operation.name + "-with-failures";
        Fingerprint fingerprint;
        addFailures(operation, machine, TranscriptFolder(name, GetParam()), fingerprint);
        expectKnown(name, GetParam(), fingerprint);
    }
}

INSTANTIATE_TEST_SUITE_P(All, TranscriptsWithFailures,
                         testing::ValuesIn(support::share(support::smallMachines(), machinesForOne)), nameOf);
