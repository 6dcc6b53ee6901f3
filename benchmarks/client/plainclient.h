/// @file
/// A client of Core Audio without the client layer: what a competent program writes by hand to get the same values,
/// with containers of the standard library, the same platform calls in the same order and the same registrations for
/// events.
#pragma once

#include "platform/coreaudio.h"

#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace plain
{
/// Holds one reference of a platform object.
template<class I>
class Com
{
public:
    Com() = default;
    Com(Com&& other) noexcept : m_object(std::exchange(other.m_object, nullptr)) {}
    Com& operator=(Com&& other) noexcept
    {
        std::swap(m_object, other.m_object);
        return *this;
    }
    Com(const Com&) = delete;
    Com& operator=(const Com&) = delete;
    ~Com()
    {
        if (m_object != nullptr)
            m_object->Release();
    }

    /// Where the platform stores an object, once.
    I** put() noexcept { return &m_object; }
    void** putVoid() noexcept { return reinterpret_cast<void**>(&m_object); }
    I* operator->() const noexcept { return m_object; }
    I* get() const noexcept { return m_object; }

private:
    I* m_object = nullptr;
};

struct Problem
{
    std::string operation;
    std::string object;
    HRESULT code = S_OK;
};

struct Jack
{
    std::optional<GUID> type;
    std::optional<std::uint32_t> formFactor;
    std::optional<KSJACK_DESCRIPTION> description;
};

struct Level
{
    std::optional<double> percent;
    std::optional<double> decibels;
};

struct Range
{
    double minimum = 0;
    double maximum = 0;
    double step = 0;
};

struct Volume
{
    Level master;
    std::optional<Range> range;
    std::vector<Level> channels;
    std::optional<bool> isMuted;
    std::optional<bool> isInHardware;
};

struct Format
{
    std::uint32_t rate = 0;
    std::uint32_t bits = 0;
    std::uint32_t validBits = 0;
    std::uint32_t channels = 0;
    WORD tag = 0;
    std::optional<std::uint32_t> speakers;
    std::optional<GUID> subFormat;
};

struct Endpoint
{
    std::string id;
    EDataFlow flow = eRender;
    std::optional<DWORD> state;
    unsigned roles = 0; ///< a bit for each role
    std::optional<std::string> description;
    std::optional<std::string> interfaceName;
    std::optional<std::string> instancePath;
    std::optional<std::string> driverNode;
    std::optional<std::string> bus;
    std::optional<Format> format;
    std::optional<std::uint32_t> speakers;
    std::optional<GUID> directSoundId;
    std::optional<GUID> container;
    std::optional<std::uint32_t> waveId;
    std::optional<std::string> adapter;
    std::vector<Jack> jacks;
    std::optional<Volume> volume;
    std::vector<Problem> problems;
};

struct Card
{
    std::string id;
    std::optional<std::string> instancePath;
    std::optional<std::string> instanceId;
    std::optional<std::string> parent;
    std::optional<std::string> bus;
    std::optional<GUID> container;
    std::string title;
    std::vector<Endpoint> endpoints; ///< outputs first
};

/// Listens to all endpoints, or to the volume of one, and counts what it hears.
class DeviceListener;
class VolumeListener;

/// Reads the computer and stays registered for its events.
class Client
{
public:
    Client();
    /// Ends the registrations.
    ~Client();
    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;

    /// Registers, reads everything and groups it; once.
    void read();
    const std::vector<Card>& cards() const noexcept { return m_cards; }
    /// Ids of the defaults by flow and role; empty if there is none.
    const std::array<std::array<std::string, 3>, 2>& defaults() const noexcept { return m_defaults; }
    const std::vector<Problem>& problems() const noexcept { return m_problems; }

private:
    /// The platform's objects of one endpoint.
    struct Source
    {
        Com<IMMDevice> device;
        Com<IAudioEndpointVolume> volume;
        Com<VolumeListener> listener;
    };

    void list(EDataFlow flow);
    void readEndpoint(Endpoint& endpoint, Source& source);
    void readVolume(Endpoint& endpoint, Source& source);
    void readDefaults();
    void readWaveIds(EDataFlow flow);
    Endpoint* find(const std::string& id, EDataFlow flow);
    void group();
    std::optional<std::string> parentOf(const std::string& instanceId);

    Com<IMMDeviceEnumerator> m_enumerator;
    Com<DeviceListener> m_listener;
    std::vector<Endpoint> m_endpoints;           ///< until they are grouped
    std::vector<Source> m_sources;               ///< in the order in which the endpoints were listed
    std::map<std::string, std::size_t> m_places; ///< by id in lower case
    std::map<std::string, std::optional<std::string>> m_parents;
    std::array<std::array<std::string, 3>, 2> m_defaults;
    std::vector<Card> m_cards;
    std::vector<Problem> m_problems;
};
}
