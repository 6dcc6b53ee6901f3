#pragma once

#include <string>

namespace support
{
/// What is wrong with @p text as a graph in the language of Graphviz; empty where nothing is: quotes and brackets are
/// balanced, all names are quoted, and edges lead between nodes that there are, each once.
std::string brokenDot(const std::string& text);
}
