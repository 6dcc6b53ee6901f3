#include "sonavit/diagnosis.h"
#include "tools/sonavit/choice.h"
#include "tools/sonavit/commands/commands.h"
#include "tools/sonavit/failure.h"
#include "tools/sonavit/output/modeljson.h"
#include "tools/sonavit/output/modelwords.h"
#include "tools/sonavit/output/table.h"
#include "tools/sonavit/output/text.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace sonavit::program
{
namespace
{
constexpr std::size_t indentation = 2;
constexpr std::size_t narrowestText = 20; ///< columns; in a terminal without room for them nothing is wrapped

std::optional<std::string> textOr(const std::string& text)
{
    return text.empty() ? std::nullopt : std::optional<std::string>(text);
}

Json factJson(const Fact& fact)
{
    const std::string code = Problem::ofCall(fact.call, fact.object, fact.code).codeText();
    return Json::object({{"sentence", fact.sentence},
                         {"call", textOr(fact.call)},
                         {"object", textOr(fact.object)},
                         {"code", textOr(code)}});
}

Json reasonJson(const Reason& reason)
{
    Json facts = Json::array();
    for (const Fact& fact : reason.facts)
        facts.append(factJson(fact));
    return Json::object({{"question", keyOf(reason.question)},
                         {"title", reason.title},
                         {"facts", facts},
                         {"conclusion", reason.conclusion}});
}

/// Prints text below @p start columns, which @p before fills on its first line.
void showText(const Environment& environment, const std::string& before, std::size_t start, const std::string& text,
              Paint paint)
{
    const std::size_t room = environment.width < start + narrowestText ? 0 : environment.width - start;
    std::string margin = before;
    for (const std::string& line : wrapped(printable(text), room))
    {
        environment.out << margin << painted(line, paint, environment.hasColours) << "\n";
        margin = std::string(start, ' ');
    }
}

/// Adapters have long ids, of which the end tells their filters and parts apart: "…\\topo/00010000".
std::string shortObject(const std::string& object)
{
    const std::size_t brace = object.rfind('}');
    return brace == std::string::npos || brace + 1 == object.size() ? object : "…" + object.substr(brace + 1);
}

/// The call, and on what it was made unless that is the endpoint.
std::string source(const Fact& fact, const Endpoint& endpoint)
{
    const bool isElsewhere = !fact.object.empty() && EndpointId(fact.object) != endpoint.id();
    return isElsewhere ? fact.call + " on " + shortObject(fact.object) : fact.call;
}

void showReason(const Environment& environment, const Reason& reason, const Endpoint& endpoint)
{
    environment.out << "\n" << painted(printable(reason.title), Paint::bold, environment.hasColours) << "\n";
    const std::size_t digits = std::to_string(reason.facts.size()).size();
    const std::size_t start = indentation + digits + 2;
    for (std::size_t i = 0; i < reason.facts.size(); ++i)
    {
        const Fact& fact = reason.facts[i];
        const std::string number = paddedLeft(std::to_string(i + 1), indentation + digits) + "  ";
        showText(environment, number, start, fact.sentence, fact.code == 0 ? Paint::none : Paint::yellow);
        if (!fact.call.empty())
            showText(environment, std::string(start + indentation, ' '), start + indentation, source(fact, endpoint),
                     Paint::dim);
    }
    showText(environment, std::string(indentation, ' '), indentation, reason.conclusion, Paint::green);
}
}

void runExplain(Context& context)
{
    const Snapshot snapshot = readSnapshot(context);
    const CardEndpoint place = requestedEndpoint(context, snapshot);
    const Environment& environment = context.environment;
    const Result<std::vector<Reason>> reasons = explain(context.session.audio(), place.endpoint.id());
    if (!reasons)
        raise(reasons.problem(), printable(place.endpoint.title()) + " cannot be explained");
    if (context.arguments.isJson)
    {
        Json list = Json::array();
        for (const Reason& reason : *reasons)
            list.append(reasonJson(reason));
        environment.out << machineDocument(context.session.machineName())
                               .set("card", cardJson(place.card))
                               .set("endpoint", endpointNameJson(place.endpoint))
                               .set("reasons", list)
                               .text()
                        << "\n";
        return;
    }
    environment.out << painted(titleWords(place.endpoint), Paint::bold, environment.hasColours) << ", "
                    << wordsOf(place.endpoint.flow()) << ", " << stateWords(place.endpoint.state()) << "\n"
                    << painted(printable(place.endpoint.id().text()), Paint::dim, environment.hasColours) << "\n";
    for (const Reason& reason : *reasons)
        showReason(environment, reason, place.endpoint);
    environment.out << "\n";
    showText(environment, {}, 0, "Ids are shortened at their beginnings; --json has all of them.", Paint::dim);
}
}
