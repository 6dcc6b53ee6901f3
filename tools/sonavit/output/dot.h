#pragma once

#include "tools/sonavit/output/graphview.h"

#include <string>

namespace sonavit::program
{
/// @p text in quotation marks, as a Graphviz id or label.
std::string dotQuoted(const std::string& text);

/// The graph in Graphviz's DOT language: a cluster for each device, and in it a node for each part.
std::string dotText(const GraphView& view, const std::string& title);
}
