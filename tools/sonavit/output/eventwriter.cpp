#include "tools/sonavit/output/eventwriter.h"

#include "tools/sonavit/endpoint.h"
#include "tools/sonavit/output/json.h"
#include "tools/sonavit/output/modelwords.h"
#include "tools/sonavit/output/table.h"
#include "tools/sonavit/output/text.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <ctime>
#include <utility>

namespace sonavit::program
{
namespace
{
constexpr std::size_t widestName = 24;
constexpr const char* arrow = " \xE2\x86\x92 ";

const char* eventKey(MonitorEvent::Kind kind)
{
    switch (kind)
    {
    case MonitorEvent::Kind::added:
        return "added";
    case MonitorEvent::Kind::removed:
        return "removed";
    case MonitorEvent::Kind::stateChanged:
        return "stateChanged";
    case MonitorEvent::Kind::defaultChanged:
        return "defaultChanged";
    case MonitorEvent::Kind::volumeChanged:
        break;
    }
    return "volumeChanged";
}

/// "17:04:59.250"
std::string clockText(const std::tm& whole, std::chrono::system_clock::time_point time)
{
    const auto since = std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch()).count();
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%02d:%02d:%02d.%03d", whole.tm_hour, whole.tm_min, whole.tm_sec,
                  static_cast<int>(since % 1000));
    return text.data();
}

/// For people: the local time of day.
std::string localTimeText(std::chrono::system_clock::time_point time)
{
    const std::time_t seconds = std::chrono::system_clock::to_time_t(time);
    return clockText(*std::localtime(&seconds), time);
}

/// For programs: date and time in UTC.
std::string universalTimeText(std::chrono::system_clock::time_point time)
{
    const std::time_t seconds = std::chrono::system_clock::to_time_t(time);
    const std::tm whole = *std::gmtime(&seconds);
    std::array<char, 64> date{};
    std::snprintf(date.data(), date.size(), "%04d-%02d-%02dT", whole.tm_year + 1900, whole.tm_mon + 1, whole.tm_mday);
    return date.data() + clockText(whole, time) + "Z";
}

std::string levelWords(const Level& level)
{
    return percentText(level.percent) + " (" + decibelText(level.decibels) + ")";
}

std::string volumeWords(const MonitorEvent& event)
{
    const EndpointLevel& now = event.level;
    const EndpointLevel& before = event.previousLevel;
    const bool isOtherMute = now.isMuted != before.isMuted;
    const bool isOtherLevel =
        now.master.percent != before.master.percent || now.master.decibels != before.master.decibels;
    std::string words;
    if (isOtherLevel)
        words = "volume " + levelWords(before.master) + arrow + levelWords(now.master);
    else if (!isOtherMute)
        words =
            "volume " + levelWords(now.master); // only the balance of the channels, or a change that is already undone
    if (isOtherMute && now.isMuted)
        words += (words.empty() ? "" : ", ") + std::string(*now.isMuted ? "muted" : "no longer muted");
    return words;
}

const char* roleKey(ERole role)
{
    if (role == eCommunications)
        return "communications";
    return role == eMultimedia ? "multimedia" : "console";
}

std::string defaultWords(const MonitorEvent& event)
{
    const std::string what = std::string("default ") + flowWords(event.flow) + " for " + roleKey(event.role);
    return event.subject.endpointId.empty() ? "no " + what + " any more" : what;
}

std::string eventWords(const MonitorEvent& event)
{
    switch (event.kind)
    {
    case MonitorEvent::Kind::added:
        return "added, " + stateWords(event.state);
    case MonitorEvent::Kind::removed:
        return "removed";
    case MonitorEvent::Kind::stateChanged:
        return stateWords(event.previousState) + arrow + stateWords(event.state);
    case MonitorEvent::Kind::defaultChanged:
        return defaultWords(event);
    case MonitorEvent::Kind::volumeChanged:
        break;
    }
    return volumeWords(event);
}

