/// The operations that both kinds of volume controller share; included by their two source files only.
#pragma once

#include "libSonavit/volumecontroller.h"

#include <cstdint>

namespace volumecontroller
{
/// The number without its fraction, low 32 bits; 0 for what no 64-bit integer holds.
inline unsigned int truncated(double value)
{
    constexpr double limit = 9223372036854775808.0; // 2^63
    if (!(value >= -limit && value < limit))
        return 0;
    return static_cast<unsigned int>(static_cast<std::uint64_t>(static_cast<std::int64_t>(value)));
}
}

template<class Policy>
VolumeController<Policy>::VolumeController(const Policy& policy) : m_policy(policy)
{
}

template<class Policy>
VolumeController<Policy>::VolumeController(const VolumeController& other) = default;

template<class Policy>
VolumeController<Policy>& VolumeController<Policy>::operator=(const VolumeController& other) = default;

template<class Policy>
void VolumeController<Policy>::initialize(const Policy& policy)
{
    m_policy = policy;
}

template<class Policy>
const qor::String& VolumeController<Policy>::ownerName() const
{
    return m_policy.ownerName;
}

template<class Policy>
const GUID& VolumeController<Policy>::ownerType() const
{
    return m_policy.ownerType;
}
