#include "sonavit/settings.h"

#include "sonavit/settingsfile.h"

#include <algorithm>
#include <cstddef>

namespace sonavit
{
inline namespace v1
{
Result<Settings> Settings::parse(std::string_view text)
{
    return settingsfile::read(text);
}

std::string Settings::text() const
{
    return settingsfile::write(*this);
}

bool operator==(const Settings::ControlSetting& left, const Settings::ControlSetting& right)
{
    return left.id == right.id && left.name == right.name && left.channels == right.channels &&
           left.isMuted == right.isMuted;
}

bool operator==(const Settings::SelectorSetting& left, const Settings::SelectorSetting& right)
{
    return left.id == right.id && left.name == right.name && left.input == right.input &&
           left.inputName == right.inputName;
}

bool operator==(const Settings::EndpointSetting& left, const Settings::EndpointSetting& right)
{
    return left.name == right.name && left.flow == right.flow && left.reference == right.reference &&
           left.channels == right.channels && left.master == right.master && left.isMuted == right.isMuted &&
           left.controls == right.controls && left.selectors == right.selectors;
}

bool operator==(const Settings& left, const Settings& right)
{
    return left.endpoints == right.endpoints;
}

bool RestoreReport::isComplete() const noexcept
{
    return std::all_of(settings.begin(), settings.end(),
                       [](const RestoredSetting& setting)
                       {
                           return setting.outcome == RestoredSetting::Outcome::restored ||
                                  setting.outcome == RestoredSetting::Outcome::unchanged;
                       });
}

std::string RestoreReport::sentence() const
{
    using Outcome = RestoredSetting::Outcome;
    const auto count = [this](Outcome outcome)
    {
        return std::count_if(settings.begin(), settings.end(),
                             [outcome](const RestoredSetting& setting) { return setting.outcome == outcome; });
    };
    std::string sentence = std::to_string(count(Outcome::restored)) + " restored, " +
                           std::to_string(count(Outcome::unchanged)) + " unchanged";
    if (const auto notFound = count(Outcome::notFound))
        sentence += ", " + std::to_string(notFound) + " not found";
    if (const auto failed = count(Outcome::failed))
        sentence += ", " + std::to_string(failed) + " failed";
    return sentence;
}

const char* keyOf(RestoredSetting::Outcome outcome) noexcept
{
    switch (outcome)
    {
    case RestoredSetting::Outcome::restored:
        return "restored";
    case RestoredSetting::Outcome::unchanged:
        return "unchanged";
    case RestoredSetting::Outcome::notFound:
        return "notFound";
    case RestoredSetting::Outcome::failed:
        break;
    }
    return "failed";
}
}
}
