/// @file
/// The one place where the platform's 16-bit text and this library's 16-bit text meet.
///
/// The library's strings hold `unsigned short`. The platform's WCHAR is `wchar_t` on Windows, a type of its own with
/// the same 16 bits, and `unsigned short` elsewhere. Nothing is copied; a null pointer stays null.
#pragma once

namespace platform
{

#if defined(_WIN32)

static_assert(sizeof(wchar_t) == sizeof(unsigned short), "text units of both sides have 16 bits");

/// The platform's text as the library's; valid as long as @p text is.
inline const unsigned short* ucs2(const wchar_t* text)
{
    return reinterpret_cast<const unsigned short*>(text);
}

/// The library's text as the platform's; valid as long as @p text is.
inline const wchar_t* wide(const unsigned short* text)
{
    return reinterpret_cast<const wchar_t*>(text);
}

#else

/// The platform's text as the library's; valid as long as @p text is.
inline const unsigned short* ucs2(const unsigned short* text)
{
    return text;
}

/// The library's text as the platform's; valid as long as @p text is.
inline const unsigned short* wide(const unsigned short* text)
{
    return text;
}

#endif

}
