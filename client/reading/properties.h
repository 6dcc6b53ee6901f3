/// @file
/// Single properties of an endpoint.
#pragma once

#include "platform/coreaudio.h"
#include "sonavit/endpoint.h"
#include "sonavit/format.h"
#include "sonavit/ids.h"
#include "sonavit/problem.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace sonavit::reading
{
/// Reads the properties of one store. A property that the store does not have has no value and is no problem; the empty
/// text counts as none.
class PropertyReader
{
public:
    /// One property: its key and its name in platform/propertykeys.h.
    struct Property
    {
        const PROPERTYKEY& key;
        const char* name;
    };

    /// @param object id of the endpoint
    PropertyReader(IPropertyStore& store, const std::string& object, std::vector<Problem>& problems)
        : m_store(store),
          m_object(object),
          m_problems(problems)
    {
    }

    std::optional<std::string> text(const Property& property);
    std::optional<std::uint32_t> number(const Property& property);
    std::optional<Guid> guid(const Property& property);
    /// A GUID that is written as a text.
    std::optional<Guid> writtenGuid(const Property& property);
    std::optional<Format> format(const Property& property);

private:
    template<class T, class Read>
    std::optional<T> value(const Property& property, VARTYPE type, const Read& read);

    IPropertyStore& m_store;
    const std::string& m_object;
    std::vector<Problem>& m_problems;
};

/// The format in a blob; no value if it is none.
std::optional<Format> formatOf(const BYTE* bytes, std::size_t size);
}
