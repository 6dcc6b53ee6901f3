#include "client/reading/properties.h"

#include "client/reading/endpointreading.h"
#include "client/reading/judge.h"
#include "client/reading/steps.h"
#include "platform/propertykeys.h"

#include <utility>

namespace sonavit::reading
{
namespace
{
namespace keys = platform::propertykeys;

/// Forgets all that readProperties() reads.
void forgetProperties(EndpointReading& reading)
{
    Endpoint::Content& content = reading.content;
    content.description.reset();
    content.interfaceName.reset();
    content.instancePath.reset();
    content.driverNode.reset();
    content.format.reset();
    content.speakers.reset();
    content.directSoundId.reset();
    content.container.reset();
    reading.bus.reset();
    reading.namedJack = {};
    reading.propertyProblems.clear();
    reading.busProblems.clear();
}

/// Reads properties into members, and files the problems under their fields.
class Filler
{
public:
    Filler(IPropertyStore& store, EndpointReading& reading)
        : m_reading(reading),
          m_reader(store, reading.content.id.text(), m_problems)
    {
    }

    template<class T>
    void fill(std::optional<T>& member, EndpointField field,
              std::optional<T> (PropertyReader::*read)(const PropertyReader::Property&),
              const PropertyReader::Property& property)
    {
        member = (m_reader.*read)(property);
        for (Problem& problem : m_problems)
            m_reading.propertyProblems.push_back({field, std::move(problem)});
        m_problems.clear();
    }

    void fillBus()
    {
        m_reading.bus = m_reader.text({keys::enumeratorName, "enumeratorName"});
        m_reading.busProblems = std::move(m_problems);
    }

private:
    EndpointReading& m_reading;
    std::vector<Problem> m_problems;
    PropertyReader m_reader;
};

void fillNames(Filler& filler, Endpoint::Content& content)
{
    constexpr auto text = &PropertyReader::text;
    filler.fill(content.description, EndpointField::description, text, {keys::deviceDescription, "deviceDescription"});
    filler.fill(content.interfaceName, EndpointField::interfaceName, text, {keys::friendlyName, "friendlyName"});
    filler.fill(content.instancePath, EndpointField::instancePath, text, {keys::instancePath, "instancePath"});
    filler.fill(content.driverNode, EndpointField::driverNode, text,
                {keys::driverNodeStrongName, "driverNodeStrongName"});
}

void fillValues(Filler& filler, Endpoint::Content& content)
{
    filler.fill(content.format, EndpointField::format, &PropertyReader::format, {keys::deviceFormat, "deviceFormat"});
    filler.fill(content.speakers, EndpointField::speakers, &PropertyReader::number,
                {keys::physicalSpeakers, "physicalSpeakers"});
    filler.fill(content.directSoundId, EndpointField::directSoundId, &PropertyReader::writtenGuid,
                {keys::directSoundGuid, "directSoundGuid"});
    filler.fill(content.container, EndpointField::container, &PropertyReader::guid, {keys::containerId, "containerId"});
}

void fillJack(Filler& filler, Jack& jack)
{
    filler.fill(jack.type, EndpointField::jacks, &PropertyReader::writtenGuid, {keys::jackSubType, "jackSubType"});
    std::optional<std::uint32_t> formFactor;
    filler.fill(formFactor, EndpointField::jacks, &PropertyReader::number, {keys::formFactor, "formFactor"});
    if (formFactor)
        jack.formFactor = static_cast<FormFactor>(*formFactor);
}
}

/// The store is opened for reading: Windows opens it for writing to administrators only.
void readProperties(EndpointReading& reading)
{
    forgetProperties(reading);
    IPropertyStore* store = nullptr;
    const HRESULT result = reading.device->OpenPropertyStore(STGM_READ, &store);
    if (FAILED(result) || store == nullptr)
    {
        const Problem problem =
            failure({"IMMDevice::OpenPropertyStore"}, reading.content.id.text(), FAILED(result) ? result : E_POINTER);
        for (const EndpointField field :
             {EndpointField::description, EndpointField::interfaceName, EndpointField::jacks, EndpointField::format,
              EndpointField::speakers, EndpointField::directSoundId, EndpointField::driverNode,
              EndpointField::container, EndpointField::instancePath})
            reading.propertyProblems.push_back({field, problem});
        reading.busProblems = {problem};
    }
    else
    {
        const Handle<IPropertyStore> holder(store);
        Filler filler(*store, reading);
        fillNames(filler, reading.content);
        fillValues(filler, reading.content);
        fillJack(filler, reading.namedJack);
        filler.fillBus();
    }
    gatherJacks(reading);
    gatherProblems(reading);
}
}
