/// @file
/// How the facts of an explanation are put together and worded.
#pragma once

#include "client/diagnosing/explainwiring.h"
#include "sonavit/diagnosis.h"
#include "sonavit/endpoint.h"
#include "sonavit/problem.h"

#include <cstddef>
#include <string>
#include <vector>

namespace sonavit::diagnosing
{
/// Collects the facts of one reason.
class FactList
{
public:
    FactList(Reason::Question question, std::string title);

    /// A fact that follows from those before it.
    void add(std::string sentence);
    void add(std::string sentence, std::string call, std::string object);
    /// A call that failed. @param effect what is missing therefore, as a sentence; may be empty
    void addFailure(const Problem& problem, const std::string& effect = {});

    Reason conclude(std::string sentence);

private:
    Reason m_reason;
};

/// At most that many names are listed; of more, it says how many there are.
inline constexpr std::size_t mostNames = 6;

/// "a, b and 7 more".
std::string listed(const std::vector<std::string>& names);

/// In quotation marks, on one line.
std::string named(const std::string& name);

/// "Microphone", or the GUID of a kind without a name.
std::string kindWords(const GUID& type);

/// Its name in quotation marks; without one its number: "0x00010000".
std::string labelOf(const Wiring::Node& node);
/// The same with what it is before a number: "the connector 0x00010000".
std::string nameOf(const Wiring::Node& node);
/// The same with "the connector" before a name, too.
std::string connectorWords(const Wiring::Node& node);

/// @p text with a capital at its beginning.
std::string sentenceFrom(std::string text);

/// Its name with "the adapter" or "the endpoint" before it.
std::string deviceWords(const sim::Device& device);
}
