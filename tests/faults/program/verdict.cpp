#include "tests/faults/program/verdict.h"

#include "COM/identifiers.h"
#include "simulator/machine/propertykeys.h"
#include "sonavit/problem.h"
#include "tests/faults/client/failures.h"
#include "tests/faults/program/documents.h"

#include <algorithm>
#include <set>
#include <thread>

using nlohmann::json;

namespace faults::program
{
using client::Facts;
using client::hasFailedUnregistration;
using client::liesAboutValues;
using client::mustBeTold;
using client::onlyReleasesFail;
using client::unfreedValues;

namespace
{
/// "sonavit: …" on one line.
bool isOneSentence(const std::string& text)
{
    const std::string prefix = "sonavit: ";
    return text.rfind(prefix, 0) == 0 && text.size() > prefix.size() + 1 && text.find('\n') == text.size() - 1;
}

/// Verbs that answer and say with their exit code that something is missing or wrong.
bool mayAnswerWithFailure(const std::string& verb)
{
    return verb == "restore" || verb == "doctor" || verb == "ask";
}

/// What the program says on standard error beyond what it says without failures.
std::string complaintOf(const Printed& clean, const Printed& now)
{
    const bool hasUsualNote = !clean.err.empty() && now.err.rfind(clean.err, 0) == 0;
    return hasUsualNote ? now.err.substr(clean.err.size()) : now.err;
}

class Verdict
{
public:
    Verdict(Run& run, const CommandLine& line, const Printed& clean, const Printed& now)
        : m_run(run),
          m_line(line),
          m_clean(clean),
          m_now(now),
          m_complaint(complaintOf(clean, now))
    {
    }

    void judge()
    {
        judgeCode();
        judgeComplaint();
        if (m_line.isJson)
            judgeDocuments();
    }

private:
    const std::string& verb() const { return m_line.words.front(); }
    const std::vector<Fault>& faults() const { return m_run.record().faults; }
    void report(const std::string& text) { m_run.report(Kind::answer, text); }

    void judgeCode()
    {
        if (m_now.code != 0 && m_now.code != 1 && m_now.code != 3)
            report("exit code " + std::to_string(m_now.code) + ": " + m_now.err);
        if (m_now.code == 3 && m_clean.code != 3 && !liesAboutValues(faults()) && !m_line.usesModel)
            report("what is there is said to be missing: " + m_now.err);
        if (m_now.code != m_clean.code && onlyReleasesFail(faults()))
            report("a Release that throws changes the exit code: " + m_now.err);
    }

    void judgeComplaint()
    {
        const bool answers = m_now.code == 0 || (mayAnswerWithFailure(verb()) && !m_now.out.empty() && !isError());
        if (answers && !m_complaint.empty())
            report("there is an answer and a complaint: " + m_complaint);
        if (!answers && !isOneSentence(m_complaint))
            report("not one sentence: \"" + m_complaint + "\"");
    }

    bool isError() const { return m_now.out.find("\"exitCode\"") != std::string::npos; }

    void judgeDocuments()
    {
        try
        {
            const std::vector<json> documents = documentsIn(m_now.out, verb() == "monitor");
            for (const json& document : documents)
                judgeDocument(document);
            if (m_now.code != 0 && !m_complaint.empty())
                judgeError(documents.back());
            else if (verb() != "monitor" && !m_line.changesMachine && !m_line.usesModel)
                judgeValues(documents.front());
        }
        catch (const json::exception& error)
        {
            report(std::string("not JSON: ") + error.what() + ": " + m_now.out);
        }
    }

    void judgeDocument(const json& document)
    {
        const bool isFile = (verb() == "save" || verb() == "capture") && !document.contains("error");
        if (!isFile && document.value("schemaVersion", 0) != 2)
            report("a document without its version: " + document.dump());
    }

    void judgeError(const json& document)
    {
        if (document.value("exitCode", -1) != m_now.code)
            report("the exit code in JSON is another one: " + document.dump());
        if ("sonavit: " + document.value("error", "") + "\n" != m_complaint)
            report("the error in JSON is another one: " + document.dump());
    }

    /// What differs from the answer without failures is missing, and a problem says why.
    void judgeValues(const json& document)
    {
        if (verb() == "capture" || verb() == "doctor" || verb() == "explain" || liesAboutValues(faults()))
            return;
        const Facts::Difference difference = factsOf(document).from(factsOf(json::parse(m_clean.out)));
        if (!difference.wrong.empty())
            report("wrong: " + difference.wrong.front());
        if (difference.lost.empty())
            return;
        if (onlyReleasesFail(faults()))
            report("a Release that throws takes something away: " + difference.lost.front());
        else if (m_line.saysProblems && mustBeTold(faults()) && !isNamed(document))
            report("lost without a word: " + difference.lost.front());
    }

