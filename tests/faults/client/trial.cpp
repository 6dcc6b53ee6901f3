#include "tests/faults/client/trial.h"

#include "client/watching/registrations.h"
#include "tests/faults/client/failures.h"

#include <algorithm>
#include <sstream>
#include <utility>

using namespace sonavit;

namespace faults::client
{
namespace
{
constexpr std::size_t longestList = 3; ///< of what is wrong, in one finding

std::string listed(const std::vector<std::string>& all)
{
    std::string text;
    for (std::size_t i = 0; i < std::min(all.size(), longestList); ++i)
        text += (i == 0 ? "" : "; ") + all[i];
    return all.size() > longestList ? text + "; and more" : text;
}

std::string listed(const std::vector<Problem>& all)
{
    std::vector<std::string> texts;
    for (const Problem& problem : all)
        texts.push_back(problem.operation() + " " + problem.codeText() + " " + problem.sentence());
    return texts.empty() ? "no problem" : listed(texts);
}

Facts factsOf(const Snapshot& snapshot)
{
    Answer answer;
    answer.add(snapshot);
    return answer.facts;
}
}

ClientTrial::ClientTrial(sim::Machine machine, std::shared_ptr<const Targets> targets, Operation operation)
    : m_machine(std::move(machine)),
      m_targets(std::move(targets)),
      m_operation(std::move(operation))
{
}

Record ClientTrial::perform(std::vector<Fault> faults)
{
    const std::size_t kept = watching::keptListeners();
    Stage stage(m_machine, *m_targets);
    Run run(stage.simulation(), std::move(faults));
    use(run, stage);
    stage.endSystem();
    judgeEnd(run, stage, kept);
    return std::move(run.record());
}

void ClientTrial::use(Run& run, Stage& stage)
{
    m_operation.arrange(stage);
    Stage::settle();
    const Facts former = m_operation.mayBeLate ? factsOf(stage.audio().snapshot()) : Facts();
    Answer answer;
    run.act(
        [&]
        {
            m_operation.act(stage, answer);
            Stage::settle();
        });
    if (m_operation.keepsSystem)
        answer.addProblems(stage.audio().snapshot()); // what was read on the way is told there
    stage.simulation().journal().recordReferences(false);
    m_operation.verify(stage, answer);
    if (!run.hasFaults() && !m_clean)
        m_clean = answer;
    if (!m_operation.keepsSystem)
        return;
    judge(run, answer, m_operation.changesMachine ? machineNow(stage) : m_clean->facts, former);
    tryAgain(run, stage);
}

/// What a System that begins now reads of all that operations change.
Facts ClientTrial::machineNow(Stage& stage) const
{
    const System audio(stage.options());
    Answer now;
    now.add(audio.snapshot());
    for (const EndpointId& controlled : {m_targets->controlled, m_targets->mutable_})
    {
        const std::optional<Card> card = audio.snapshot().cardOf(controlled);
        for (const Endpoint& endpoint : card ? card->endpoints() : std::vector<Endpoint>())
            now.add(audio.controls(endpoint.id()));
        if (card)
            now.add(audio.selectors(card->id()));
    }
    if (m_targets->selector)
        now.add(audio.selectors(m_targets->selecting));
    return now.facts;
}

void ClientTrial::judge(Run& run, const Answer& answer, const Facts& truth, const Facts& former) const
{
    const Record& record = run.record();
    if (!record.thrown.empty())
        run.report(Kind::exception, record.thrown);
    for (const std::string& complaint : answer.complaints)
        run.report(Kind::answer, complaint);
    for (const Problem& problem : answer.problems)
    {
        if (problem.kind() == Problem::Kind::internal || problem.kind() == Problem::Kind::noAnswer)
            run.report(Kind::answer, "the problem is of the layer itself: " + problem.sentence());
    }
    if (liesAboutValues(record.faults))
        return; // what the platform reports as a success, the layer passes on
    const Facts::Difference fromTruth = answer.facts.from(truth, former);
    const Facts::Difference fromClean = answer.facts.from(m_clean->facts, former);
    if (!fromTruth.wrong.empty())
        run.report(Kind::answer, "wrong: " + listed(fromTruth.wrong));
    const bool hasLost = !fromClean.lost.empty() || (m_clean->hasValue && !answer.hasValue);
    if (!hasLost)
        return;
    if (onlyReleasesFail(record.faults))
        run.report(Kind::answer, "a Release that throws takes something away: " + listed(fromClean.lost));
    else if ((m_operation.tellsWhy || !answer.hasValue) && mustBeTold(record.faults) && !answer.explainsItself &&
             !isTold(answer.problems, record.faults))
        run.report(Kind::answer,
                   "lost without a word: " + listed(fromClean.lost) + "; there is " + listed(answer.problems));
}

/// Everything is known again after a reading of everything, and events come.
void ClientTrial::tryAgain(Run& run, Stage& stage) const
{
    const sonavit::Result<Snapshot> again = stage.audio().refresh(Depth::everything);
    if (!again)
        return run.report(Kind::reuse, "nothing can be read afterwards: " + again.problem().sentence());
    stage.watches.clear();
    Stage::settle();
    const Snapshot now = stage.audio().snapshot();
    const Snapshot truth = System(stage.options()).snapshot();
    const Facts::Difference difference = factsOf(now).from(factsOf(truth));
    if (!difference.lost.empty() || !difference.wrong.empty())
        run.report(Kind::reuse, "not read again: " + listed(difference.lost) + listed(difference.wrong));
    if (now.problems() != truth.problems())
        run.report(Kind::reuse,
                   "problems stay: " + listed(now.problems()) + " in place of " + listed(truth.problems()));
    const std::optional<Endpoint> output = now.endpoint(m_targets->output);
    if (!output || !output->volume() || !output->volume()->isMuted)
        return;
    const bool isMuted = !*output->volume()->isMuted;
    stage.simulation().events().setVolume(output->id().text(), std::nullopt, isMuted);
    stage.advance(std::chrono::milliseconds(20)); // the shortest time between two volumes
    const std::optional<Endpoint> changed = stage.audio().endpoint(output->id());
    if (!changed || !changed->volume() || changed->volume()->isMuted != isMuted)
        run.report(Kind::reuse, "an event of a volume does not come any more");
}

/// The layer keeps nothing, apart from listeners that the platform does not let go and values that it does not free.
void ClientTrial::judgeEnd(Run& run, Stage& stage, std::size_t kept) const
{
    const sim::Census left = stage.left();
    Record& record = run.record();
    record.left = left;
    const long refused = refusedUnregistrations(record);
    if (left.references() != 0 || registeredClients(left) != refused ||
        left.taskBlocks() > unfreedValues(stage.simulation().journal().entries()))
        run.report(Kind::references, left.describe());
    if (static_cast<long>(watching::keptListeners() - kept) != refused)
        run.report(Kind::references, "a listener is kept that the platform has let go, or the other way round");
    if (stage.simulation().comUnderflows() != 0)
        run.report(Kind::references, "COM is left more often than it was entered");
    for (const std::string& violation : stage.violations)
        run.report(Kind::answer, violation);
}
}
