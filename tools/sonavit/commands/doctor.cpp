#include "sonavit/diagnosis.h"
#include "tools/sonavit/choice.h"
#include "tools/sonavit/commands/commands.h"
#include "tools/sonavit/failure.h"
#include "tools/sonavit/output/modeljson.h"
#include "tools/sonavit/output/modelwords.h"
#include "tools/sonavit/output/table.h"
#include "tools/sonavit/output/text.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace sonavit::program
{
namespace
{
using Kind = Finding::Kind;

constexpr std::size_t start = 10;     ///< the column in which sentences begin
constexpr std::size_t narrowest = 20; ///< columns; a terminal without room for them gets each sentence on one line

/// Before a sentence of a finding.
struct Label
{
    const char* word;
    Paint paint;
};

Label labelOf(Kind kind)
{
    switch (kind)
    {
    case Kind::failure:
        return {"failed", Paint::red};
    case Kind::data:
        return {"wrong", Paint::yellow};
    case Kind::oddity:
        break;
    }
    return {"odd", Paint::cyan};
}

/// A sentence behind its label, wrapped below its beginning.
void showSentence(const Environment& environment, const Label& label, const std::string& sentence)
{
    if (sentence.empty())
        return;
    const std::size_t room = environment.width < start + narrowest ? 0 : environment.width - start;
    std::string before = "  " + painted(label.word, label.paint, environment.hasColours);
    before += std::string(start - 2 - std::string(label.word).size(), ' ');
    for (const std::string& line : wrapped(printable(sentence), room))
    {
        environment.out << before << line << "\n";
        before = std::string(start, ' ');
    }
}

void showFinding(const Environment& environment, const Finding& finding)
{
    showSentence(environment, labelOf(finding.kind), finding.sentence);
    showSentence(environment, {"effect", Paint::dim}, finding.effect);
    showSentence(environment, {"cause", Paint::dim}, finding.cause);
}

/// "3 findings: 1 call failed, 2 answers are wrong, 1 thing is odd".
std::string summary(const std::vector<Finding>& findings)
{
    const auto count = [&](Kind kind)
    {
        const auto isOfKind = [kind](const Finding& finding) { return finding.kind == kind; };
        return static_cast<std::size_t>(std::count_if(findings.begin(), findings.end(), isOfKind));
    };
    std::vector<std::string> texts;
    if (const std::size_t failures = count(Kind::failure))
        texts.push_back(counted(failures, "call") + " failed");
    if (const std::size_t data = count(Kind::data))
        texts.push_back(counted(data, "thing") + (data == 1 ? " is wrong" : " are wrong"));
    if (const std::size_t oddities = count(Kind::oddity))
        texts.push_back(counted(oddities, "thing") + (oddities == 1 ? " is odd" : " are odd"));
    return counted(findings.size(), "finding") + ": " + enumeration(texts) + ".";
}

void showFindings(const Environment& environment, const std::vector<Finding>& findings)
{
    const Finding* former = nullptr;
    for (const Finding& finding : findings)
    {
        if (former != nullptr)
            environment.out << "\n";
        const bool isSame = former != nullptr && former->subject == finding.subject &&
                            former->endpoint == finding.endpoint && former->card == finding.card;
        if (!isSame)
            environment.out << painted(printable(finding.subject), Paint::bold, environment.hasColours) << "\n";
        showFinding(environment, finding);
        former = &finding;
    }
    environment.out << "\n" << summary(findings) << "\n";
}

/// Null for a sentence that there is not.
Json sentenceJson(const std::string& sentence)
{
    return sentence.empty() ? Json() : Json(sentence);
}

Json findingJson(const Finding& finding)
{
    return Json::object({{"kind", keyOf(finding.kind)},
                         {"rule", finding.rule},
                         {"endpoint", finding.endpoint ? Json(finding.endpoint->text()) : Json()},
                         {"card", finding.card ? Json(finding.card->text()) : Json()},
                         {"subject", finding.subject},
                         {"sentence", finding.sentence},
                         {"effect", sentenceJson(finding.effect)},
                         {"cause", sentenceJson(finding.cause)},
                         {"problem", finding.problem ? problemJson(*finding.problem) : Json()}});
}

void showJson(const Context& context, const std::vector<Finding>& findings)
{
    Json list = Json::array();
    for (const Finding& finding : findings)
        list.append(findingJson(finding));
    context.environment.out << machineDocument(context.session.machineName()).set("findings", list).text() << "\n";
}

/// The endpoint that the user names; no value for all.
std::optional<Endpoint> chosenEndpoint(const Context& context)
{
    if (context.arguments.endpoint.empty())
        return std::nullopt;
    return requestedEndpoint(context, readSnapshot(context)).endpoint;
}
}

void runDoctor(Context& context)
{
    const std::optional<Endpoint> endpoint = chosenEndpoint(context);
    System& audio = context.session.audio();
    const Result<std::vector<Finding>> findings = endpoint ? diagnose(audio, endpoint->id()) : diagnose(audio);
    if (!findings)
        raise(findings.problem(), "the sound hardware cannot be examined");
    if (context.arguments.isJson)
        showJson(context, *findings);
    else if (findings->empty() && audio.snapshot().endpoints().empty())
        context.environment.out << "There is no sound hardware to examine.\n";
    else if (findings->empty())
        context.environment.out << "Nothing is wrong with "
                                << (endpoint ? titleWords(*endpoint) : "the sound hardware of this computer") << ".\n";
    else
        showFindings(context.environment, *findings);
    if (!findings->empty())
        throw Answered(exitFailed);
}
}
