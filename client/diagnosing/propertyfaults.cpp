#include "client/diagnosing/failurewords.h"
#include "client/diagnosing/findings.h"
#include "client/reading/properties.h"
#include "simulator/machine/propertykeys.h"
#include "sonavit/text.h"

#include <array>
#include <optional>

namespace sonavit::diagnosing
{
namespace
{
constexpr const char* fromSetup = "The driver's setup (INF) file writes these values. A newer driver may be better.";

/// What a property should be.
struct Expected
{
    PROPERTYKEY key;
    VARTYPE tag;
    const char* noun; ///< begins a sentence
    bool isGuid;      ///< a GUID written as a text
};

constexpr std::array<Expected, 15> expectations = {{
    {sim::keys::deviceDescription, VT_LPWSTR, "Its name", false},
    {sim::keys::friendlyName, VT_LPWSTR, "The name of its device", false},
    {sim::keys::fullName, VT_LPWSTR, "Its full name", false},
    {sim::keys::instancePath, VT_LPWSTR, "The path of its device", false},
    {sim::keys::driverNodeStrongName, VT_LPWSTR, "The name of its driver", false},
    {sim::keys::enumeratorName, VT_LPWSTR, "The name of its bus", false},
    {sim::keys::instanceId, VT_LPWSTR, "The id of its device", false},
    {sim::keys::interfacePath, VT_LPWSTR, "The path of its adapter", false},
    {sim::keys::association, VT_LPWSTR, "Its association", true},
    {sim::keys::jackSubType, VT_LPWSTR, "The kind of its jack", true},
    {sim::keys::endpointGuid, VT_LPWSTR, "Its DirectSound id", true},
    {sim::keys::speakerConfig, VT_UI4, "Its loudspeaker setup", false},
    {sim::keys::formFactor, VT_UI4, "Its form", false},
    {sim::keys::containerId, VT_CLSID, "Its container", false},
    {sim::keys::deviceFormat, VT_BLOB, "Its format", false},
}};

const char* kindOfValue(VARTYPE tag)
{
    switch (tag)
    {
    case VT_LPWSTR:
        return "a text";
    case VT_CLSID:
        return "a GUID";
    case VT_BLOB:
        return "a block of bytes";
    case VT_BOOL:
        return "yes or no";
    case VT_R4:
        return "a number with a fraction";
    default:
        return "a number";
    }
}

/// "the number 42", as far as it can be shown.
std::string valueText(const sim::PropertyValue& value)
{
    switch (value.tag)
    {
    case VT_LPWSTR:
        return "the text " + text::quoted(value.text.value_or(""));
    case VT_CLSID:
        return "a GUID";
    case VT_BLOB:
        return "a block of " + text::counted(value.bytes.size(), "byte");
    case VT_UI4:
        return "the number " + std::to_string(value.number);
    default:
        return std::string(kindOfValue(value.tag)) + " of the type " + std::to_string(value.tag);
    }
}

const sim::PropertyValue* valueIn(const sim::Device& device, const PROPERTYKEY& key)
{
    const sim::PropertyValue* const value = sim::findProperty(device, key);
    return value == nullptr || value->tag == VT_EMPTY ? nullptr : value;
}

/// Judges the properties of one device.
class PropertyJudge
{
public:
    PropertyJudge(const Places& places, Findings& findings, const sim::Device& device)
        : m_places(places),
          m_findings(findings),
          m_device(device)
    {
    }

    void judgeValues()
    {
        for (const Expected& expected : expectations)
        {
            const sim::PropertyValue* const value = valueIn(m_device, expected.key);
            if (value != nullptr && isAsked(expected.key))
                judge(expected, *value);
        }
    }

    void judgeNames()
    {
        if (!isAsked(sim::keys::deviceDescription) || !isAsked(sim::keys::friendlyName))
            return;
        const bool hasName = valueIn(m_device, sim::keys::deviceDescription) != nullptr;
        const bool hasDevice = valueIn(m_device, sim::keys::friendlyName) != nullptr;
        if (!hasName && !hasDevice)
            add("name-missing", "It has no name, and neither has its device.", "Lists show its id in place of a name.",
                fromSetup);
        else if (!hasName)
            add("name-missing", "It has no name of its own.", "Lists show the name of its device alone.", fromSetup);
        else if (!hasDevice)
            add("name-missing", "Its device has no name.", "Lists show it without the name of its card.", fromSetup);
    }

