#include "client/capturing/survey.h"

#include "COM/interfacequery.h"
#include "client/capturing/hardware.h"
#include "client/capturing/recorder.h"
#include "client/capturing/taken.h"

#include <utility>

namespace sonavit::capturing
{
std::string FailedCall::call() const
{
    std::string text = operation;
    for (std::size_t index = 0; index < arguments.size(); ++index)
        text.append(index == 0 ? "(" : ", ").append(arguments[index]);
    return arguments.empty() ? text : text.append(")");
}

Problem FailedCall::problem() const
{
    return Problem::ofCall(call(), object, code);
}

bool operator==(const FailedCall& left, const FailedCall& right)
{
    return left.operation == right.operation && left.object == right.object && left.arguments == right.arguments &&
           left.outcome == right.outcome && left.code == right.code;
}

Survey surveyPlatform(const Pause& pause)
{
    Survey survey;
    Recorder recorder(survey);
    survey.machine.composition = sim::Composition::none;
    IMMDeviceEnumerator* created = nullptr;
    const HRESULT result = interfacequery::createEnumerator(created);
    const reading::Handle<IMMDeviceEnumerator> enumerator = taken(result, created);
    if (recorder.gives(result, enumerator.get(), {"CoCreateInstance", "", {"MMDeviceEnumerator"}}))
    {
        const std::vector<OpenEndpoint> endpoints = surveyEndpoints(*enumerator, survey.machine, recorder, pause);
        surveyHardware(*enumerator, endpoints, survey.machine, recorder, pause);
        surveyDefaults(*enumerator, survey.machine, recorder);
        survey.machine.account = recorder.account();
    }
    surveyWaveDevices(survey.machine, recorder);
    surveyDeviceInstances(survey.machine);
    return survey;
}
}
