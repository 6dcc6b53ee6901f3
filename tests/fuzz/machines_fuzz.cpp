/// The input chooses a machine and what happens on it. The client layer tells every change and ends with the truth, the
/// object model survives, both answer alike about the machine as it is then, and neither leaves anything behind.
#include "libSonavit/audiodeviceendpoint.h"
#include "qor/logging.h"
#include "tests/client/model/supportdifferences.h"
#include "tests/fuzz/support/check.h"
#include "tests/fuzz/support/clientrun.h"
#include "tests/fuzz/support/modelrun.h"
#include "tests/fuzz/support/steps.h"
#include "tests/support/randommachine.h"

#include <fuzzer/FuzzedDataProvider.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

namespace
{
sim::Machine machineOf(FuzzedDataProvider& input)
{
    const std::uint32_t seed = input.ConsumeIntegral<std::uint16_t>();
    const bool hasOddLevels = input.ConsumeBool();
    const std::string choices = input.ConsumeRandomLengthString(200);
    const sim::Machine machine = support::randomMachine(seed, {choices.begin(), choices.end()});
    return hasOddLevels ? support::withOddLevels(machine, seed) : machine;
}

void checkAgreement(const sim::Machine& machine)
{
    support::Answers client = fuzz::clientsAnswers(machine);
    support::Answers model = fuzz::modelsAnswers(machine);
    for (const support::Difference& difference : support::wantedDifferences())
        difference.settle(client, model, machine);
    const std::string difference = support::differenceBetween(client, model);
    if (!difference.empty())
        std::fprintf(stderr, "%s", difference.c_str());
    fuzz::check(difference.empty(), "both readers agree, but for the wanted differences");
}
}

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    // Such machines fail in many ways, which would fill the output.
    qor::LogFactory::setPriority(qor::LoggerPriority::LOG_FATAL);
    qor::LogFactory::setSink([](const qor::LogRecord&) {});
    AudioDevice::setStoreAccess(StoreAccess::writeElseRead);
    return FAILED(CoInitialize(nullptr)) ? 1 : 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzedDataProvider input(data, size);
    const sim::Machine machine = machineOf(input);
    const std::vector<fuzz::Step> steps = fuzz::stepsOn(machine, input);

    const sim::Machine afterwards = fuzz::checkClient(machine, steps);
    fuzz::checkObjectModel(machine, steps);
    checkAgreement(afterwards);
    return 0;
}
