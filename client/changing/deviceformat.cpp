#include "client/changing/deviceformat.h"

#include "client/reading/handle.h"
#include "client/reading/properties.h"
#include "platform/propertykeys.h"

#include <cstring>
#include <limits>
#include <optional>
#include <utility>

namespace sonavit::changing
{
namespace
{
using Store = reading::Handle<IPropertyStore>;

constexpr std::uint32_t bitsOfAByte = 8;

/// A value of a property store, freed at the end.
class Value
{
public:
    Value() { PropVariantInit(&m_value); }
    ~Value() { PropVariantClear(&m_value); }
    Value(const Value&) = delete;
    Value& operator=(const Value&) = delete;

    PROPVARIANT* put() noexcept { return &m_value; }
    const PROPVARIANT& get() const noexcept { return m_value; }

private:
    PROPVARIANT m_value;
};

Result<Store> openStore(IMMDevice& device, const EndpointId& endpoint, DWORD access)
{
    IPropertyStore* store = nullptr;
    const HRESULT result = device.OpenPropertyStore(access, &store);
    if (FAILED(result) || store == nullptr)
        return Problem::ofCall("IMMDevice::OpenPropertyStore", endpoint.text(), FAILED(result) ? result : E_POINTER);
    return Store(store);
}

/// Sets the bytes and commits them. @p isSet receives whether the store has them, even if the commit fails.
std::optional<Problem> write(IPropertyStore& store, const EndpointId& endpoint, const FormatBytes& bytes, bool& isSet)
{
    PROPVARIANT value; // refers to the caller's bytes, so it must not be cleared
    PropVariantInit(&value);
    value.vt = VT_BLOB;
    value.blob.cbSize = static_cast<ULONG>(bytes.size());
    value.blob.pBlobData = const_cast<BYTE*>(bytes.data());
    const HRESULT set = store.SetValue(platform::propertykeys::deviceFormat, value);
    isSet = SUCCEEDED(set);
    if (!isSet)
        return Problem::ofCall("IPropertyStore::SetValue(deviceFormat)", endpoint.text(), set);
    const HRESULT committed = store.Commit();
    if (FAILED(committed))
        return Problem::ofCall("IPropertyStore::Commit", endpoint.text(), committed);
    return std::nullopt;
}

bool isExpressible(const Format& format)
{
    constexpr std::uint32_t most = std::numeric_limits<WORD>::max();
    const std::uint64_t block = std::uint64_t{format.channels} * format.bits / bitsOfAByte;
    return format.rate > 0 && format.channels > 0 && format.bits > 0 && format.bits % bitsOfAByte == 0 &&
           format.bits <= most && format.validBits <= format.bits && block <= most &&
           block * format.rate <= std::numeric_limits<DWORD>::max();
}

WAVEFORMATEX shortForm(const Format& format)
{
    WAVEFORMATEX wave = {};
    wave.wFormatTag = format.encoding == Format::Encoding::integer ? WAVE_FORMAT_PCM : WAVE_FORMAT_IEEE_FLOAT;
    wave.nChannels = static_cast<WORD>(format.channels);
    wave.nSamplesPerSec = format.rate;
    wave.wBitsPerSample = static_cast<WORD>(format.bits);
    wave.nBlockAlign = static_cast<WORD>(format.channels * format.bits / bitsOfAByte);
    wave.nAvgBytesPerSec = format.rate * wave.nBlockAlign;
    return wave;
}

GUID subFormatOf(const Format& format)
{
    if (!format.subFormat)
        return format.encoding == Format::Encoding::integer ? KSDATAFORMAT_SUBTYPE_PCM
                                                            : KSDATAFORMAT_SUBTYPE_IEEE_FLOAT;
    GUID subFormat = {};
    static_assert(sizeof subFormat == sizeof *format.subFormat, "both are the same structure");
    std::memcpy(&subFormat, &*format.subFormat, sizeof subFormat);
    return subFormat;
}

WAVEFORMATEXTENSIBLE longForm(const Format& format)
{
    WAVEFORMATEXTENSIBLE wave = {};
    wave.Format = shortForm(format);
    wave.Format.wFormatTag = WAVE_FORMAT_EXTENSIBLE;
    wave.Format.cbSize = sizeof(WAVEFORMATEXTENSIBLE) - sizeof(WAVEFORMATEX);
    wave.Samples.wValidBitsPerSample = static_cast<WORD>(format.validBits == 0 ? format.bits : format.validBits);
    wave.dwChannelMask = format.speakers.value_or(0);
    wave.SubFormat = subFormatOf(format);
    return wave;
}

template<class Structure>
FormatBytes bytesOfStructure(const Structure& structure)
{
    FormatBytes bytes(sizeof structure);
    std::memcpy(bytes.data(), &structure, sizeof structure);
    return bytes;
}
}

Result<FormatBytes> bytesOf(const EndpointId& endpoint, const Format& format)
{
    if (!isExpressible(format))
        return Problem(Problem::Kind::outOfRange, "holdFormat", endpoint.text(),
                       "no device can have the format " + format.sentence());
    if (format.encoding == Format::Encoding::other && !format.subFormat)
        return Problem(Problem::Kind::outOfRange, "holdFormat", endpoint.text(),
                       "a format that is neither integer nor float needs a sub-format");
    if (format.speakers || format.subFormat)
        return bytesOfStructure(longForm(format));
    return bytesOfStructure(shortForm(format));
}

Result<StoredFormat> readFormat(IMMDevice& device, const EndpointId& endpoint)
{
    Result<Store> store = openStore(device, endpoint, STGM_READ);
    if (!store)
        return store.problem();
    Value value;
    const HRESULT result = (*store)->GetValue(platform::propertykeys::deviceFormat, value.put());
    if (FAILED(result))
        return Problem::ofCall("IPropertyStore::GetValue(deviceFormat)", endpoint.text(), result);
    const PROPVARIANT& found = value.get();
    if (found.vt == VT_EMPTY)
        return Problem(Problem::Kind::notSupported, "holdFormat", endpoint.text(), "the endpoint has no device format");
    const bool isBlob = found.vt == VT_BLOB && found.blob.pBlobData != nullptr;
    const std::optional<Format> format =
        isBlob ? reading::formatOf(found.blob.pBlobData, found.blob.cbSize) : std::nullopt;
    if (!format)
        return Problem(Problem::Kind::notSupported, "holdFormat", endpoint.text(),
                       "the device format of the endpoint cannot be understood");
    const BYTE* const bytes = found.blob.pBlobData;
    return StoredFormat{FormatBytes(bytes, bytes + found.blob.cbSize), *format};
}

Result<HeldFormat> HeldFormat::hold(IMMDevice& device, const EndpointId& endpoint, const Format& wanted)
{
    const Result<FormatBytes> bytes = bytesOf(endpoint, wanted);
    if (!bytes)
        return bytes.problem();
    const Result<StoredFormat> former = readFormat(device, endpoint);
    if (!former)
        return former.problem();
    if (former->format == wanted)
        return HeldFormat(endpoint, *former, *former);
    Result<Store> store = openStore(device, endpoint, STGM_READWRITE);
    if (!store)
        return store.problem();
    bool isSet = false;
    std::optional<Problem> problem = write(**store, endpoint, *bytes, isSet);
    if (!problem)
    {
        const Result<StoredFormat> held = readFormat(device, endpoint);
        if (held)
            return HeldFormat(endpoint, *former, *held);
        problem = held.problem();
    }
    bool isPutBack = false;
    if (isSet)
        static_cast<void>(write(**store, endpoint, former->bytes, isPutBack)); // the first problem is the one to report
    return *problem;
}

Result<Done> HeldFormat::putBack(IMMDevice& device) const
{
    const Result<StoredFormat> present = readFormat(device, m_endpoint);
    if (!present)
        return present.problem();
    if (present->bytes != m_held.bytes)
        return Problem(Problem::Kind::notThere, "FormatHold::end", m_endpoint.text(),
                       "the format is not the held one any more: it is " + present->format.sentence());
    if (!isWritten())
        return Done();
    Result<Store> store = openStore(device, m_endpoint, STGM_READWRITE);
    if (!store)
        return store.problem();
    bool isSet = false;
    if (std::optional<Problem> problem = write(**store, m_endpoint, m_former.bytes, isSet))
        return *problem;
    return Done();
}

HeldFormat::HeldFormat(EndpointId endpoint, StoredFormat former, StoredFormat held)
    : m_endpoint(std::move(endpoint)),
      m_former(std::move(former)),
      m_held(std::move(held))
{
}
}
