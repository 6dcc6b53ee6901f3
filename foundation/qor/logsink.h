#pragma once

#include <cstddef>
#include <memory>
#include <type_traits>
#include <utility>

namespace qor
{
struct LogRecord;

/// Holds whatever can be called with a log record: a function, a lambda, a std::function; or nothing. Copies share the
/// callable.
///
/// Used in place of std::function, whose header takes a fifth of the time to compile what includes the library.
class LogSink
{
public:
    /// Empty, as is the sink of a null function pointer or of an empty std::function.
    LogSink() noexcept = default;
    LogSink(std::nullptr_t) noexcept {}

    /// @exception std::bad_alloc without memory for it, or what its copy throws
    template<class Callable,
             class = std::enable_if_t<std::is_invocable_v<Callable&, const LogRecord&> &&
                                      !std::is_member_pointer_v<Callable> && !std::is_same_v<Callable, LogSink>>>
    LogSink(Callable callable)
    {
        if (isCallable(callable))
            m_target.reset(new TargetOf<Callable>(std::move(callable)));
    }

    explicit operator bool() const noexcept { return m_target != nullptr; }

    /// Calls what this object holds, which must not be empty.
    void operator()(const LogRecord& record) const { m_target->call(record); }

    friend bool operator==(const LogSink& sink, std::nullptr_t) noexcept { return !sink; }
    friend bool operator!=(const LogSink& sink, std::nullptr_t) noexcept { return static_cast<bool>(sink); }

private:
    class Target
    {
    public:
        Target() = default;
        Target(const Target&) = delete;
        Target& operator=(const Target&) = delete;
        virtual ~Target() = default;
        virtual void call(const LogRecord& record) = 0;
    };

    template<class Callable>
    class TargetOf final : public Target
    {
    public:
        explicit TargetOf(Callable&& callable) : m_callable(std::move(callable)) {}

        void call(const LogRecord& record) override { static_cast<void>(m_callable(record)); }

    private:
        Callable m_callable;
    };

    /// Whether a class says by a comparison with null that it may be empty, as std::function does. A lambda has such a
    /// comparison only by way of a function pointer.
    template<class Callable, class = void>
    struct MayBeEmpty : std::false_type
    {
    };
    template<class Callable>
    struct MayBeEmpty<Callable, std::void_t<decltype(std::declval<const Callable&>() == nullptr)>>
        : std::bool_constant<!std::is_convertible_v<const Callable&, void (*)(const LogRecord&)>>
    {
    };

    template<class Callable>
    static bool isCallable(const Callable& callable)
    {
        if constexpr (std::is_pointer_v<Callable> || MayBeEmpty<Callable>::value)
            return !(callable == nullptr);
        else
            return true;
    }

    std::shared_ptr<Target> m_target;
};
}
