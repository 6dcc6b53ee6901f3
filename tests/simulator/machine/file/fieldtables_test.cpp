#include "simulator/machine/file/fieldtables.h"

#include "simulator/machine/file/json.h"
#include "simulator/machine/file/machinefile.h"
#include "simulator/machine/file/schema.h"
#include "tests/simulator/machine/file/machinesample.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <set>

namespace
{
using sim::JsonValue;

/// Calls @p visit with each object in @p value, the outermost first.
void forEachObject(JsonValue& value, const std::function<void(JsonValue&)>& visit)
{
    if (value.kind == JsonValue::Kind::object)
        visit(value);
    for (JsonValue& element : value.elements)
        forEachObject(element, visit);
}

/// Whether an object with the keys of @p object may have the form @p rule.
bool mayBe(const JsonValue& object, const sim::ObjectRule& rule)
{
    const auto isKnown = [&](const std::string& key)
    {
        const auto is = [&](const sim::KeyRule* candidate) { return candidate->name == key; };
        return std::any_of(rule.keys.begin(), rule.keys.end(), is);
    };
    const auto isThere = [&](const sim::KeyRule* key)
    { return !key->isRequired || object.member(key->name) != nullptr; };
    return std::all_of(object.keys.begin(), object.keys.end(), isKnown) &&
           std::all_of(rule.keys.begin(), rule.keys.end(), isThere);
}

class MachineFieldTables : public testing::Test
{
protected:
    const sim::Machine machine = sample::machine();
    const JsonValue json = sim::parseJson(sim::writeMachine(machine), "sample.json");
};

TEST_F(MachineFieldTables, AllOccurInTheSampleWithAllTheirKeys)
{
    JsonValue copy = json;
    for (const sim::ObjectRule& rule : sim::objectRules())
    {
        std::set<std::string> found;
        forEachObject(copy,
                      [&](JsonValue& object)
                      {
                          if (mayBe(object, rule))
                              found.insert(object.keys.begin(), object.keys.end());
                      });

        EXPECT_EQ(rule.keys.size(), found.size()) << rule.name;
    }
}

TEST_F(MachineFieldTables, AreReadWithTheirKeysInAnyOrder)
{
    const std::vector<sim::ObjectRule> rules = sim::objectRules();
    JsonValue copy = json;
    std::size_t count = 0;
    forEachObject(copy,
                  [&](JsonValue& object)
                  {
                      const auto isForm = [&](const sim::ObjectRule& rule) { return mayBe(object, rule); };
                      if (object.keys.size() < 2 || std::none_of(rules.begin(), rules.end(), isForm))
                          return; // the order of properties is that of the store
                      std::reverse(object.keys.begin(), object.keys.end());
                      std::reverse(object.elements.begin(), object.elements.end());
                      ++count;
                  });

    EXPECT_EQ(machine, sim::readMachine(sim::printJson(copy), "reversed.json"));
    EXPECT_GT(count, 25u);
}

TEST_F(MachineFieldTables, HaveNoKeyThatTheReaderIgnores)
{
    // Leaves each member of each object out, one at a time. The sample has no usual value anywhere.
    JsonValue copy = json;
    std::size_t count = 0;
    forEachObject(copy,
                  [&](JsonValue& object)
                  {
                      for (std::size_t index = 0; index < object.keys.size(); ++index)
                      {
                          const std::string key = object.keys[index];
                          if (key == "$schema")
                              continue;
                          const JsonValue whole = object;
                          object.keys.erase(object.keys.begin() + static_cast<std::ptrdiff_t>(index));
                          object.elements.erase(object.elements.begin() + static_cast<std::ptrdiff_t>(index));
                          try
                          {
                              EXPECT_NE(machine, sim::readMachine(sim::printJson(copy), "less.json")) << key;
                          }
                          catch (const sim::MachineFileError& error)
                          {
                              EXPECT_FALSE(error.expected().empty()) << key;
                          }
                          object = whole;
                          ++count;
                      }
                  });

    EXPECT_GT(count, 150u);
}

TEST_F(MachineFieldTables, StateTheUsualValueOfAnOptionalKeyInTheSchema)
{
    const auto defaultOf = [](const sim::ObjectRule& rule, const std::string& key)
    {
        for (const sim::KeyRule* candidate : rule.keys)
        {
            const JsonValue schema = candidate->schema();
            if (candidate->name == key && schema.member("default") != nullptr)
                return sim::printJson(*schema.member("default"));
        }
        return std::string("none");
    };

    EXPECT_EQ("true\n", defaultOf(sim::fieldsOf<sim::Endpoint>().rule(), "installed"));
    EXPECT_EQ("\"active\"\n", defaultOf(sim::fieldsOf<sim::Endpoint>().rule(), "state"));
    EXPECT_EQ("\"*\"\n", defaultOf(sim::fieldsOf<sim::FaultRule>().rule(), "object"));
    EXPECT_EQ("none", defaultOf(sim::fieldsOf<sim::Connector>().rule(), "localId"));
    EXPECT_EQ("none", defaultOf(sim::fieldsOf<sim::Endpoint>().rule(), "flow"));
}
}
