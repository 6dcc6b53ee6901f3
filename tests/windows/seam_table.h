/// @file
/// What the portable declarations of the platform and the SDK's headers are compared by: the same facts, as text, under
/// the same names. Each side is read by a source file of its own, because one file cannot include both.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <map>
#include <string>
#include <type_traits>

namespace seam
{

using Facts = std::map<std::string, std::string>;

struct Table
{
    Facts bases;                                             ///< interface -> the interface that it extends
    std::map<std::string, int> operations;                   ///< interface -> all virtual functions, inherited ones too
    std::map<std::string, std::map<std::string, int>> slots; ///< interface -> its own operations -> place
    Facts signatures;                                        ///< operations and free functions
    Facts layouts;                                           ///< sizes of types and places of their members
    Facts identifiers;                                       ///< GUIDs and property keys, byte by byte
    Facts constants;                                         ///< numbers
};

Table portableTable();
Table sdkTable();

/// The place of a virtual function among those of its class. In the C++ ABI that gcc and clang follow, a pointer to a
/// virtual member function holds one more than the function's distance in bytes from the start of the virtual table.
template<class Method>
int slotOf(Method method)
{
    std::uintptr_t word = 0;
    std::memcpy(&word, &method, sizeof(word));
    return word % 2 == 1 ? static_cast<int>((word - 1) / sizeof(void*)) : -1;
}

/// Adds one virtual function to an interface; its place is the number of those that were there before.
template<class Interface>
struct OneMore : public Interface
{
    virtual void oneMore() = 0;
};

/// A type as text that both sides share: kind, size and indirections; "k" is const. The names of types stay out, since
/// WCHAR and LONG are other types here and there.
template<class T>
std::string typeText()
{
    if constexpr (std::is_reference_v<T>)
        return "&" + typeText<std::remove_reference_t<T>>();
    else if constexpr (std::is_const_v<T>)
        return "k" + typeText<std::remove_const_t<T>>();
    else if constexpr (std::is_pointer_v<T>)
        return "*" + typeText<std::remove_pointer_t<T>>();
    else if constexpr (std::is_void_v<T>)
        return "void";
    else if constexpr (std::is_class_v<T>)
        return "object";
    else
    {
        const char* const kind = std::is_enum_v<T>             ? "enum"
                                 : std::is_floating_point_v<T> ? "float"
                                 : std::is_signed_v<T>         ? "int"
                                                               : "unsigned";
        return kind + std::to_string(8 * sizeof(T));
    }
}

template<class Result, class... Arguments>
std::string callText()
{
    std::string text = typeText<Result>() + "(";
    ((text += typeText<Arguments>() + ","), ...);
    return text + ")";
}

template<class Result, class Class, class... Arguments>
std::string signatureOf(Result (Class::*)(Arguments...))
{
    return callText<Result, Arguments...>();
}

template<class Result, class... Arguments>
std::string signatureOf(Result (*)(Arguments...))
{
    return callText<Result, Arguments...>();
}

#if defined(_WIN32) && !defined(_WIN64)
// On 32-bit Windows the SDK's operations and functions have a calling convention that is part of their types. The
// portable declarations have none, so it is no fact to compare.
template<class Result, class Class, class... Arguments>
std::string signatureOf(Result (__stdcall Class::*)(Arguments...))
{
    return callText<Result, Arguments...>();
}

template<class Result, class... Arguments>
std::string signatureOf(Result(__stdcall*)(Arguments...))
{
    return callText<Result, Arguments...>();
}
#endif

inline std::string bytesOf(const void* data, std::size_t size)
{
    const auto* const bytes = static_cast<const unsigned char*>(data);
    std::string text;
    for (std::size_t index = 0; index < size; ++index)
    {
        text += "0123456789ABCDEF"[bytes[index] / 16];
        text += "0123456789ABCDEF"[bytes[index] % 16];
    }
    return text;
}

}

// The vocabulary of seam_contents.inc. It is read inside a function that has a `Table table`.
#define SEAM_INTERFACE(name, base)                                                        \
    static_assert(std::is_base_of_v<base, name> && sizeof(name) == sizeof(void*), #name); \
    table.bases[#name] = #base;                                                           \
    table.operations[#name] = seam::slotOf(&seam::OneMore<name>::oneMore);
#define SEAM_METHOD(interfaceName, method) SEAM_METHOD_OF_TYPE(interfaceName, method, decltype(&interfaceName::method))
#define SEAM_METHOD_OF_TYPE(interfaceName, method, ...)                                                    \
    table.slots[#interfaceName][#method] = seam::slotOf(static_cast<__VA_ARGS__>(&interfaceName::method)); \
    table.signatures[#interfaceName "::" #method] = seam::signatureOf(static_cast<__VA_ARGS__>(&interfaceName::method));
#define SEAM_FUNCTION(name) \
    table.signatures[#name] = seam::signatureOf(static_cast<std::decay_t<decltype(name)>>(nullptr));
#define SEAM_TYPE(name) table.layouts[#name] = std::to_string(sizeof(name)) + "/" + std::to_string(alignof(name));
#define SEAM_MEMBER(type, member)      \
    table.layouts[#type "." #member] = \
        std::to_string(offsetof(type, member)) + "+" + std::to_string(sizeof(type::member));
#define SEAM_IDENTIFIER(name)                                            \
    {                                                                    \
        const auto value = name;                                         \
        table.identifiers[#name] = seam::bytesOf(&value, sizeof(value)); \
    }
#define SEAM_CONSTANT(name) table.constants[#name] = std::to_string(static_cast<long long>(name));
