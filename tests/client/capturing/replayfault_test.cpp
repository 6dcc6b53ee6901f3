// A capture during which one call fails: the file says so, and its machine fails in the same way.
#include "simulator/machine/file/machinefile.h"
#include "tests/client/capturing/capturetest.h"
#include "tests/client/capturing/supportsweep.h"
#include "tests/support/pace.h"

#include <algorithm>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <tuple>
#include <vector>

namespace
{
using Extent = support::CallSample::Extent;

/// A code that nothing else returns.
constexpr HRESULT planned = static_cast<HRESULT>(0x8007045D);

/// A call of a capture: the n-th of its operation.
struct CallOfCapture
{
    sim::JournalEntry entry;
    std::uint32_t number;
};

/// Calls that only free memory, those whose answer is no code, and the apartment, without which nothing can be asked.
bool isWithoutCode(const std::string& operation)
{
    static const std::set<std::string> all = {
        "CoTaskMemFree",     "CoTaskMemAlloc",   "PropVariantClear",          "CoUninitialize", "CoInitializeEx",
        "waveOutGetNumDevs", "waveInGetNumDevs", "getParentDeviceInstanceId", "CoInitialize"};
    return all.count(operation) != 0;
}

/// The calls that promise an object. Those that promise a string may succeed without.
bool promisesAnObject(const std::string& operation)
{
    static const std::set<std::string> all = {"CoCreateInstance",
                                              "IMMDeviceEnumerator::EnumAudioEndpoints",
                                              "IMMDeviceEnumerator::GetDefaultAudioEndpoint",
                                              "IMMDeviceEnumerator::GetDevice",
                                              "IMMDeviceCollection::Item",
                                              "IMMDevice::Activate",
                                              "IMMDevice::OpenPropertyStore",
                                              "IDeviceTopology::GetConnector",
                                              "IDeviceTopology::GetSubunit",
                                              "IDeviceTopology::GetPartById",
                                              "IDeviceTopology::GetSignalPath",
                                              "IPartsList::GetPart",
                                              "IPart::GetTopologyObject",
                                              "IPart::GetControlInterface",
                                              "IPart::EnumPartsIncoming",
                                              "IPart::EnumPartsOutgoing",
                                              "IPart::Activate",
                                              "IConnector::GetConnectedTo"};
    return all.count(operation) != 0;
}

bool storesAString(const std::string& operation)
{
    static const std::set<std::string> all = {
        "IMMDevice::GetId",
        "IPart::GetGlobalId",
        "IPart::GetName",
        "IDeviceTopology::GetDeviceId",
        "IControlInterface::GetName",
        "IConnector::GetConnectorIdConnectedTo",
        "IConnector::GetDeviceIdConnectedTo",
        "IAudioClient::GetMixFormat",
    };
    return all.count(operation) != 0;
}

/// Whether the problem is that of the call. If the device that is a default gives no id, although it has given one in
/// the list, nothing but the question for the default can fail again.
bool names(const sonavit::Problem& problem, const CallOfCapture& call, HRESULT code)
{
    const std::string operation = problem.operation().substr(0, problem.operation().find('('));
    const bool isDefault =
        call.entry.operation == "IMMDevice::GetId" && operation == "IMMDeviceEnumerator::GetDefaultAudioEndpoint";
    return (operation == call.entry.operation || isDefault) && problem.code() == code;
}

/// Whether the machine has a wave device whose driver returns the code, which is no fault there.
bool hasWaveCode(const sim::Machine& machine, HRESULT code)
{
    const auto returnsCode = [&](const sim::WaveDevice& device)
    { return static_cast<HRESULT>(device.sizeResult) == code || static_cast<HRESULT>(device.idResult) == code; };
    return std::any_of(machine.waveOut.begin(), machine.waveOut.end(), returnsCode) ||
           std::any_of(machine.waveIn.begin(), machine.waveIn.end(), returnsCode);
}

/// A machine, and which of its calls fail.
struct Case
{
    const char* machine;
    Extent extent;
    std::uint32_t stride;     ///< every how many of these fail; 1: each
    std::uint32_t slowStride; ///< the same where there is time for few cases only
};

/// A part of the calls, so that several processes share the work.
using Share = std::uint32_t;
constexpr Share shares = 4;

class CaptureWithAFailingCall : public CaptureTest, public testing::WithParamInterface<std::tuple<Case, Share>>
{
protected:
    static sim::Machine machine()
    {
        sim::Machine found = sim::findMachine(std::get<Case>(GetParam()).machine);
        found.script.clear();
        return found;
    }

