// Surveys of hardware while calls fail.
#include "client/capturing/hardware.h"
#include "simulator/machine/file/machinefile.h"
#include "tests/client/capturing/supporthardware.h"
#include "tests/client/capturing/supportsweep.h"
#include "tests/support/clienttest.h"
#include "tests/support/pace.h"

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace
{
using namespace sonavit;
using testing::IsEmpty;
using testing::Not;

constexpr HRESULT plannedCode = static_cast<HRESULT>(0x8889000A); // a code that no missing thing has

class SurveyHardwareWithFaults : public support::ClientTest
{
protected:
    capturing::Survey surveyWith(const sim::FaultRule& rule)
    {
        simulation().faults().clear();
        fault = simulation().faults().add(rule);
        return support::surveyedHardware();
    }

    /// The calls of hardware that a survey makes and that the test lets fail, as operations and their numbers.
    std::vector<std::pair<std::string, std::uint32_t>> hardwareCalls()
    {
        simulation().journal().clear();
        simulation().journal().recordReferences(true);
        support::surveyedHardware();
        simulation().journal().recordReferences(false);
        std::vector<std::pair<std::string, std::uint32_t>> calls;
        std::map<std::string, std::uint32_t> numbers;
        support::CallSample sample(support::CallSample::Extent::several);
        for (const sim::JournalEntry& entry : simulation().journal().entries())
        {
            const std::uint32_t number = ++numbers[entry.operation];
            if (isOfHardware(entry) && sample.contains(entry))
                calls.emplace_back(entry.operation, number);
        }
        return calls;
    }

    std::optional<sim::PlannedFault> fault;

private:
    static bool isOfHardware(const sim::JournalEntry& entry)
    {
        const std::string& operation = entry.operation;
        const bool isTopology = !entry.arguments.empty() && entry.arguments.front() == "IDeviceTopology";
        if (operation == "IMMDevice::Activate" && isTopology)
            return true;
        for (const char* const interfaceName :
             {"IDeviceTopology::", "IPart::", "IConnector::", "ISubunit::", "IPartsList::", "IControlInterface::",
              "IAudioVolumeLevel::", "IAudioMute::", "IAudioInputSelector::", "IKsJackDescription"})
        {
            if (operation.rfind(interfaceName, 0) == 0)
                return operation.find("::Release") == std::string::npos &&
                       operation.find("::AddRef") == std::string::npos;
        }
        return operation == "IMMDeviceEnumerator::GetDevice";
    }
};

/// Whatever fails: the machine of the survey, with the failures as faults, is surveyed with the same result.
TEST_F(SurveyHardwareWithFaults, AnyCallThatFailsOnceIsReplayed)
{
    play("laptop");
    simulation().faults().clear();
    const auto com = support::comOnThisThread();
    const std::vector<std::pair<std::string, std::uint32_t>> calls = hardwareCalls();
    simulation().journal().record(false);
    ASSERT_LT(100u, calls.size());
    for (const auto& [operation, number] : support::share(calls, 12))
    {
        SCOPED_TRACE(operation + ", call " + std::to_string(number));
        sim::FaultRule rule;
        rule.operation = operation;
        rule.call = number;
        rule.result = plannedCode;

        const capturing::Survey survey = surveyWith(rule);
        const capturing::Survey again = support::surveyedHardwareOf(support::replayOf(survey));

        EXPECT_EQ(1u, fault->fired());
        EXPECT_THAT(survey.failures, Not(IsEmpty()));
        EXPECT_TRUE(survey.machine == again.machine);
        EXPECT_EQ(support::textsOf(survey.failures), support::textsOf(again.failures));
        EXPECT_TRUE(survey.failures == again.failures);
        EXPECT_NO_THROW(sim::readMachine(sim::writeMachine(support::replayOf(survey)), "survey"));
        ASSERT_FALSE(HasFailure());
    }
}
}
