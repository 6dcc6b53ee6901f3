#pragma once

#include <nlohmann/json_fwd.hpp>

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>

namespace sonavit::program
{
/// A JSON value under construction; members keep the order in which they are set. An optional without value is null.
class Json
{
public:
    struct Member;

    Json();
    // Implicit on purpose: each of these types is written as a value of a member.
    // NOLINTBEGIN(google-explicit-constructor)
    Json(bool value);
    template<class Integer, class = std::enable_if_t<std::is_integral_v<Integer>>>
    Json(Integer value) : Json(integer(static_cast<WidestLike<Integer>>(value)))
    {
    }
    Json(double value);
    Json(float value); ///< as the shortest decimal that reads back as @p value; null where it is not a number
    Json(const char* value);
    Json(const std::string& value);
    template<class T>
    Json(const std::optional<T>& value) : Json()
    {
        if (value)
            *this = Json(*value);
    }
    // NOLINTEND(google-explicit-constructor)

    Json(const Json& other);
    Json(Json&& other) noexcept;
    Json& operator=(const Json& other);
    Json& operator=(Json&& other) noexcept;
    ~Json();

    static Json object(std::initializer_list<Member> members);
    static Json array();

    /// An object that begins with the version of the program's JSON, as each of the program's documents does.
    static Json document(std::initializer_list<Member> members);

    Json& set(const std::string& key, const Json& value);
    Json& append(const Json& value);

    /// With each member on a line of its own, or all on one line; without a line end.
    std::string text() const;
    std::string line() const;

private:
    // Which of the standard's integer types are the same type depends on the platform, so there is one form for all.
    template<class Integer>
    using WidestLike = std::conditional_t<std::is_signed_v<Integer>, std::int64_t, std::uint64_t>;

    static Json integer(std::int64_t value);
    static Json integer(std::uint64_t value);

    std::unique_ptr<nlohmann::ordered_json> m_value;
};

struct Json::Member
{
    const char* key;
    Json value;
};
}
