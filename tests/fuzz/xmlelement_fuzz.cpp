/// Whatever text can be read is written as a text that reads as the same tree; all other text is refused in order.
#include "qor/exception.h"
#include "qor/serializable.h"
#include "tests/fuzz/support/check.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace
{
bool equal(const qor::XmlElement& left, const qor::XmlElement& right)
{
    if (left.name() != right.name() || left.text() != right.text() || left.children().size() != right.children().size())
        return false;
    for (std::size_t i = 0; i < left.children().size(); ++i)
    {
        if (!equal(left.children()[i], right.children()[i]))
            return false;
    }
    return true;
}
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const qor::String text = qor::String::fromUtf8(std::string_view(reinterpret_cast<const char*>(data), size));
    try
    {
        const qor::XmlElement tree = qor::XmlElement::read(text);
        const qor::String written = tree.write();
        const qor::XmlElement again = qor::XmlElement::read(written);
        fuzz::check(equal(tree, again), "what is written reads as the same tree");
        fuzz::check(again.write() == written, "and is written as the same text again");
    }
    catch (const qor::SerializationFailed& refusal)
    {
        fuzz::check(refusal.message().subString(0, 26) == qor::String("XML is not well formed at "),
                    "the reader refuses, and says where");
    }
    return 0;
}
