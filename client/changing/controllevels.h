#pragma once

#include "client/changing/changecontext.h"
#include "client/changing/leveltarget.h"
#include "platform/coreaudio.h"
#include "sonavit/levelchange.h"
#include "sonavit/problem.h"
#include "sonavit/result.h"

#include <optional>
#include <vector>

namespace sonavit::changing
{
/// The levels of a hardware control while they change.
///
/// A new level for all channels is the level of each. A step keeps the balance: no channel moves further than the one
/// that reaches the end of its range first; channels whose range has one level stay out of it. All channels are set in
/// one call. Levels that are there already are not set again, so that set(get()) changes nothing even between the steps
/// of the hardware.
class ControlLevels
{
public:
    /// @p level, @p subject and @p context must outlive it.
    ControlLevels(IAudioVolumeLevel& level, const Subject& subject, ChangeContext& context);

    /// @return why the change was not made; no value if all calls succeeded
    std::optional<Problem> apply(const LevelChange& change);

    /// Gives each channel its level; one without a value keeps its own. If there are more or fewer channels than
    /// levels, all channels get the highest of the levels. The context learns whether any level is different
    /// afterwards.
    std::optional<Problem> set(const std::vector<std::optional<Decibels>>& levels);

private:
    Result<unsigned> channelCount() const;
    std::vector<Present> presentOf(unsigned count) const;
    Present present(unsigned channel) const;
    Result<float> levelOf(unsigned channel) const;
    bool isWhere(const std::vector<Present>& channels) const;
    std::optional<Problem> setEach(const std::vector<std::optional<Decibels>>& levels,
                                   const std::vector<Present>& channels);
    std::optional<Problem> changeOne(const LevelChange& change, unsigned channel);
    std::optional<Problem> changeAll(const LevelChange& change, unsigned count);
    /// Where a step leads each channel.
    Result<std::vector<float>> afterStep(const LevelChange& change, const std::vector<Present>& channels) const;
    Result<std::vector<float>> targets(const LevelChange& change, const std::vector<Present>& channels) const;

    std::optional<Problem> setAll(const std::vector<Present>& channels, std::vector<float> levels);
    std::optional<Problem> judge(const char* call, HRESULT result) const;

    IAudioVolumeLevel& m_level;
    const Subject& m_subject;
    ChangeContext& m_context;
};
}
