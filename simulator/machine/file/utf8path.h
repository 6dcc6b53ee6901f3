/// @file
/// Names of files in UTF-8 as paths.
#pragma once

#include <exception>
#include <filesystem>
#include <optional>
#include <string>

namespace sim
{
/// The path of that name in UTF-8; no value if it is not UTF-8 and the system, as Windows, needs that.
inline std::optional<std::filesystem::path> pathOf(const std::string& name)
{
    try
    {
        return std::filesystem::u8path(name);
    }
    catch (const std::exception&)
    {
        return std::nullopt;
    }
}
}
