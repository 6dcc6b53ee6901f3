/// @file
/// Pointer conversions between the platform's 16-bit strings and the library's.
///
/// The library's strings consist of `unsigned short`. The platform's WCHAR is `wchar_t` on Windows, another type with
/// the same 16 bits, and `unsigned short` elsewhere. Nothing is copied; a null pointer stays null.
#pragma once

namespace platform
{

#if defined(_WIN32)

static_assert(sizeof(wchar_t) == sizeof(unsigned short), "string units of both sides have 16 bits");

/// The platform's string as the library's; valid as long as @p text is.
inline const unsigned short* ucs2(const wchar_t* text)
{
    return reinterpret_cast<const unsigned short*>(text);
}

/// The library's string as the platform's; valid as long as @p text is.
inline const wchar_t* wide(const unsigned short* text)
{
    return reinterpret_cast<const wchar_t*>(text);
}

#else

/// The platform's string as the library's; valid as long as @p text is.
inline const unsigned short* ucs2(const unsigned short* text)
{
    return text;
}

/// The library's string as the platform's; valid as long as @p text is.
inline const unsigned short* wide(const unsigned short* text)
{
    return text;
}

#endif

}
