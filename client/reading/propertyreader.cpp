#include "client/reading/judge.h"
#include "client/reading/properties.h"
#include "client/reading/text.h"

#include <utility>

namespace sonavit::reading
{
namespace
{
/// A variant that is cleared at the end of its scope.
class Variant
{
public:
    Variant() { PropVariantInit(&m_value); }
    ~Variant()
    {
        if (m_value.vt != VT_EMPTY)
            PropVariantClear(&m_value);
    }
    Variant(const Variant&) = delete;
    Variant& operator=(const Variant&) = delete;

    PROPVARIANT* put() noexcept { return &m_value; }
    const PROPVARIANT& get() const noexcept { return m_value; }
    /// Forgets what was stored along with a failure.
    void forget() { PropVariantInit(&m_value); }

private:
    PROPVARIANT m_value;
};
}

/// @param read returns the code that the value deserves, and stores the value
template<class T, class Read>
std::optional<T> PropertyReader::value(const Property& property, VARTYPE type, const Read& read)
{
    Variant variant;
    HRESULT result = m_store.GetValue(property.key, variant.put());
    std::optional<T> value;
    if (FAILED(result))
        variant.forget();
    else if (variant.get().vt == VT_EMPTY)
        return value;
    else
        result = variant.get().vt == type ? read(variant.get(), value) : typeMismatch;
    if (FAILED(result))
        m_problems.push_back(failure({"IPropertyStore::GetValue", property.name}, m_object, result));
    return value;
}

std::optional<std::string> PropertyReader::text(const Property& property)
{
    return value<std::string>(property, VT_LPWSTR,
                              [](const PROPVARIANT& variant, std::optional<std::string>& text)
                              {
                                  if (variant.pwszVal == nullptr)
                                      return E_POINTER;
                                  if (*variant.pwszVal != 0)
                                      text = utf8(variant.pwszVal);
                                  return S_OK;
                              });
}

std::optional<std::uint32_t> PropertyReader::number(const Property& property)
{
    return value<std::uint32_t>(property, VT_UI4,
                                [](const PROPVARIANT& variant, std::optional<std::uint32_t>& number)
                                {
                                    number = static_cast<std::uint32_t>(variant.ulVal);
                                    return S_OK;
                                });
}

std::optional<Guid> PropertyReader::guid(const Property& property)
{
    return value<Guid>(property, VT_CLSID,
                       [](const PROPVARIANT& variant, std::optional<Guid>& guid)
                       {
                           if (variant.puuid == nullptr)
                               return E_POINTER;
                           guid = guidOf(*variant.puuid);
                           return S_OK;
                       });
}

std::optional<Guid> PropertyReader::writtenGuid(const Property& property)
{
    return value<Guid>(property, VT_LPWSTR,
                       [](const PROPVARIANT& variant, std::optional<Guid>& guid)
                       {
                           if (variant.pwszVal == nullptr)
                               return E_POINTER;
                           guid = reading::writtenGuid(variant.pwszVal);
                           return guid || *variant.pwszVal == 0 ? S_OK : invalidData;
                       });
}

std::optional<Format> PropertyReader::format(const Property& property)
{
    return value<Format>(property, VT_BLOB,
                         [](const PROPVARIANT& variant, std::optional<Format>& format)
                         {
                             if (variant.blob.pBlobData == nullptr && variant.blob.cbSize > 0)
                                 return E_POINTER;
                             format = formatOf(variant.blob.pBlobData, variant.blob.cbSize);
                             return format ? S_OK : invalidData;
                         });
}
}
