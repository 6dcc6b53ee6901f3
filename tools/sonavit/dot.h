#pragma once

#include "tools/sonavit/cardgraph.h"

#include <string>

namespace sonavit
{
/// @p text between quotes, as an id or a label of Graphviz.
std::string dotQuoted(const std::string& text);

/// The graph in the language of Graphviz: a cluster for each device, in it a node for each part.
std::string dotText(const CardGraph& graph, const std::string& title);
}
