/// @file
/// What a survey asks a part itself: its controls, and a connector's type and jacks.
#pragma once

#include "client/capturing/failures.h"
#include "client/reading/handle.h"
#include "platform/coreaudio.h"
#include "simulator/machine/topology.h"

#include <cstddef>
#include <vector>

namespace sonavit::capturing
{
/// Asks one part, and fills its record.
class ControlSurvey
{
public:
    /// All of them must outlive the survey.
    ControlSurvey(IPart& part, sim::Connector& record, Failures& failures, Recorder& recorder)
        : m_part(part),
          m_record(record),
          m_failures(failures),
          m_recorder(recorder)
    {
    }

    /// The controls that the part lists. If their list cannot be read it is asked for those that a machine can have.
    void askControls();
    /// Type, direction, and the jacks of a physical connector.
    void askConnector(IConnector& connector);

private:
    /// An item of the list of controls.
    struct Item
    {
        HRESULT result = S_OK; ///< of IPart::GetControlInterface
        bool isThere = false;
        HRESULT nameResult = S_OK;
        HRESULT idResult = S_OK;
        sim::FurtherControl control;

        bool isKnown() const { return isThere && SUCCEEDED(idResult); }
    };

    /// One of the controls that a machine answers for.
    struct OwnControl
    {
        const IID& iid;
        const char* name;
        bool isThere;
    };

    /// The machine lists its own controls first.
    void place(const std::vector<Item>& items, const std::vector<OwnControl>& controls);
    void judge(const Item& item, std::size_t index, const OwnControl* own);
    std::vector<Item> listedControls(bool& isComplete);
    Item listedControl(UINT index);
    template<class I>
    reading::Handle<I> activated(const IID& iid, const char* name);
    bool askVolume();
    bool askMute();
    bool askSelector();
    sim::ChannelLevel channelLevel(IAudioVolumeLevel& level, UINT channel);

    IPart& m_part;
    sim::Connector& m_record;
    Failures& m_failures;
    Recorder& m_recorder;
};

/// The descriptions of a connector's jacks. A machine has either both interfaces or none.
std::vector<sim::Jack> surveyJacks(IPart& part, Failures& failures, Recorder& recorder);

/// IPart::Activate for any context as a question.
Question activation(const char* interfaceName);
}
