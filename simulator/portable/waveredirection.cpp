#include "simulator/waveredirection.h"

namespace sim
{
WaveRedirection::WaveRedirection(const void*) {}

WaveRedirection::~WaveRedirection() = default;
}