    bool isNamed(const json& document) const
    {
        return std::any_of(faults().begin(), faults().end(),
                           [&](const Fault& fault)
                           {
                               const char* const code = fault.mode == Mode::null ? "0x80004003" : "0x80004005";
                               const std::string& operation = fault.call.entry.operation;
                               return namesCode(document, operation, code) ||
                                      (operation == "IMMDevice::GetId" &&
                                       namesCode(document, "IMMDeviceEnumerator::GetDefaultAudioEndpoint", code));
                           });
    }

    Run& m_run;
    const CommandLine& m_line;
    const Printed& m_clean;
    const Printed& m_now;
    const std::string m_complaint;
};

/// Calls of the object model that kept something: those on this thread that have returned it.
std::vector<sim::JournalEntry> succeededHere(const sim::JournalEntries& calls, const std::string& operation)
{
    std::vector<sim::JournalEntry> result;
    for (const sim::JournalEntry& call : calls.of(operation).onThread(std::this_thread::get_id()))
    {
        if (call.end == sim::CallEnd::returned && SUCCEEDED(call.result))
            result.push_back(call);
    }
    return result;
}

/// Of a call that succeeds with null nothing is kept.
long emptyHanded(const std::vector<Fault>& faults, const std::string& operation, const std::string& argument = {})
{
    return std::count_if(faults.begin(), faults.end(),
                         [&](const Fault& fault)
                         {
                             const sim::JournalEntry& call = fault.call.entry;
                             return fault.mode == Mode::null && call.operation == operation &&
                                    call.thread == std::this_thread::get_id() &&
                                    (argument.empty() || call.arguments.front() == argument);
                         });
}

/// The session enters COM first, the object model after it.
bool isOfModel(const std::vector<Fault>& faults)
{
    return std::any_of(faults.begin(), faults.end(),
                       [](const Fault& fault)
                       { return fault.call.entry.operation == "CoInitialize" && fault.call.number > 1; });
}

long keptLists(const sim::JournalEntries& calls, const std::vector<Fault>& faults)
{
    long count = 0;
    for (const char* const operation : {"IPart::EnumPartsIncoming", "IPart::EnumPartsOutgoing"})
        count += static_cast<long>(succeededHere(calls, operation).size()) - emptyHanded(faults, operation);
    return count;
}

long keptTexts(const sim::JournalEntries& calls, const sim::Machine& machine, const std::vector<Fault>& faults)
{
    const std::string key = sim::keyText(propertykeys::directSoundGuid);
    long count = -emptyHanded(faults, "IPropertyStore::GetValue", key);
    for (const sim::JournalEntry& call : succeededHere(calls, "IPropertyStore::GetValue"))
    {
        const sim::Endpoint* const endpoint = machine.endpoint(call.object);
        const bool isThere =
            endpoint != nullptr && sim::findProperty(endpoint->properties, propertykeys::directSoundGuid) != nullptr;
        count += isThere && call.arguments.front() == key ? 1 : 0;
    }
    return count;
}
}

void judge(Run& run, const CommandLine& line, const Printed& clean, const Printed& now)
{
    Verdict(run, line, clean, now).judge();
}

void judgeLeft(Run& run)
{
    sim::Simulation& simulation = run.simulation();
    simulation.events().waitForClients();
    const sim::Census left = simulation.census();
    Record& record = run.record();
    record.left = left;
    const sim::JournalEntries calls = simulation.journal().entries();
    const long lists = keptLists(calls, record.faults);
    const long texts = keptTexts(calls, simulation.machine(), record.faults);
    const long unfreed = unfreedValues(calls);
    const bool isKept = hasFailedUnregistration(record.faults);
    if (!isKept && (left.references() != lists || left.references("IPartsList") != lists || !left.clients.empty()))
        run.report(Kind::references, left.describe());
    if (left.taskBlocks() < texts || left.taskBlocks() > texts + unfreed)
        run.report(Kind::references, std::to_string(texts) + " blocks are kept on purpose: " + left.describe());
    if (simulation.comUnderflows() != 0)
        run.report(isOfModel(record.faults) ? Kind::references : Kind::answer,
                   "COM is left more often than it was entered");
}
}