    /// The calls of a capture that this share of the test lets fail: the first of each operation, and some others. Not
    /// those that fail in this machine already.
    static std::vector<CallOfCapture> calls(const sim::Machine& machine)
    {
        const Case& each = std::get<Case>(GetParam());
        const std::uint32_t stride = (support::isSlow ? each.slowStride : each.stride) * shares;
        const Captured whole = captured(machine);
        std::vector<CallOfCapture> chosen;
        std::map<std::string, std::uint32_t> numbers;
        support::CallSample sample(each.extent);
        std::uint32_t position = std::get<Share>(GetParam()) * (stride / shares);
        for (const sim::JournalEntry& entry : whole.journal)
        {
            const std::uint32_t number = ++numbers[entry.operation];
            if (!isWithoutCode(entry.operation) && !fails(whole, entry) && sample.contains(entry) &&
                position++ % stride == 0)
                chosen.push_back({entry, number});
        }
        return chosen;
    }

    static bool fails(const Captured& whole, const sim::JournalEntry& entry)
    {
        const std::vector<sonavit::Problem>& problems = whole.capture.problems;
        return std::any_of(problems.begin(), problems.end(),
                           [&](const sonavit::Problem& problem)
                           {
                               return problem.operation().substr(0, problem.operation().find('(')) == entry.operation &&
                                      problem.object() == entry.object;
                           });
    }

    /// The capture with the failure, judged by itself; then the capture of its replay, which must be the same.
    static Captured expectReplay(const sim::Machine& machine, const CallOfCapture& call,
                                 const std::function<sim::PlannedFault(sim::Simulation&)>& plan)
    {
        std::optional<sim::PlannedFault> fault;
        const Captured first =
            captured(machine, [&](sim::Simulation& simulation) { fault = plan(simulation).at(call.number); });
        const Captured second = captured(replayed(first));

        EXPECT_EQ(1u, fault->fired());
        EXPECT_TRUE(first.left.empty()) << first.left;
        EXPECT_EQ("", support::firstDifference(first.problems(), second.problems()));
        EXPECT_EQ("", support::firstDifference(first.lines(), second.lines()));
        return first;
    }

    static std::string where(const CallOfCapture& call)
    {
        return std::string(std::get<Case>(GetParam()).machine) + ", call " + std::to_string(call.number) + ": " +
               call.entry.line();
    }

    static void expectProblem(const Captured& capture, const CallOfCapture& call, HRESULT code)
    {
        const std::vector<sonavit::Problem>& problems = capture.capture.problems;
        if (call.entry.operation.rfind("wave", 0) == 0)
        {
            EXPECT_TRUE(hasWaveCode(replayed(capture), code));
            return;
        }
        EXPECT_TRUE(std::any_of(problems.begin(), problems.end(),
                                [&](const sonavit::Problem& problem) { return names(problem, call, code); }))
            << testing::PrintToString(capture.problems());
    }
};

TEST_P(CaptureWithAFailingCall, NamesTheCallAndReplaysTheFailure)
{
    const sim::Machine original = machine();
    const std::vector<CallOfCapture> all = calls(original);
    ASSERT_FALSE(all.empty());
    for (const CallOfCapture& call : all)
    {
        SCOPED_TRACE(where(call));

        const Captured capture = expectReplay(original, call,
                                              [&](sim::Simulation& simulation)
                                              { return simulation.faults().fail(call.entry.operation, planned); });

        expectProblem(capture, call, planned);
        ASSERT_FALSE(HasFailure());
    }
}

TEST_P(CaptureWithAFailingCall, ReplaysASuccessWithoutAnObject)
{
    const sim::Machine original = machine();
    for (const CallOfCapture& call : calls(original))
    {
        if (!promisesAnObject(call.entry.operation) && !storesAString(call.entry.operation))
            continue;
        SCOPED_TRACE(where(call));

        const Captured capture = expectReplay(original, call,
                                              [&](sim::Simulation& simulation)
                                              { return simulation.faults().succeedWithNull(call.entry.operation); });

        if (promisesAnObject(call.entry.operation))
            expectProblem(capture, call, E_POINTER);
        ASSERT_FALSE(HasFailure());
    }
}

std::string caseName(const testing::TestParamInfo<std::tuple<Case, Share>>& info)
{
    return std::get<Case>(info.param).machine + std::to_string(std::get<Share>(info.param));
}

INSTANTIATE_TEST_SUITE_P(
    Machines, CaptureWithAFailingCall,
    testing::Combine(testing::Values(Case{"virtual", Extent::all, 1, 10}, Case{"laptop", Extent::first, 1, 20},
                                     Case{"bluetooth", Extent::first, 1, 20}, Case{"broken", Extent::first, 3, 30}),
                     testing::Range(Share{0}, shares)),
    caseName);
}
