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
using client::liesAboutValues;
using client::mustBeTold;
using client::onlyReleasesFail;
using client::refusedUnregistrations;
using client::registeredClients;
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

/// The note about endpoints whose properties are closed to this account. It counts those that are listed.
const char* const closedProperties = "sonavit: the system does not let this account read the properties of ";

std::string withoutFirstLine(const std::string& text)
{
    const std::size_t end = text.find('\n');
    return end == std::string::npos ? std::string() : text.substr(end + 1);
}

/// What the program says on standard error beyond the notes that it also prints without failures, or before an error.
std::string complaintOf(const Printed& clean, const Printed& now)
{
    const auto hasNote = [](const Printed& printed) { return printed.err.rfind(closedProperties, 0) == 0; };
    const bool isNoted = hasNote(now) && (hasNote(clean) || now.code != 0);
    const std::string said = isNoted ? withoutFirstLine(now.err) : now.err;
    if (clean.code != 0)
        return said; // the rest is the error of the clean call
    const std::string usual = hasNote(clean) ? withoutFirstLine(clean.err) : clean.err;
    return said.rfind(usual, 0) == 0 ? said.substr(usual.size()) : said;
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
        const bool mayNote = verb() == "capture"; // what the file replays as a failure
        if (answers && !mayNote && !m_complaint.empty())
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
bool isEmptyHanded(const Fault& fault, const std::string& operation)
{
    const sim::JournalEntry& call = fault.call.entry;
    return fault.mode == Mode::null && call.operation == operation && call.thread == std::this_thread::get_id();
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
    {
        count += static_cast<long>(succeededHere(calls, operation).size());
        count -= std::count_if(faults.begin(), faults.end(),
                               [&](const Fault& fault) { return isEmptyHanded(fault, operation); });
    }
    return count;
}

/// Whether the call reads a DirectSound GUID that is a string: its memory is kept.
bool readsDirectSoundText(const sim::JournalEntry& call, const sim::Machine& machine)
{
    const sim::Endpoint* const endpoint = machine.endpoint(call.object);
    if (endpoint == nullptr || call.arguments.front() != sim::keyText(propertykeys::directSoundGuid))
        return false;
    const sim::PropertyValue* const value = sim::findProperty(endpoint->properties, propertykeys::directSoundGuid);
    return value != nullptr && value->text.has_value();
}

long keptTexts(const sim::JournalEntries& calls, const sim::Machine& machine, const std::vector<Fault>& faults)
{
    const char* const operation = "IPropertyStore::GetValue";
    const std::vector<sim::JournalEntry> all = succeededHere(calls, operation);
    return std::count_if(all.begin(), all.end(),
                         [&](const sim::JournalEntry& call) { return readsDirectSoundText(call, machine); }) -
           std::count_if(faults.begin(), faults.end(),
                         [&](const Fault& fault) {
                             return isEmptyHanded(fault, operation) && readsDirectSoundText(fault.call.entry, machine);
                         });
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
    if (left.references() != lists || left.references("IPartsList") != lists ||
        registeredClients(left) != refusedUnregistrations(record))
        run.report(Kind::references, left.describe());
    if (left.taskBlocks() < texts || left.taskBlocks() > texts + unfreed)
        run.report(Kind::references, std::to_string(texts) + " blocks are kept on purpose: " + left.describe());
    if (simulation.comUnderflows() != 0)
        run.report(isOfModel(record.faults) ? Kind::references : Kind::answer,
                   "COM is left more often than it was entered");
}
}