Paint eventPaint(MonitorEvent::Kind kind)
{
    switch (kind)
    {
    case MonitorEvent::Kind::added:
        return Paint::green;
    case MonitorEvent::Kind::removed:
        return Paint::red;
    case MonitorEvent::Kind::stateChanged:
        return Paint::yellow;
    case MonitorEvent::Kind::defaultChanged:
        return Paint::cyan;
    case MonitorEvent::Kind::volumeChanged:
        break;
    }
    return Paint::none;
}

Json eventJson(const MonitorEvent& event, const std::optional<std::string>& machine)
{
    const EventSubject& subject = event.subject;
    const bool isCardKnown = !subject.cardName.empty(); // not for a default that does not exist (yet)
    Json result = Json::document({{"machine", machine},
                                  {"time", universalTimeText(event.time)},
                                  {"event", eventKey(event.kind)},
                                  {"card", isCardKnown ? Json(subject.cardId) : Json()},
                                  {"cardName", isCardKnown ? Json(subject.cardName) : Json()},
                                  {"endpoint", subject.endpointId.empty() ? Json() : Json(subject.endpointId)},
                                  {"endpointName", subject.endpointName}});
    if (event.kind == MonitorEvent::Kind::volumeChanged)
    {
        const Level& master = event.level.master;
        result.set("volume", Json::object({{"percent", master.percent}, {"decibels", master.decibels}}));
        result.set("muted", event.level.isMuted);
    }
    if (event.kind == MonitorEvent::Kind::defaultChanged)
        result.set("flow", flowKey(event.flow)).set("role", roleKey(event.role));
    if (event.kind == MonitorEvent::Kind::stateChanged)
        result.set("previousState", stateKey(event.previousState));
    if (event.kind == MonitorEvent::Kind::stateChanged || event.kind == MonitorEvent::Kind::added)
        result.set("state", stateKey(event.state));
    return result;
}
}

EventWriter::EventWriter(const Environment& environment, bool isJson, std::optional<std::string> machine)
    : m_environment(environment),
      m_isJson(isJson),
      m_machine(std::move(machine))
{
}

void EventWriter::expect(const EventSubject& subject)
{
    if (subject.flow)
        m_names.emplace(subject.cardName, subject.endpointTitle, *subject.flow);
    m_cardWidth = std::min(std::max(m_cardWidth, displayWidth(subject.cardName)), widestName);
    m_endpointWidth = std::min(std::max(m_endpointWidth, displayWidth(shownTitle(subject))), widestName);
}

/// Whether an endpoint of the other flow, on the same card, has the same title.
bool EventWriter::hasTwin(const EventSubject& subject) const
{
    const EDataFlow other = subject.flow == std::optional<EDataFlow>(eRender) ? eCapture : eRender;
    return subject.flow && m_names.count({subject.cardName, subject.endpointTitle, other}) > 0;
}

std::string EventWriter::shownTitle(const EventSubject& subject) const
{
    const std::string title = printable(subject.endpointTitle);
    if (!hasTwin(subject))
        return shortened(title, widestName);
    const std::string flow = " (" + std::string(flowWords(*subject.flow)) + ")";
    return shortened(title, widestName - flow.size()) + flow;
}

void EventWriter::write(const MonitorEvent& event)
{
    if (isOutputLost())
        return;
    expect(event.subject);
    m_environment.out << (m_isJson ? eventJson(event, m_machine).line() : line(event)) << "\n" << std::flush;
}

bool EventWriter::isOutputLost() const
{
    return !m_environment.out;
}

std::string EventWriter::line(const MonitorEvent& event) const
{
    const bool hasColours = m_environment.hasColours;
    const std::string card = padded(shortened(printable(event.subject.cardName), m_cardWidth), m_cardWidth);
    const std::string endpoint = padded(shownTitle(event.subject), m_endpointWidth);
    return painted(localTimeText(event.time), Paint::dim, hasColours) + "  " + card + "  " +
           painted(endpoint, Paint::bold, hasColours) + "  " +
           painted(eventWords(event), eventPaint(event.kind), hasColours);
}
}
