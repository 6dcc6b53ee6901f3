/// @file
/// The JSON that the program prints, and how far it may differ from what is right.
#pragma once

#include "tests/faults/client/facts.h"

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace faults::program
{
/// One document, or one on each line. An exception of nlohmann::json if the text is anything else.
std::vector<nlohmann::json> documentsIn(const std::string& text, bool isOneEachLine);

/// The pieces of a document, without its problems. What is in a list goes by its id.
client::Facts factsOf(const nlohmann::json& document);

/// Whether the document has the code among its problems, its findings or its facts.
bool namesCode(const nlohmann::json& document, const std::string& operation, const std::string& code);
}
