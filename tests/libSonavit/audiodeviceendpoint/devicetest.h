/// Fixture of the endpoint device's tests: a machine with one card, and access to the device's log and calls.
#pragma once

#include "libSonavit/audiodeviceendpoint.h"
#include "simulator/machine/nodetypes.h"
#include "simulator/machine/propertykeys.h"
#include "tests/libSonavit/supportchannels.h"
#include "tests/support/librarytest.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

namespace devicetest
{
using qor::LoggerPriority;
using support::LogCapture;

/// The expression of the assertion that an empty object throws.
inline constexpr const char* noDevice = "m_device.get() != NULL";

/// The calls of @p expected that the journal shows: on Windows the system answers the functions of the runtime.
inline std::vector<std::string> visible(std::vector<std::string> expected)
{
#if defined(_WIN32)
    const auto isHidden = [](const std::string& call)
    { return call.find("::") == std::string::npos || call.rfind("CoTaskMemFree", 0) == 0; };
    expected.erase(std::remove_if(expected.begin(), expected.end(), isHidden), expected.end());
#endif
    return expected;
}

/// Calls with their arguments, without AddRef and Release.
inline std::vector<std::string> withoutCounting(const sim::JournalEntries& entries)
{
    std::vector<std::string> calls = entries.calls();
    const auto isCounting = [](const std::string& call)
    { return call.find("::AddRef(") != std::string::npos || call.find("::Release(") != std::string::npos; };
    calls.erase(std::remove_if(calls.begin(), calls.end(), isCounting), calls.end());
    return calls;
}

/// The format as an endpoint's property store stores it.
inline WAVEFORMATEXTENSIBLE waveFormat(const sim::DeviceFormat& format)
{
    const std::vector<std::uint8_t> bytes = format.bytes();
    WAVEFORMATEXTENSIBLE result;
    static_assert(sizeof(result) == 40, "the size that a store keeps");
    std::memcpy(&result, bytes.data(), sizeof(result));
    return result;
}

/// @p text with the letters a to z in upper case.
inline std::string upperCase(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char unit) { return unit >= 'a' && unit <= 'z' ? char(unit - 'a' + 'A') : unit; });
    return text;
}

/// A machine with one card that has a speaker and a microphone.
class DeviceTest : public support::LibraryTest
{
protected:
    /// Builds and runs the machine.
    void start() { run(bench.build()); }

    /// A reference on the platform's device, which an AudioDevice adopts.
    IMMDevice* reference(const std::string& id) { return simulation().device(id); }

    /// Messages of the endpoint device's channel.
    std::vector<std::string> messages(qor::LOGGER_PRIORITY priority) const
    {
        return log.texts(priority, channels::audioDevice);
    }

    /// All records of the channel: "> label", "< label" and "priority text".
    std::vector<std::string> records() const
    {
        std::vector<std::string> lines;
        for (const LogCapture::Record& record : log.records(channels::audioDevice))
        {
            if (record.kind == qor::LogRecord::Kind::message)
                lines.push_back(std::to_string(static_cast<int>(record.priority)) + " " + record.text);
            else
                lines.push_back((record.kind == qor::LogRecord::Kind::enter ? "> " : "< ") + record.text);
        }
        return lines;
    }

    /// Disables the messages about reference counts, which call AddRef and Release.
    static void withoutDebugMessages() { qor::LogFactory::setPriority(LoggerPriority::LOG_INFO); }

    /// References on the platform's object of that name, such as "IMMDevice {0.0.0.00000000}.{…}".
    long references(const std::string& object)
    {
        const sim::Census census = simulation().census();
        const auto found = census.byObject.find(object);
        return found == census.byObject.end() ? 0 : found->second;
    }

    void setProperty(const std::string& id, const PROPERTYKEY& key, const sim::PropertyValue& value)
    {
        simulation().change([&](sim::Machine& machine)
                            { sim::setProperty(machine.endpoint(id)->properties, key, value); });
    }

    void removeProperty(const std::string& id, const PROPERTYKEY& key)
    {
        simulation().change([&](sim::Machine& machine) { sim::removeProperty(machine.endpoint(id)->properties, key); });
    }

    /// The endpoint's device format in the machine.
    std::vector<std::uint8_t> storedFormat(const std::string& id)
    {
        const sim::Machine machine = simulation().machine();
        const sim::PropertyValue* const value =
            sim::findProperty(machine.endpoint(id)->properties, sim::keys::deviceFormat);
        return value == nullptr ? std::vector<std::uint8_t>() : value->bytes;
    }

    sim::MachineBuilder bench;
    sim::CardBuilder card = bench.card("Analog Audio");
    sim::EndpointBuilder speaker = card.speaker();
    sim::EndpointBuilder microphone = card.microphone();
};
}
