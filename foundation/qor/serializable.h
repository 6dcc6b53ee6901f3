#pragma once

#include "qor/export.h"
#include "qor/string.h"

#include <memory>
#include <string>
#include <vector>

namespace qor
{
/// One element of a small XML tree: a name, and either text or children.
class QOR_API XmlElement
{
public:
    explicit XmlElement(const String& name);

    const String& name() const noexcept { return m_name; }
    const String& text() const noexcept { return m_text; }
    void setText(const String& text) { m_text = text; }

    const std::vector<XmlElement>& children() const noexcept { return m_children; }

    /// The first child called @p name, or null. Valid until this element changes.
    const XmlElement* child(const String& name) const noexcept;

    /// Adds @p element as the last child. @return the child in this element
    XmlElement& add(XmlElement element);

    /// The tree as XML text, with escaped characters where XML needs them.
    /// @exception SerializationFailed if the tree contains an invalid name, an element with both text and children, or
    /// text with a zero unit
    String write() const;

    /// Reads one element with its content; skips white space around elements, comments and a prolog.
    /// @exception SerializationFailed with line and column if the text is not well formed
    static XmlElement read(const String& text);

private:
    void write(std::string& out) const;

    String m_name;
    String m_text;
    std::vector<XmlElement> m_children;
};

/// Base of the classes that can be written as XML and read back.
///
/// A class overrides deserializeFromElement(), serializeToXML() and objectClassName(). The first two process its
/// fields: begin, one serialize() or deserialize() for each field, end. A copy does not take over the state between
/// begin and end.
class QOR_API Serializable
{
public:
    // The destructors of elements and fields may throw, see qor/resource.h.
    virtual ~Serializable() noexcept(false) {}

    /// Writes this object to @p out as an element called @p name; the old content of @p out is replaced.
    virtual void doSerialization(const String& name, String& out);

    /// Reads this object from XML text. @exception SerializationFailed if the text is not well formed or does not fit
    virtual void deserialize(const String& text);

    virtual void deserializeFromElement(const XmlElement* element) = 0;
    virtual void serializeToXML(const String& name, String& out) = 0;
    virtual const String& objectClassName() = 0;

protected:
    Serializable() = default;
    Serializable(const Serializable&) {}
    Serializable& operator=(const Serializable&) { return *this; }

    /// Starts to write an element called @p name.
    virtual void serializeBegin(const String& name);
    virtual void serializeEnd();
    /// Stores the last written element in @p out as XML text.
    virtual void getSerializedXML(String& out);
    /// Starts to read from @p element, which must exist until deserializeEnd().
    virtual void deserializeBegin(const XmlElement* element);
    virtual void deserializeEnd();
    /// For containers, which store the item of @p element at @p index; this one only copies its text to @p value.
    virtual void insertValueToContainer(int index, const XmlElement* element, String& value);

    /// Writes @p field as a child of the current element. Arrays of strings and of unsigned numbers are written item by
    /// item; any other field writes itself or throws. The type of the field decides, not its class name.
    void serialize(const String& fieldName, Serializable& field);

    /// Reads @p field from the child called @p fieldName.
    /// @exception SerializationFailed, with the name of the element, if there is no such child, or it has text instead
    /// of items; an array is unchanged then. With the name or the text of the item, if an item does not fit: an array
    /// contains the items before that one then
    void deserialize(const String& fieldName, Serializable& field);

private:
    struct State;

    /// Separate from State, so that making and destroying a container needs no call: hardly any is ever serialized.
    struct StateDeleter
    {
        QOR_API void operator()(State* state) const noexcept;
    };

    State& state();

    std::unique_ptr<State, StateDeleter> m_state; // null unless an element is being written or read
};
}
