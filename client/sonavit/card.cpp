#include "sonavit/card.h"

#include "sonavit/text.h"

#include <algorithm>
#include <ostream>
#include <utility>

namespace sonavit
{
inline namespace v1
{
namespace
{
Card::Content withTitle(Card::Content content)
{
    const auto isPlain = [](char character) { return character >= ' ' && character <= '~'; };
    if (content.title.empty())
        content.title = "Unnamed card";
    else if (!std::all_of(content.title.begin(), content.title.end(), isPlain))
        content.title = text::printable(content.title);
    return content;
}
}

Card::Card() : Card(Content()) {}

Card::Card(Content content) : m_content(std::make_shared<const Content>(withTitle(std::move(content)))) {}

bool operator==(const Card& left, const Card& right)
{
    const Card::Content& a = left.content();
    const Card::Content& b = right.content();
    return &a == &b || (a.id == b.id && a.instancePath == b.instancePath && a.instanceId == b.instanceId &&
                        a.parent == b.parent && a.container == b.container && a.bus == b.bus && a.title == b.title &&
                        a.endpoints == b.endpoints && a.problems == b.problems);
}

std::ostream& operator<<(std::ostream& out, const Card& card)
{
    const Card::Content& content = card.content();
    text::Fields(out, "Card")
        .add("id", content.id.text())
        .add("instancePath", content.instancePath)
        .add("instanceId", content.instanceId)
        .add("parent", content.parent)
        .add("container", content.container)
        .add("bus", content.bus)
        .add("title", content.title)
        .add("endpoints", content.endpoints)
        .add("problems", content.problems);
    return out;
}
}
}
