/// What a single word of the command line means. All functions throw UsageError for a word that means nothing.
#pragma once

#include "tools/sonavit/commandline.h"

#include <chrono>
#include <optional>
#include <set>
#include <string>
#include <variant>

namespace sonavit::program
{
/// "administrator" or "ordinary"; upper and lower case are alike here and in the next three.
sim::Account readAccount(const std::string& word);

/// "none" or "windows".
sim::LatencyPreset readLatency(const std::string& word);

/// "layer" or "model".
Via readVia(const std::string& word);

/// Kinds of events, separated by commas: "added,removed".
std::set<EventKind> readEventKinds(const std::string& word);

/// The number of a channel, as people count; the result counts from 0.
unsigned readChannel(const std::string& word);

/// "debug" to "fatal"; no value for "off".
std::optional<qor::LOGGER_PRIORITY> readLogLevel(const std::string& word);

/// "on", "yes" and "1", "off", "no" and "0", or "toggle".
MuteChange readMuteChange(const std::string& word);

/// Reads a number of seconds: decimal digits with at most one point, and nothing else.
/// @param option whose value it is, such as "--for"
std::chrono::milliseconds readSeconds(const std::string& word, const std::string& option);

/// Reads "bits/rate/channels", such as 24/48000/2; bits and rate may change places, as no rate is as small as a number
/// of bits.
sim::DeviceFormat readFormatRequest(const std::string& text);

/// Reads a new volume, "50%", "50", "33.3%" or "-12.5dB", or a step, "5%+", "+5%", "5%-", "-5%", "3dB+" or "3dB-". A
/// sign before decibels is part of the number.
LevelChange readLevelChange(const std::string& text);

/// As readLevelChange(), or "on", "off" and their like for a mute; "toggle" means nothing here.
std::variant<LevelChange, MuteChange> readControlChange(const std::string& text);
}
