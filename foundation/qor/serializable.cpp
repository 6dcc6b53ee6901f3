#include "qor/serializable.h"

#include "qor/array.h"
#include "qor/exception.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace qor
{
struct Serializable::State
{
    XmlElement output = XmlElement(String());
    String text;
    const XmlElement* input = nullptr;
};

namespace
{
const char* const itemName = "item";

void writeItems(XmlElement& element, const Array<String>& items)
{
    for (unsigned int i = 0; i < items.size(); ++i)
        element.add(XmlElement(itemName)).setText(items[i]);
}

void writeItems(XmlElement& element, const Array<unsigned int>& items)
{
    for (unsigned int i = 0; i < items.size(); ++i)
        element.add(XmlElement(itemName)).setText(QORValue(items[i]).toString(QORValue::nilValue));
}

unsigned int number(const String& text)
{
    unsigned __int64 value = 0;
    bool wellFormed = text.size() > 0;
    for (unsigned int i = 0; wellFormed && i < text.size(); ++i)
    {
        const unsigned short unit = text.getUCS2Buffer()[i];
        wellFormed = unit >= '0' && unit <= '9';
        value = value * 10 + unit - '0';
        wellFormed = wellFormed && value <= std::numeric_limits<unsigned int>::max();
    }
    if (!wellFormed)
        throw SerializationFailed("Not a 32-bit number: " + text);
    return static_cast<unsigned int>(value);
}

const String& textOf(const XmlElement& item)
{
    if (!item.children().empty())
        throw SerializationFailed("Elements instead of text: " + item.name());
    return item.text();
}

void readItem(const XmlElement& item, Array<String>& items)
{
    items.append(textOf(item));
}

void readItem(const XmlElement& item, Array<unsigned int>& items)
{
    items.append(number(textOf(item)));
}

bool isBlank(const String& text)
{
    const unsigned short* const end = text.getUCS2Buffer() + text.size();
    return std::all_of(text.getUCS2Buffer(), end,
                       [](unsigned short unit) { return unit == ' ' || unit == '\t' || unit == '\r' || unit == '\n'; });
}

template<class T>
void readItems(const XmlElement& element, Array<T>& items)
{
    if (!isBlank(element.text()))
        throw SerializationFailed("Text instead of items: " + element.name());
    items.clear();
    for (const XmlElement& item : element.children())
    {
        if (!(item.name() == itemName))
            throw SerializationFailed("Not an item of an array: " + item.name());
        readItem(item, items);
    }
}
}

void Serializable::doSerialization(const String& name, String& out)
{
    serializeToXML(name, out);
}

void Serializable::deserialize(const String& text)
{
    const XmlElement root = XmlElement::read(text);
    deserializeFromElement(&root);
}

void Serializable::serializeBegin(const String& name)
{
    state().output = XmlElement(name);
}

void Serializable::serializeEnd()
{
    state().text = state().output.write();
}

void Serializable::getSerializedXML(String& out)
{
    out = state().text;
    m_state.reset();
}

void Serializable::deserializeBegin(const XmlElement* element)
{
    state().input = element;
}

void Serializable::deserializeEnd()
{
    m_state.reset();
}

void Serializable::insertValueToContainer(int, const XmlElement* element, String& value)
{
    if (element != nullptr)
        value = element->text();
}

// The arrays of strings and of numbers refuse to write themselves, so a field of such a type is written here. Its type
// decides, not its class name: any class may return that of an array.
void Serializable::serialize(const String& fieldName, Serializable& field)
{
    XmlElement element(fieldName);
    if (const auto* const strings = dynamic_cast<const Array<String>*>(&field))
        writeItems(element, *strings);
    else if (const auto* const numbers = dynamic_cast<const Array<unsigned int>*>(&field))
        writeItems(element, *numbers);
    else
    {
        String text;
        field.serializeToXML(fieldName, text);
        element = XmlElement::read(text);
    }
    state().output.add(std::move(element));
}

void Serializable::deserialize(const String& fieldName, Serializable& field)
{
    const XmlElement* const parent = state().input;
    const XmlElement* const element = parent == nullptr ? nullptr : parent->child(fieldName);
    if (element == nullptr)
        throw SerializationFailed("Missing element: " + fieldName);
    if (auto* const strings = dynamic_cast<Array<String>*>(&field))
        readItems(*element, *strings);
    else if (auto* const numbers = dynamic_cast<Array<unsigned int>*>(&field))
        readItems(*element, *numbers);
    else
        field.deserializeFromElement(element);
}

void Serializable::StateDeleter::operator()(State* state) const noexcept
{
    delete state;
}

Serializable::State& Serializable::state()
{
    if (m_state == nullptr)
        m_state.reset(new State);
    return *m_state;
}
}
