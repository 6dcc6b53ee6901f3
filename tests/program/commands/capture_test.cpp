#include "simulator/machine/file/machinefile.h"
#include "simulator/machine/propertykeys.h"
#include "tests/program/programtest.h"

#include <nlohmann/json.hpp>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <sstream>
#include <utility>

using nlohmann::json;
using support::Answer;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace
{
/// A file of a test, without a folder of its own.
class CapturedFile
{
public:
    explicit CapturedFile(const std::string& name) : m_path(std::filesystem::temp_directory_path() / name)
    {
        std::filesystem::remove(m_path);
    }
    ~CapturedFile()
    {
        std::error_code error;
        std::filesystem::remove_all(m_path, error);
        std::filesystem::remove_all(partPath(), error);
    }
    CapturedFile(const CapturedFile&) = delete;
    CapturedFile& operator=(const CapturedFile&) = delete;

    std::string path() const { return m_path.u8string(); }
    std::filesystem::path partPath() const { return std::filesystem::u8path(path() + ".part"); }
    void write(const std::string& text) const { std::ofstream(m_path, std::ios::binary) << text; }
    std::string content() const
    {
        std::ifstream file(m_path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

private:
    std::filesystem::path m_path;
};

class ProgramCapture : public support::ProgramTest
{
protected:
    static sim::Machine machineIn(const std::string& text) { return sim::readMachine(text, "captured.json"); }

    /// Whether @p line of standard error says that a failure is in the file.
    static bool isReplayed(const std::string& line)
    {
        return line.find("could not read ") == 0 && line.find(": the file replays the failure") != std::string::npos;
    }

    /// The faults of a machine, and the failures of its wave devices, which are data of theirs.
    static std::size_t failuresIn(const sim::Machine& machine)
    {
        std::size_t failures = machine.faults.size();
        for (const std::vector<sim::WaveDevice>* const list : {&machine.waveOut, &machine.waveIn})
        {
            for (const sim::WaveDevice& wave : *list)
                failures += (wave.sizeResult != 0 ? 1 : 0) + (wave.idResult != 0 ? 1 : 0);
        }
        return failures;
    }

    /// The trees of a machine and of its capture.
    std::pair<std::string, std::string> trees(const std::string& machine)
    {
        const CapturedFile file("sonavit-capture-" + machine + ".json");
        const Answer answer = call({"capture", "--machine", machine, "-o", file.path()});
        EXPECT_EQ(0, answer.code) << answer.err;
        return {call({"list", "--machine", machine}).out, call({"list", "--machine", file.path()}).out};
    }

    Answer callOfOwner(const std::vector<std::string>& words, const std::vector<std::string>& names)
    {
        std::ostringstream out;
        std::ostringstream err;
        sonavit::program::Environment owned = environment(out, err);
        owned.ownerNames = [names] { return names; };
        const int code = sonavit::program::run(words, owned);
        return {code, out.str(), err.str()};
    }
};
}

TEST_F(ProgramCapture, PrintsAMachineFile)
{
    run(support::smallMachine());

    const Answer answer = call({"capture"});

    EXPECT_EQ(0, answer.code);
    EXPECT_EQ("", answer.err);
    EXPECT_THAT(answer.out, EndsWith("}\n"));
    EXPECT_EQ("captured machine", machineIn(answer.out).name);
    EXPECT_EQ(answer.out, call({"capture", "--json"}).out);
}

TEST_F(ProgramCapture, OfASimulatedMachineHasItsName)
{
    const Answer answer = call({"capture", "--machine", "desktop"});

    EXPECT_EQ("desktop", machineIn(answer.out).name);
    EXPECT_THAT(answer.err, StartsWith("Simulated machine desktop: "));
    EXPECT_EQ("", call({"capture", "--machine", "empty", "--json"}).err);
}

TEST_F(ProgramCapture, GivesTheSameTreeAsTheMachine)
{
    for (const std::string& machine : sim::machineNames())
    {
        const auto [original, captured] = trees(machine);

        EXPECT_EQ(original, captured) << machine;
    }
}

TEST_F(ProgramCapture, WritesAFile)
{
    run(support::smallMachine());
    const CapturedFile file("sonavit-capture-written.json");

    const Answer answer = call({"capture", "-o", file.path()});

    EXPECT_EQ(0, answer.code) << answer.err;
    EXPECT_EQ("", answer.out);
    EXPECT_EQ(call({"capture"}).out, file.content());
    EXPECT_FALSE(std::filesystem::exists(file.partPath()));
}

TEST_F(ProgramCapture, ReplacesAFile)
{
    run(support::smallMachine());
    const CapturedFile file("sonavit-capture-replaced.json");
    file.write(std::string(100000, 'x'));

    const Answer answer = call({"capture", "-o", file.path()});

    EXPECT_EQ(0, answer.code) << answer.err;
    EXPECT_EQ(call({"capture"}).out, file.content());
}

TEST_F(ProgramCapture, KeepsTheOldFileIfTheNewOneCannotBeWritten)
{
    run(support::smallMachine());
    const CapturedFile file("sonavit-capture-kept.json");
    file.write("precious");
    std::filesystem::create_directory(file.partPath());

    const Answer answer = call({"capture", "-o", file.path()});

    EXPECT_EQ(1, answer.code);
    EXPECT_EQ("sonavit: the file \"" + file.path() + ".part\" already exists\n", answer.err);
    EXPECT_EQ("precious", file.content());
}

TEST_F(ProgramCapture, FailsIfTheFileCannotBeWritten)
{
    run(support::smallMachine());
    const std::string folder = std::filesystem::temp_directory_path().u8string();

    const Answer nowhere = call({"capture", "-o", "no-such-folder/captured.json"});
    const Answer onFolder = call({"capture", "-o", folder});

    EXPECT_EQ(1, nowhere.code);
    EXPECT_EQ("sonavit: the file \"no-such-folder/captured.json\" cannot be written\n", nowhere.err);
    EXPECT_EQ(1, onFolder.code);
    EXPECT_EQ("sonavit: the file \"" + folder + "\" cannot be written\n", onFolder.err);
}

TEST_F(ProgramCapture, SaysWhichCallFailsAndSucceeds)
{
    run(support::smallMachine());
    simulation().faults().fail("IAudioEndpointVolume::GetMute", E_ACCESSDENIED);

    const Answer answer = call({"capture"});

    EXPECT_EQ(0, answer.code);
    const std::string line = "could not read IAudioEndpointVolume::GetMute of " + support::speakerId() +
                             " (0x80070005, access denied): the file replays the failure\n";
    EXPECT_THAT(answer.err, HasSubstr(line));
    const std::vector<sim::FaultRule> faults = machineIn(answer.out).faults;
    ASSERT_EQ(3u, faults.size());
    EXPECT_EQ("IAudioEndpointVolume::GetMute", faults[0].operation);
    EXPECT_EQ(E_ACCESSDENIED, faults[0].result);
}

TEST_F(ProgramCapture, SucceedsWhateverCallFailsAndSaysWhich)
{
    run(support::smallMachine());
    call({"capture"});
    const std::vector<std::string> all = simulation().journal().operations();
    std::set<std::string> operations(all.begin(), all.end());
    operations.erase("CoInitializeEx"); // without it nothing can be asked
    ASSERT_GT(operations.size(), 20u);

    for (const std::string& operation : operations)
    {
        SCOPED_TRACE(operation);
        simulation().faults().clear();
        simulation().faults().fail(operation, E_FAIL).at(1);

        const Answer answer = call({"capture"});

        EXPECT_EQ(0, answer.code) << answer.err;
        std::size_t failures = 0;
        std::istringstream lines(answer.err);
        for (std::string line; std::getline(lines, line);)
            failures += isReplayed(line) ? 1 : 0;
        EXPECT_EQ(failuresIn(machineIn(answer.out)), failures) << answer.err;
    }
}

TEST_F(ProgramCapture, ReplacesTheNamesOfTheOwnerIfTheUserWants)
{
    sim::Machine machine = support::smallMachine();
    sim::setProperty(machine.endpoint(support::speakerId())->properties, sim::keys::deviceDescription,
                     sim::PropertyValue::ofText("Speakers of anna on DESKTOP-4F2K9"));
    run(machine);

    const Answer named = callOfOwner({"capture"}, {"Anna", "desktop-4f2k9"});
    const Answer anonymous = callOfOwner({"capture", "--anonymous"}, {"Anna", "desktop-4f2k9"});

    EXPECT_EQ(0, anonymous.code);
    EXPECT_EQ("", anonymous.err);
    EXPECT_THAT(named.out, HasSubstr("Speakers of anna on DESKTOP-4F2K9"));
    EXPECT_THAT(anonymous.out, HasSubstr("Speakers of "));
    EXPECT_THAT(anonymous.out, Not(HasSubstr("anna")));
    EXPECT_THAT(anonymous.out, Not(HasSubstr("4F2K9")));
    EXPECT_EQ(named.out.size(), anonymous.out.size());
}

TEST_F(ProgramCapture, DoesNotNameTheOwnersDevicesInWhatItReports)
{
    run(sim::findMachine("bluetooth"));
    simulation().faults().fail("IDeviceTopology::GetSubunitCount", E_FAIL);

    const Answer named = call({"capture"});
    const Answer anonymous = call({"capture", "--anonymous"});

    EXPECT_THAT(named.err, HasSubstr("28e14ca0b1f7"));
    EXPECT_THAT(anonymous.err, HasSubstr("could not read IDeviceTopology::GetSubunitCount of {2}."));
    EXPECT_THAT(anonymous.err, Not(HasSubstr("28e14ca0b1f7")));
    EXPECT_EQ(named.err.size(), anonymous.err.size());
}

#if !defined(_WIN32) // there CoInitializeEx is the system's own
TEST_F(ProgramCapture, FailsIfNothingCanBeAsked)
{
    run(support::smallMachine());
    simulation().faults().fail("CoInitializeEx", E_OUTOFMEMORY);

    const Answer answer = call({"capture"});

    EXPECT_EQ(1, answer.code);
    EXPECT_EQ("", answer.out);
    EXPECT_THAT(answer.err,
                StartsWith("sonavit: the sound hardware cannot be read: CoInitializeEx failed: 0x8007000E"));
}
#endif

TEST_F(ProgramCapture, RefusesWhatIsNoFileName)
{
    EXPECT_EQ("sonavit: the name of the file is empty\n", call({"capture", "-o", ""}).err);
    EXPECT_EQ(2, call({"capture", "captured.json"}).code);
}
