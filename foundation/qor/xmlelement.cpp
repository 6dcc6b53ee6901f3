#include "qor/exception.h"
#include "qor/qorvalue.h"
#include "qor/serializable.h"

#include <string>
#include <string_view>

namespace qor
{
namespace
{
constexpr int deepestElement = 200; // input must not be able to overflow the stack

bool startsName(unsigned char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c >= 0x80;
}

bool continuesName(unsigned char c)
{
    return startsName(c) || (c >= '0' && c <= '9') || c == '-' || c == '.' || c == ':';
}

bool isName(const std::string& text)
{
    if (text.empty() || !startsName(static_cast<unsigned char>(text[0])))
        return false;
    for (const char c : text)
    {
        if (!continuesName(static_cast<unsigned char>(c)))
            return false;
    }
    return true;
}

bool isSurrogate(unsigned int unit)
{
    return unit >= 0xD800 && unit <= 0xDFFF;
}

bool needsReference(unsigned short unit)
{
    const bool markup = unit == '<' || unit == '>' || unit == '&' || unit == '"' || unit == '\'';
    return markup || unit < ' ' || unit == 0x7F || isSurrogate(unit) || unit >= 0xFFFE;
}

/// Writes the text so that reading it gives the same units, even those that are not allowed in plain XML. Only zero is
/// refused: a reference to it is not valid XML.
void escape(std::string& out, const String& text)
{
    unsigned int plain = 0; // start of the run that needs no escaping
    for (unsigned int i = 0; i < text.size(); ++i)
    {
        const unsigned short unit = text.getUCS2Buffer()[i];
        if (!needsReference(unit))
            continue;
        if (unit == 0)
            throw SerializationFailed("Text with a zero cannot be written");
        out += text.subString(plain, i - plain).toUtf8();
        out += "&#" + std::to_string(unit) + ';';
        plain = i + 1;
    }
    out += text.subString(plain, text.size() - plain).toUtf8();
}

/// Reads elements from UTF-8 text, one character ahead at most.
class Reader
{
public:
    explicit Reader(std::string_view text) : m_text(text) {}

    XmlElement document()
    {
        skipOutside();
        XmlElement root = element(1);
        skipOutside();
        if (m_position != m_text.size())
            fail("unexpected content after the element");
        return root;
    }

private:
    XmlElement element(int depth)
    {
        if (depth > deepestElement)
            fail("elements are nested too deeply");
        expect("<", "element expected");
        XmlElement result(String::fromUtf8(name()));
        skipBlanks();
        if (accept("/>"))
            return result;
        expect(">", "attributes are not supported");
        content(result, depth);
        expect("</", "end of the element expected");
        if (String::fromUtf8(name()) != result.name())
            fail("end tag does not match the open element");
        skipBlanks();
        expect(">", "end of the element expected");
        return result;
    }

    void content(XmlElement& parent, int depth)
    {
        String text;
        bool hasText = false;
        while (!atEnd() && !startsWith("</"))
        {
            if (accept("<!--"))
                skipPast("-->", "comment without an end");
            else if (startsWith("<"))
                parent.add(element(depth + 1));
            else
                hasText = append(text) || hasText;
        }
        if (!parent.children().empty() && hasText)
            fail("element with both text and elements");
        if (parent.children().empty())
            parent.setText(text);
    }

    /// @return whether the run contains more than blanks
    bool append(String& text)
    {
        bool solid = false;
        std::string run;
        while (!atEnd() && m_text[m_position] != '<')
        {
            if (m_text[m_position] == '&')
            {
                text.append(String::fromUtf8(run));
                run.clear();
                const unsigned short unit[] = {reference(), 0};
                text.append(String(unit));
                solid = true;
                continue;
            }
            if (m_text[m_position] == '\0')
                fail("text with a zero");
            solid = solid || !isBlank(m_text[m_position]);
            run += m_text[m_position++];
        }
        text.append(String::fromUtf8(run));
        return solid;
    }

