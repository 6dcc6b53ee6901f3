#include "tests/libSonavit/portable/supporttranscript.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <sstream>

namespace support
{
namespace
{
/// A message without its line number and the one blank behind it.
std::string withoutLineNumber(const std::string& message)
{
    const std::size_t digits = message.find_first_not_of("0123456789");
    return digits == 0 || digits == std::string::npos || message[digits] != ' ' ? message : message.substr(digits + 1);
}

std::string lineOf(const qor::LogRecord& record)
{
    const std::string text = record.text.toUtf8();
    if (record.kind == qor::LogRecord::Kind::message)
        return "log " + std::to_string(record.priority) + " " + record.channel + " " + withoutLineNumber(text);
    return (record.kind == qor::LogRecord::Kind::enter ? "enter " : "leave ") + std::string(record.channel) + " " +
           text;
}
}

Transcript::Transcript(sim::Simulation& simulation)
    : m_simulation(simulation),
      m_oldMinimum(qor::LogFactory::getPriority())
{
    qor::LogFactory::setSink([this](const qor::LogRecord& record) { add(record); });
    qor::LogFactory::setPriority(qor::LoggerPriority::LOG_FATAL);
}

Transcript::~Transcript()
{
    qor::LogFactory::setPriority(m_oldMinimum);
    qor::LogFactory::setSink({});
}

void Transcript::begin()
{
    m_simulation.journal().clear();
    m_lines.clear();
    m_collects = true;
    if (m_atBegin)
        m_atBegin();
    qor::LogFactory::setPriority(qor::LoggerPriority::LOG_DEBUG);
}

void Transcript::note(const std::string& text)
{
    if (m_collects)
        add("= " + text);
}

void Transcript::noteCensus()
{
    if (!m_hasCensus)
        return;
    const sim::Census census = m_simulation.census();
    for (const auto& [name, references] : census.byInterface)
        note("references " + name + " " + std::to_string(references));
    for (const auto& [name, count] : census.clients)
        note("clients " + name + " " + std::to_string(count));
    note("task memory " + std::to_string(census.taskBlocks()));
}

std::string Transcript::text() const
{
    const sim::JournalEntries calls = m_simulation.journal().entries();
    std::string result;
    std::size_t call = 0;
    const auto addCallsUpTo = [&](std::size_t end)
    {
        for (; call < end; ++call)
            result.append("call ").append(calls[call].line()).append("\n");
    };
    for (const Line& line : m_lines)
    {
        addCallsUpTo(line.callsBefore);
        result.append(line.text).append("\n");
    }
    addCallsUpTo(calls.size());
    return result;
}

void Transcript::add(const std::string& text)
{
    m_lines.push_back({m_simulation.journal().size(), text});
}

void Transcript::add(const qor::LogRecord& record)
{
    if (m_collects)
        add(lineOf(record));
}

std::vector<std::string> callsIn(const std::string& transcript)
{
    const std::string start = "call ";
    std::vector<std::string> calls;
    std::istringstream lines(transcript);
    for (std::string line; std::getline(lines, line);)
    {
        if (line.compare(0, start.size(), start) == 0)
            calls.push_back(line.substr(start.size(), line.find('(') - start.size()));
    }
    return calls;
}

void Fingerprint::add(const std::string& text)
{
    const auto addWord = [this](std::uint64_t word)
    {
        hash = (hash ^ word) * 1099511628211u;
        hash ^= hash >> 32; // or the upper half of a word would not reach the lower half of the hash
    };
    for (std::size_t i = 0; i < text.size(); i += sizeof(std::uint64_t))
    {
        std::uint64_t word = 0;
        std::memcpy(&word, text.data() + i, std::min(sizeof word, text.size() - i));
        addWord(word);
    }
    addWord(text.size());
    for (std::size_t end = text.find('\n'); end != std::string::npos; end = text.find('\n', end + 1))
        ++lines; // std::count would take longer than everything else where nothing is optimised
}

std::string printed(const Fingerprint& fingerprint)
{
    char hash[17] = {};
    std::snprintf(hash, sizeof hash, "%016llx", static_cast<unsigned long long>(fingerprint.hash));
    return hash + (" " + std::to_string(fingerprint.lines));
}
}