    void judgePath()
    {
        const sim::PropertyValue* const value = valueIn(m_device, sim::keys::instancePath);
        if (!isAsked(sim::keys::instancePath) || (value != nullptr && (value->tag != VT_LPWSTR || !value->text)))
            return;
        constexpr const char* alone = "It is not listed with the other endpoints of its card, and nothing is known "
                                      "about its device in Windows.";
        if (value == nullptr && !isRemote())
            add("no-card", "It names no device, so it belongs to no card.", alone,
                "A driver or a program makes endpoints without a device.", Finding::Kind::oddity);
        else if (value != nullptr && value->text->empty())
            add("path-empty", "The path of its device is empty.", alone, fromSetup);
        else if (value != nullptr && value->text->find("}.") == std::string::npos)
            add("path-malformed",
                "The path of its device is " + text::quoted(*value->text) +
                    ", which does not have the form \"{1}.BUS\\DEVICE\\INSTANCE\".",
                alone, fromSetup);
    }

    void judgeFormat()
    {
        if (m_device.state == sim::stateActive && isAsked(sim::keys::deviceFormat) &&
            valueIn(m_device, sim::keys::deviceFormat) == nullptr)
            add("format-missing", "It has no format.", "Sample rate and bits are not known.",
                "Windows chooses a format when the driver is installed; setting one in the sound settings may help.");
    }

private:
    /// Whether it stands for a device of another computer, as in a remote session: that one has no device here.
    bool isRemote() const
    {
        const sim::PropertyValue* const form = valueIn(m_device, sim::keys::formFactor);
        return form != nullptr && form->tag == VT_UI4 &&
               form->number == static_cast<std::uint64_t>(FormFactor::remoteNetworkDevice);
    }

    /// Whether the survey knows what the property is.
    bool isAsked(const PROPERTYKEY& key) const
    {
        for (const capturing::FailedCall& call : m_places.survey().failures)
        {
            if (call.object != m_device.id)
                continue;
            if (call.operation == "IMMDevice::OpenPropertyStore")
                return false;
            if (call.operation != "IPropertyStore::GetValue" || call.arguments.empty())
                continue;
            const std::optional<PROPERTYKEY> failed = sim::keyFromText(call.arguments.front());
            if (failed && sim::sameKey(*failed, key))
                return false;
        }
        return true;
    }

    void judge(const Expected& expected, const sim::PropertyValue& value)
    {
        const std::string noun = expected.noun;
        const FailureWords& words = wordsFor("IPropertyStore::GetValue", sim::keyText(expected.key));
        const std::string effect = areForAnyProperty(words) ? "" : words.effect;
        if (value.tag != expected.tag)
            add("property-of-another-type",
                noun + " is " + valueText(value) + ", where Windows promises " + kindOfValue(expected.tag) + ".",
                effect, fromSetup);
        else if (value.tag == VT_LPWSTR && !value.text)
            add("property-null", noun + " is a text without characters: the property store returns a null pointer.",
                effect, fromSetup);
        else if (expected.isGuid && !value.text->empty() && !Guid::parse(*value.text))
            add("property-malformed", noun + " is " + text::quoted(*value.text) + ", which is no GUID.", effect,
                fromSetup);
        else if (value.tag == VT_BLOB)
            judgeBytes(noun, value.bytes, effect);
    }

    void judgeBytes(const std::string& noun, const std::vector<std::uint8_t>& bytes, const std::string& effect)
    {
        constexpr const char* unchecked = "An older driver has written the format, or a program that did not check it.";
        const std::optional<Format> format = reading::formatOf(bytes.data(), bytes.size());
        if (!format)
            add("property-malformed",
                noun + " is a block of " + text::counted(bytes.size(), "byte") + ", which describe no format.", effect,
                unchecked);
        else if (format->rate == 0 || format->channels == 0)
            add("property-malformed", noun + " has no samples: " + format->sentence() + ".", effect, unchecked);
        else if (bytes.size() == sizeof(WAVEFORMATEX))
            add("format-short", noun + " is in the short form of " + text::counted(bytes.size(), "byte") + ".",
                "The places of its loudspeakers are not known, and programs that expect the long form do not "
                "understand it.",
                unchecked, Finding::Kind::oddity);
    }

    void add(const char* rule, std::string sentence, std::string effect, std::string cause,
             Finding::Kind kind = Finding::Kind::data)
    {
        m_findings.addOf(m_device.id, {kind, rule, std::move(sentence), std::move(effect), std::move(cause), {}});
    }

    const Places& m_places;
    Findings& m_findings;
    const sim::Device& m_device;
};
}

void findPropertyFaults(const Places& places, Findings& findings)
{
    for (const sim::Endpoint* const listed : places.listed())
    {
        const sim::Endpoint& endpoint = *listed;
        PropertyJudge judge(places, findings, endpoint);
        judge.judgeNames();
        judge.judgePath();
        judge.judgeValues();
        judge.judgeFormat();
    }
    for (const sim::Adapter& adapter : places.machine().adapters)
        PropertyJudge(places, findings, adapter).judgeValues();
}
}
