/// @file
/// A device format for a while.
#pragma once

#include "sonavit/export.h"
#include "sonavit/format.h"
#include "sonavit/ids.h"
#include "sonavit/result.h"

#include <memory>

namespace sonavit
{
inline namespace v1
{
/// Holds a device format that System::holdFormat() has set, and puts the former one back at its end or at the end of
/// its System, whichever is first, unless the format is another one by then. One that was moved from can only be
/// assigned, ended or destroyed. Any thread may use it, but only one at a time may move it.
class SONAVIT_CLIENT_API FormatHold
{
public:
    FormatHold(FormatHold&& other) noexcept;
    FormatHold& operator=(FormatHold&& other) noexcept; ///< ends what this one held
    /// Calls end() and ignores its result.
    ~FormatHold();

    const EndpointId& endpoint() const noexcept;
    const Format& former() const noexcept;
    const Format& held() const noexcept; ///< as the platform reported it afterwards

    /// Puts the former format back and waits for it, at most Options::patience. A second call, or one after the end of
    /// the System, does nothing.
    /// @return Done, with the token of the events that follow; a Problem with the call that the platform refuses;
    /// Kind::notThere if the format is no longer the held one; Kind::noAnswer if the platform has not answered: the
    /// worker puts the format back when it can
    Result<Done> end();

private:
    friend class System;
    struct State;
    explicit FormatHold(std::shared_ptr<State> state) noexcept;

    std::shared_ptr<State> m_state;
};
}
}