    unsigned short reference()
    {
        struct Named
        {
            const char* text;
            unsigned short unit;
        };
        static constexpr Named named[] = {
            {"&lt;", '<'}, {"&gt;", '>'}, {"&amp;", '&'}, {"&quot;", '"'}, {"&apos;", '\''}};
        for (const Named& entry : named)
        {
            if (accept(entry.text))
                return entry.unit;
        }
        expect("&#", "reference expected");
        const unsigned int base = accept("x") ? 16 : 10;
        unsigned int value = 0;
        int digits = 0;
        for (; !atEnd() && m_text[m_position] != ';' && value <= 0xFFFF; ++m_position, ++digits)
            value = value * base + digit(m_text[m_position], base);
        if (digits == 0 || value == 0 || value > 0xFFFF)
            fail("reference outside 1 to 65535");
        expect(";", "semicolon expected after a reference");
        return static_cast<unsigned short>(value);
    }

    unsigned int digit(char c, unsigned int base)
    {
        const std::string_view digits = "0123456789abcdef";
        const char lower = c >= 'A' && c <= 'F' ? static_cast<char>(c - 'A' + 'a') : c;
        const std::size_t value = digits.substr(0, base).find(lower);
        if (value == std::string_view::npos)
            fail("digit expected");
        return static_cast<unsigned int>(value);
    }

    std::string name()
    {
        const std::size_t start = m_position;
        while (!atEnd() && continuesName(static_cast<unsigned char>(m_text[m_position])))
            ++m_position;
        std::string result(m_text.substr(start, m_position - start));
        if (!isName(result))
            fail("name expected");
        return result;
    }

    void skipOutside()
    {
        for (;;)
        {
            skipBlanks();
            if (accept("<?"))
                skipPast("?>", "prolog without an end");
            else if (accept("<!--"))
                skipPast("-->", "comment without an end");
            else
                return;
        }
    }

    void skipBlanks()
    {
        while (!atEnd() && isBlank(m_text[m_position]))
            ++m_position;
    }

    void skipPast(std::string_view end, const char* complaint)
    {
        const std::size_t found = m_text.find(end, m_position);
        if (found == std::string_view::npos)
            fail(complaint);
        m_position = found + end.size();
    }

    static bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

    bool atEnd() const { return m_position >= m_text.size(); }

    bool startsWith(std::string_view text) const { return m_text.substr(m_position, text.size()) == text; }

    bool accept(std::string_view text)
    {
        if (!startsWith(text))
            return false;
        m_position += text.size();
        return true;
    }

    void expect(std::string_view text, const char* complaint)
    {
        if (!accept(text))
            fail(complaint);
    }

    [[noreturn]] void fail(const char* complaint) const
    {
        unsigned int line = 1;
        unsigned int column = 1;
        for (std::size_t i = 0; i < m_position && i < m_text.size(); ++i)
        {
            if (m_text[i] == '\n')
            {
                ++line;
                column = 1;
            }
            // A character counts as one column, however many bytes it has.
            else if ((static_cast<unsigned char>(m_text[i]) & 0xC0) != 0x80)
                ++column;
        }
        String message("XML is not well formed at line ");
        message.append(QORValue(line).toString(QORValue::nilValue)).append(", column ");
        message.append(QORValue(column).toString(QORValue::nilValue)).append(": ").append(complaint);
        throw SerializationFailed(message);
    }

    std::string_view m_text;
    std::size_t m_position = 0;
};
}

XmlElement::XmlElement(const String& name) : m_name(name) {}

const XmlElement* XmlElement::child(const String& name) const noexcept
{
    for (const XmlElement& candidate : m_children)
    {
        if (candidate.m_name == name)
            return &candidate;
    }
    return nullptr;
}

XmlElement& XmlElement::add(XmlElement element)
{
    m_children.push_back(std::move(element));
    return m_children.back();
}

String XmlElement::write() const
{
    std::string out;
    write(out);
    return String::fromUtf8(out);
}

XmlElement XmlElement::read(const String& text)
{
    const std::string utf8 = text.toUtf8();
    return Reader(utf8).document();
}

void XmlElement::write(std::string& out) const
{
    const std::string name = m_name.toUtf8();
    if (!isName(name))
        throw SerializationFailed("Invalid name of an element: " + m_name);
    if (m_text.size() > 0 && !m_children.empty())
        throw SerializationFailed("Element with both text and elements: " + m_name);
    out += '<' + name + '>';
    escape(out, m_text);
    for (const XmlElement& child : m_children)
        child.write(out);
    out += "</" + name + '>';
}
}
