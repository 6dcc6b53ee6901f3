/// Device formats and speakers in words and in JSON.
#pragma once

#include "platform/coreaudio.h"
#include "tools/sonavit/output/json.h"

#include <string>
#include <vector>

namespace sonavit::program
{
/// "48000 Hz, 24 bit, 2 channels (stereo)", or "-".
std::string formatWords(const WAVEFORMATEXTENSIBLE& format);
Json formatJson(const WAVEFORMATEXTENSIBLE& format);

/// "front left" and so on, one for each bit of a speaker mask.
std::vector<std::string> speakerNames(unsigned mask);

/// "stereo", "5.1 surround"; for other masks the speakers one by one.
std::string speakerWords(unsigned mask);
}
