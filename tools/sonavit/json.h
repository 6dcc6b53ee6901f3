#pragma once

#include <nlohmann/json_fwd.hpp>

#include <initializer_list>
#include <memory>
#include <optional>
#include <string>

namespace sonavit
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
    Json(int value);
    Json(unsigned value);
    Json(std::size_t value);
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
    std::unique_ptr<nlohmann::ordered_json> m_value;
};

struct Json::Member
{
    const char* key;
    Json value;
};
}
