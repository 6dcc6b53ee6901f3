#include "simulator/machine/formfactor.h"

#include <algorithm>
#include <iterator>

namespace sim
{
namespace
{
struct JackForm
{
    GUID jack;
    FormFactor form;
};
}

FormFactor formFactorOf(const GUID& jack)
{
    static const JackForm forms[] = {{KSNODETYPE_SPEAKER, FormFactor::speakers},
                                     {KSNODETYPE_DESKTOP_SPEAKER, FormFactor::speakers},
                                     {KSNODETYPE_ROOM_SPEAKER, FormFactor::speakers},
                                     {KSNODETYPE_COMMUNICATION_SPEAKER, FormFactor::speakers},
                                     {KSNODETYPE_LOW_FREQUENCY_EFFECTS_SPEAKER, FormFactor::speakers},
                                     {KSNODETYPE_LINE_CONNECTOR, FormFactor::lineLevel},
                                     {KSNODETYPE_HEADPHONES, FormFactor::headphones},
                                     {KSNODETYPE_MICROPHONE, FormFactor::microphone},
                                     {KSNODETYPE_DESKTOP_MICROPHONE, FormFactor::microphone},
                                     {KSNODETYPE_PERSONAL_MICROPHONE, FormFactor::microphone},
                                     {KSNODETYPE_OMNI_DIRECTIONAL_MICROPHONE, FormFactor::microphone},
                                     {KSNODETYPE_MICROPHONE_ARRAY, FormFactor::microphone},
                                     {KSNODETYPE_PROCESSING_MICROPHONE_ARRAY, FormFactor::microphone},
                                     {KSNODETYPE_HEADSET, FormFactor::headset},
                                     {KSNODETYPE_HANDSET, FormFactor::handset},
                                     {KSNODETYPE_DIGITAL_AUDIO_INTERFACE, FormFactor::digitalPassthrough},
                                     {KSNODETYPE_SPDIF_INTERFACE, FormFactor::spdif},
                                     {KSNODETYPE_HDMI_INTERFACE, FormFactor::display},
                                     {KSNODETYPE_DISPLAYPORT_INTERFACE, FormFactor::display}};
    const auto isMeant = [&](const JackForm& each) { return IsEqualGUID(each.jack, jack); };
    const auto* const found = std::find_if(std::begin(forms), std::end(forms), isMeant);
    return found == std::end(forms) ? FormFactor::unknown : found->form;
}
}
