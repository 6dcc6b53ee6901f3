// The descriptions of a connector's jacks.
#include "client/capturing/controlsurvey.h"
#include "client/capturing/listitems.h"

#include <algorithm>

namespace sonavit::capturing
{
namespace
{
using reading::Handle;

/// Bits of KSJACK_DESCRIPTION2::JackCapabilities.
constexpr DWORD detectsPresence = 1;
constexpr DWORD changesFormat = 2;
/// No connector has more jacks.
constexpr UINT mostJacks = 64;

class JackSurvey
{
public:
    JackSurvey(IPart& part, Failures& failures, Recorder& recorder)
        : m_part(part),
          m_failures(failures),
          m_recorder(recorder)
    {
    }

    std::vector<sim::Jack> jacks()
    {
        void* object = nullptr;
        m_result = m_part.Activate(CLSCTX_ALL, IID_IKsJackDescription, &object);
        const Handle<IKsJackDescription> first(SUCCEEDED(m_result) ? static_cast<IKsJackDescription*>(object)
                                                                   : nullptr);
        object = nullptr;
        const HRESULT result = m_part.Activate(CLSCTX_ALL, IID_IKsJackDescription2, &object);
        const Handle<IKsJackDescription2> second(SUCCEEDED(result) ? static_cast<IKsJackDescription2*>(object)
                                                                   : nullptr);
        const std::optional<UINT> count = countOf(first.get(), "IKsJackDescription::GetJackCount");
        const std::optional<UINT> further = countOf(second.get(), "IKsJackDescription2::GetJackCount");
        decideCount(first.get() != nullptr || second.get() != nullptr, count, further);
        judge(m_result, first.get(), activation("IKsJackDescription"));
        judge(result, second.get(), activation("IKsJackDescription2"));
        for (UINT index = 0; first.get() != nullptr && index < count.value_or(0) && index < m_jacks.size(); ++index)
            describe(*first, index);
        for (UINT index = 0; second.get() != nullptr && index < further.value_or(0) && index < m_jacks.size(); ++index)
            addCapabilities(*second, index);
        return m_jacks;
    }

private:
    template<class Description>
    std::optional<UINT> countOf(Description* description, const char* name)
    {
        UINT count = 0;
        if (description == nullptr || !m_failures.passes(description->GetJackCount(&count), {name}))
            return std::nullopt;
        return count;
    }

    /// A connector with a description has at least one jack in a machine file.
    void decideCount(bool isDescribed, const std::optional<UINT>& count, const std::optional<UINT>& further)
    {
        if (!isDescribed)
            return;
        const UINT jacks = count ? *count : further.value_or(1);
        if (jacks == 0 || jacks > mostJacks || (count && further && *count != *further))
            m_recorder.note("A connector has descriptions of jacks in a number that a machine file cannot contain.");
        m_jacks.resize(std::min(jacks, mostJacks));
        for (sim::Jack& jack : m_jacks)
            jack.connected = true;
    }

    /// A connector without jacks has no descriptions.
    void judge(HRESULT result, const void* object, const Question& question)
    {
        m_failures.gives(result, object, question, {m_jacks.empty() ? E_NOINTERFACE : S_OK});
    }

    void describe(IKsJackDescription& descriptions, UINT index)
    {
        KSJACK_DESCRIPTION description = {};
        const HRESULT result = descriptions.GetJackDescription(index, &description);
        if (!m_failures.passes(result, {"IKsJackDescription::GetJackDescription", {argument(index)}}))
            return;
        sim::Jack& jack = m_jacks[index];
        jack.channels = static_cast<std::uint32_t>(description.ChannelMapping);
        jack.colour = static_cast<std::uint32_t>(description.Color);
        jack.connected = description.IsConnected != FALSE;
        jack.connection = description.ConnectionType;
        jack.geometricLocation = description.GeoLocation;
        jack.generalLocation = description.GenLocation;
        jack.portConnection = description.PortConnection;
    }

    void addCapabilities(IKsJackDescription2& descriptions, UINT index)
    {
        KSJACK_DESCRIPTION2 description = {};
        const HRESULT result = descriptions.GetJackDescription2(index, &description);
        if (!m_failures.passes(result, {"IKsJackDescription2::GetJackDescription2", {argument(index)}}))
            return;
        m_jacks[index].detectsPresence = (description.JackCapabilities & detectsPresence) != 0;
        m_jacks[index].changesFormat = (description.JackCapabilities & changesFormat) != 0;
        if ((description.JackCapabilities & ~(detectsPresence | changesFormat)) != 0 ||
            description.DeviceStateInfo != 0)
            m_recorder.note("A jack has capabilities that a machine file cannot contain.");
    }

    IPart& m_part;
    Failures& m_failures;
    Recorder& m_recorder;
    HRESULT m_result = S_OK;
    std::vector<sim::Jack> m_jacks;
};
}

std::vector<sim::Jack> surveyJacks(IPart& part, Failures& failures, Recorder& recorder)
{
    return JackSurvey(part, failures, recorder).jacks();
}
}
