#include "client/changing/volumechange.h"

#include "client/changing/endpointlevel.h"
#include "client/reading/judge.h"
#include "client/reading/limits.h"

#include <algorithm>
#include <string>
#include <utility>

namespace sonavit::changing
{
namespace
{
std::optional<Problem> problemWith(const Endpoint::Content& content, EndpointField field)
{
    const auto found = std::find_if(content.problems.begin(), content.problems.end(),
                                    [&](const EndpointProblem& problem) { return problem.field == field; });
    return found == content.problems.end() ? std::nullopt : std::optional<Problem>(found->problem);
}

std::string whyNoVolume(const Endpoint::Content& content)
{
    const bool canHaveOne = content.state == State::active || content.state == State::unplugged;
    if (canHaveOne || !content.state)
        return "the endpoint has no volume control";
    return std::string("an endpoint that is ") + wordsOf(*content.state) + " has no volume control";
}

/// Why @p reading has no volume, after another attempt to activate it; no value if it has one.
std::optional<Problem> missingVolume(reading::EndpointReading& reading, const Subject& subject)
{
    if (reading.volume.get() == nullptr)
    {
        reading::readState(reading);
        reading::readVolume(reading);
    }
    if (reading.volume.get() != nullptr)
        return std::nullopt;
    for (const EndpointField field : {EndpointField::volume, EndpointField::state})
    {
        if (std::optional<Problem> problem = problemWith(reading.content, field))
            return problem;
    }
    return Problem(Problem::Kind::notSupported, subject.operation, subject.object, whyNoVolume(reading.content));
}

Result<Volume> readAgain(reading::EndpointReading& reading, const Subject& subject,
                         const std::optional<Problem>& refusal)
{
    reading::readVolume(reading);
    if (refusal)
        return *refusal;
    if (reading.content.volume)
        return *reading.content.volume;
    if (std::optional<Problem> problem = problemWith(reading.content, EndpointField::volume))
        return *problem;
    return Problem(Problem::Kind::notSupported, subject.operation, subject.object, whyNoVolume(reading.content));
}

std::optional<Problem> setMute(IAudioEndpointVolume& volume, const Subject& subject, MuteChange change,
                               ChangeContext& context)
{
    BOOL isMuted = FALSE;
    const HRESULT read = volume.GetMute(&isMuted);
    if (FAILED(read) && change == MuteChange::toggle)
        return Problem::ofCall("IAudioEndpointVolume::GetMute", subject.object, read);
    const bool wanted = change == MuteChange::toggle ? isMuted == FALSE : change == MuteChange::on;
    if (SUCCEEDED(read) && wanted == (isMuted != FALSE))
        return std::nullopt;
    const HRESULT result = volume.SetMute(wanted ? TRUE : FALSE, context.use());
    if (FAILED(result))
        return Problem::ofCall("IAudioEndpointVolume::SetMute", subject.object, result);
    return std::nullopt;
}

std::optional<Problem> setChannels(IAudioEndpointVolume& volume, const Subject& subject, const FormerLevels& levels,
                                   ChangeContext& context)
{
    std::optional<Problem> first;
    for (unsigned channel = 0; channel < levels.channels.size(); ++channel)
    {
        if (!levels.channels[channel])
            continue;
        std::optional<Problem> problem =
            EndpointLevel(volume, subject, context, channel).apply(*levels.channels[channel]);
        if (!first)
            first = std::move(problem);
    }
    return first;
}

/// The levels of the master and of each channel; no value for those that cannot be read.
std::vector<std::optional<float>> levelsOf(IAudioEndpointVolume& volume, unsigned channels)
{
    std::vector<std::optional<float>> levels;
    float level = 0;
    const auto add = [&](HRESULT result)
    { levels.push_back(SUCCEEDED(result) ? std::optional<float>(level) : std::nullopt); };
    add(volume.GetMasterVolumeLevel(&level));
    for (unsigned channel = 0; channel < channels; ++channel)
        add(volume.GetChannelVolumeLevel(channel, &level));
    return levels;
}

bool areSame(const std::vector<std::optional<float>>& before, const std::vector<std::optional<float>>& after)
{
    return before == after && std::find(after.begin(), after.end(), std::nullopt) == after.end();
}

std::optional<Decibels> highest(const std::vector<std::optional<Decibels>>& levels)
{
    return levels.empty() ? std::nullopt : *std::max_element(levels.begin(), levels.end());
}

/// A number that no endpoint has is none.
Result<unsigned> channelCount(IAudioEndpointVolume& volume, const Subject& subject)
{
    const char* const call = "IAudioEndpointVolume::GetChannelCount";
    UINT count = 0;
    const HRESULT result = volume.GetChannelCount(&count);
    if (FAILED(result))
        return Problem::ofCall(call, subject.object, result);
    if (count > reading::mostChannels)
        return Problem::ofCall(call, subject.object, reading::invalidData);
    return unsigned{count};
}

std::optional<Problem> setMaster(IAudioEndpointVolume& volume, const Subject& subject, const FormerLevels& levels,
                                 ChangeContext& context)
{
    const std::optional<Decibels> master = levels.master ? levels.master : highest(levels.channels);
    return EndpointLevel(volume, subject, context, std::nullopt).apply(*master);
}
}

bool FormerLevels::isEmpty() const
{
    return !master && !highest(channels);
}

Result<Volume> changeVolume(reading::EndpointReading& reading, const LevelChange& change, ChangeContext& context)
{
    const Subject subject{"setVolume", reading.content.id.text()};
    if (std::optional<Problem> problem = missingVolume(reading, subject))
        return *problem;
    EndpointLevel level(*reading.volume, subject, context, change.channel());
    return readAgain(reading, subject, level.apply(change));
}

Result<Volume> changeMute(reading::EndpointReading& reading, MuteChange change, ChangeContext& context)
{
    const Subject subject{change == MuteChange::toggle ? "toggleMute" : "setMute", reading.content.id.text()};
    if (std::optional<Problem> problem = missingVolume(reading, subject))
        return *problem;
    return readAgain(reading, subject, setMute(*reading.volume, subject, change, context));
}

Result<Volume> putBack(reading::EndpointReading& reading, const FormerLevels& levels, ChangeContext& context)
{
    const Subject subject{"restore", reading.content.id.text()};
    if (std::optional<Problem> problem = missingVolume(reading, subject))
        return *problem;
    IAudioEndpointVolume& volume = *reading.volume;
    const Result<unsigned> count = channelCount(volume, subject);
    if (!count)
        return count.problem();
    const std::vector<std::optional<float>> before = levelsOf(volume, *count);
    std::optional<Problem> problem = *count == levels.channels.size() && highest(levels.channels)
                                         ? setChannels(volume, subject, levels, context)
                                         : setMaster(volume, subject, levels, context);
    if (context.isUsed() && areSame(before, levelsOf(volume, *count)))
        context.noteNoEffect();
    return readAgain(reading, subject, problem);
}
}
