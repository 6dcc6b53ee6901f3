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

/// Keeps transcripts and fingerprint in the folder that the environment names, if it names one.
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

/// The parameter is the name of the machine: a process for each operation would take longer than the operations.
class Transcripts : public testing::TestWithParam<std::string>
{
};
}

TEST_P(Transcripts, HaveTheKnownFingerprints)
{
    const sim::Machine machine = support::transcriptMachine(GetParam());
    for (const Operation& operation : support::operations())
    {
        const std::string text = recordingOf(operation, machine).text;

        TranscriptFolder(operation.name, GetParam()).keep(text);
        Fingerprint fingerprint;
        fingerprint.add(text);
        expectKnown(operation.name, GetParam(), fingerprint);
    }
}

INSTANTIATE_TEST_SUITE_P(All, Transcripts, testing::ValuesIn(support::transcriptMachines()), nameOf);
