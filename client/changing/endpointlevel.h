#pragma once

#include "client/changing/changecontext.h"
#include "client/changing/leveltarget.h"
#include "platform/coreaudio.h"
#include "sonavit/levelchange.h"
#include "sonavit/problem.h"
#include "sonavit/result.h"

#include <optional>

namespace sonavit::changing
{
/// The level of an endpoint, of all channels or of one, while it changes.
///
/// Of all channels it is the platform's master level: the platform keeps the distances between the channels. A level
/// that is there already is not set again, so that set(get()) changes nothing.
class EndpointLevel
{
public:
    /// @p volume, @p subject and @p context must outlive it.
    EndpointLevel(IAudioEndpointVolume& volume, const Subject& subject, ChangeContext& context,
                  std::optional<unsigned> channel);

    /// @return why the change was not made; no value if all calls succeeded
    std::optional<Problem> apply(const LevelChange& change);

private:
    std::optional<Problem> missingChannel();
    std::optional<Problem> applyScalar(LevelChange::Direction direction, Percent amount);
    std::optional<Problem> applyDecibels(const LevelChange& change);
    std::optional<Problem> takeSteps(bool isUp, unsigned count);

    Present present();
    Result<float> scalar();

    /// The problem of a call that failed.
    std::optional<Problem> judge(const char* call, HRESULT result) const;

    IAudioEndpointVolume& m_volume;
    const Subject& m_subject;
    ChangeContext& m_context;
    std::optional<unsigned> m_channel;
};
}
