#pragma once

#include "qor/export.h"
#include "qor/string.h"

#include <memory>
#include <string>
#include <vector>

namespace qor
{
/// One element of a small XML tree: a name, and either a text or children.
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

    /// Takes @p element as the last child. @return the child in its place
    XmlElement& add(XmlElement element);

    /// The tree as XML text, with everything escaped that needs it.
    /// @exception SerializationFailed if a name in the tree cannot be the name of an element, an element has both text
    /// and children, or a text holds a zero
    String write() const;

    /// Reads one element with all it holds; white space around elements, comments and a prolog are passed over.
    /// @exception SerializationFailed that says at which line and column the text is not well formed
    static XmlElement read(const String& text);

private:
    void write(std::string& out) const;

    String m_name;
    String m_text;
    std::vector<XmlElement> m_children;
};

/// Base of the classes that can be written as XML text and read back.
///
/// A class overrides deserializeFromElement(), serializeToXML() and objectClassName(), and in the first two goes
/// through its fields: begin, one serialize() or deserialize() a field, end. A copy takes nothing of the state between
/// begin and end.
class QOR_API Serializable
{
public:
    // The destructors of elements and fields may let an exception pass, see qor/resource.h.
    virtual ~Serializable() noexcept(false) {}

    /// Writes this object as an element called @p name into @p out, replacing what was there.
    virtual void doSerialization(const String& name, String& out);

    /// Reads this object from XML text. @exception SerializationFailed if the text is not well formed
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
    /// The element written last, as text; @p out is replaced.
    virtual void getSerializedXML(String& out);
    /// Starts to read from @p element, which must outlive the reading.
    virtual void deserializeBegin(const XmlElement* element);
    virtual void deserializeEnd();
    /// A container stores the item of @p element at @p index; here only the item's text is given out.
    virtual void insertValueToContainer(int index, const XmlElement* element, String& value);

    /// Writes @p field below the element that was begun. Arrays of texts and of numbers are written item by item; any
    /// other field writes itself, or refuses to.
    void serialize(const String& fieldName, Serializable& field);

    /// Reads @p field from the child called @p fieldName.
    /// @exception SerializationFailed if there is no such child, or an item of it does not fit
    void deserialize(const String& fieldName, Serializable& field);

private:
    struct State;

    /// Lets every container be made and destroyed without a call, as hardly any is ever written or read.
    struct StateDeleter
    {
        QOR_API void operator()(State* state) const noexcept;
    };

    State& state();

    std::unique_ptr<State, StateDeleter> m_state; // null but between a begin and the end of the text
};
} // namespace qor
