/// @file
/// Hardware controls as bars, for the level meter and for its test.
#pragma once

#include <sonavit/client.h>

#include <algorithm>
#include <cstddef>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

/// "[############----------------]"; without a level "[?                           ]".
inline std::string barOf(std::optional<sonavit::Percent> level)
{
    constexpr unsigned width = 28;
    if (!level)
        return "[?" + std::string(width - 1, ' ') + "]";
    const unsigned filled = level->rounded() * width / 100;
    return "[" + std::string(filled, '#') + std::string(width - filled, '-') + "]";
}

/// A line for each channel: "  [########------------]  Mic Boost, channel 1: 40% (-18.00 dB), muted".
inline void showControl(const sonavit::Control& control, std::ostream& out)
{
    if (!control.channels)
    {
        out << "  " << control.title() << " cannot be read\n";
        return;
    }
    for (std::size_t i = 0; i < control.channels->size(); ++i)
    {
        const sonavit::Level& level = (*control.channels)[i].level;
        out << "  " << barOf(level.percent) << "  " << control.title() << ", channel " << i + 1 << ": "
            << level.sentence() << (control.isMuted == true ? ", muted" : "") << "\n";
    }
}

/// The controls that @p known does not contain as they are.
inline std::vector<sonavit::Control> changedControls(const std::vector<sonavit::Control>& controls,
                                                     const sonavit::Hardware& known)
{
    std::vector<sonavit::Control> changed;
    for (const sonavit::Control& control : controls)
    {
        const auto contains = [&control](const sonavit::Hardware::EndpointControls& each)
        { return std::find(each.controls.begin(), each.controls.end(), control) != each.controls.end(); };
        if (std::none_of(known.controls.begin(), known.controls.end(), contains))
            changed.push_back(control);
    }
    return changed;
}

/// The controls of @p after that were otherwise in @p before, of one endpoint or of all.
inline void showControls(const sonavit::Hardware& before, const sonavit::Hardware& after, const sonavit::Snapshot& now,
                         const std::optional<sonavit::EndpointId>& endpoint, std::ostream& out)
{
    for (const sonavit::Hardware::EndpointControls& each : after.controls)
    {
        const std::vector<sonavit::Control> changed = changedControls(each.controls, before);
        if (changed.empty() || (endpoint && *endpoint != each.endpoint))
            continue;
        if (const std::optional<sonavit::Endpoint> title = now.endpoint(each.endpoint))
            out << title->title() << "\n";
        for (const sonavit::Control& control : changed)
            showControl(control, out);
    }
    out << std::flush;
}
