#include "tests/program/dotreader.h"

#include <cctype>
#include <set>
#include <vector>

namespace support
{
namespace
{
/// The text as words: quoted ones with their first quote, plain ones, and signs.
class Words
{
public:
    explicit Words(const std::string& text) : m_text(text) {}

    bool read(std::vector<std::string>& words)
    {
        while (m_position < m_text.size())
        {
            const char next = m_text[m_position];
            if (std::isspace(static_cast<unsigned char>(next)) != 0)
                ++m_position;
            else if (m_text.compare(m_position, 2, "//") == 0)
                m_position = m_text.find('\n', m_position);
            else if (next == '"' && !readQuoted(words))
                return false;
            else if (next != '"')
                readPlain(words);
        }
        return true;
    }

private:
    bool readQuoted(std::vector<std::string>& words)
    {
        const std::size_t start = m_position++;
        while (m_position < m_text.size() && m_text[m_position] != '"' && m_text[m_position] != '\n')
            m_position += m_text[m_position] == '\\' ? 2 : 1;
        if (m_position >= m_text.size() || m_text[m_position] != '"')
            return false;
        words.push_back(m_text.substr(start, m_position++ - start));
        return true;
    }

    void readPlain(std::vector<std::string>& words)
    {
        const std::size_t start = m_position;
        while (m_position < m_text.size() && std::isalnum(static_cast<unsigned char>(m_text[m_position])) != 0)
            ++m_position;
        if (m_position == start)
            m_position += m_text.compare(start, 2, "->") == 0 ? 2 : 1;
        words.push_back(m_text.substr(start, m_position - start));
    }

    const std::string& m_text;
    std::size_t m_position = 0;
};

bool isBalanced(const std::vector<std::string>& words)
{
    std::string open;
    for (const std::string& word : words)
    {
        if (word == "{" || word == "[")
            open += word;
        if (word != "}" && word != "]")
            continue;
        if (open.empty() || open.back() != (word == "}" ? '{' : '['))
            return false;
        open.pop_back();
    }
    return open.empty();
}

/// Words that may stand without quotes.
bool isPlainWord(const std::vector<std::string>& words, std::size_t index)
{
    static const std::set<std::string> known = {"digraph", "subgraph", "graph", "node", "edge", "->", "{",
                                                "}",       "[",        "]",     "=",    ",",    ";"};
    const bool isAttribute = index + 1 < words.size() && words[index + 1] == "=";
    return known.count(words[index]) > 0 || isAttribute;
}

std::string brokenEdges(const std::vector<std::string>& words)
{
    std::set<std::string> nodes;
    for (std::size_t i = 0; i + 1 < words.size(); ++i)
    {
        const bool isEnd = i > 0 && words[i - 1] == "->";
        if (words[i][0] == '"' && words[i + 1] == "[" && !isEnd && !nodes.insert(words[i]).second)
            return "the node " + words[i] + " is there twice";
    }
    for (std::size_t i = 1; i + 1 < words.size(); ++i)
    {
        if (words[i] == "->" && (nodes.count(words[i - 1]) == 0 || nodes.count(words[i + 1]) == 0))
            return "the edge from " + words[i - 1] + " to " + words[i + 1] + " has an end that is no node";
    }
    return "";
}
}

std::string brokenDot(const std::string& text)
{
    std::vector<std::string> words;
    if (!Words(text).read(words))
        return "a quote is not closed";
    if (words.size() < 4 || words[0] != "digraph" || words[1][0] != '"' || words[2] != "{" || words.back() != "}")
        return "it is no graph";
    if (!isBalanced(words))
        return "brackets are not balanced";
    for (std::size_t i = 0; i < words.size(); ++i)
    {
        if (words[i][0] != '"' && !isPlainWord(words, i))
            return "the word " + words[i] + " is not quoted";
    }
    return brokenEdges(words);
}
}
