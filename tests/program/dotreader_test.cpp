#include "tests/program/dotreader.h"

#include <gtest/gtest.h>

using support::brokenDot;

TEST(ProgramDotReader, AcceptsASoundGraph)
{
    EXPECT_EQ("", brokenDot("// a\ndigraph \"g\" {\n graph [x=\"\\\"y\\\\\"];\n subgraph \"c\" { \"a\" [l=\"\"]; }\n"
                            "\"b\" [l=\"] }\"];\n \"a\" -> \"b\" [p=\"q\"];\n}\n"));
}

TEST(ProgramDotReader, FindsWhatIsBroken)
{
    EXPECT_EQ("it is no graph", brokenDot(""));
    EXPECT_EQ("a quote is not closed", brokenDot("digraph \"g\" { \"a }\n"));
    EXPECT_EQ("brackets are not balanced", brokenDot("digraph \"g\" { \"a\" [l=\"\" }"));
    EXPECT_EQ("the word a is not quoted", brokenDot("digraph \"g\" { a [l=\"\"]; }"));
    EXPECT_EQ("the node \"a is there twice", brokenDot("digraph \"g\" { \"a\" [l=\"\"]; \"a\" [l=\"\"]; }"));
    EXPECT_EQ("the edge from \"a to \"b has an end that is no node",
              brokenDot("digraph \"g\" { \"a\" [l=\"\"]; \"a\" -> \"b\" [l=\"\"]; }"));
}
