/// @file
/// What the tests of the hardware walk have in common.
#pragma once

#include "client/reading/hardwarewalk.h"
#include "tests/client/reading/readingtest.h"

#include <string>
#include <vector>

/// A test that walks through the hardware of a simulated machine.
class HardwareTest : public ReadingTest
{
protected:
    /// The cards of the machine, with what a walk needs of their endpoints.
    std::vector<sonavit::Card> cards();
    /// The card of that endpoint.
    sonavit::Card cardOf(const std::string& endpointId);

    reading::HardwareWalk walkAll() { return {enumerator(), cards()}; }

    /// The controls of an endpoint, found by a walk of their own.
    std::vector<sonavit::Control> controls(const std::string& endpointId);
    /// The selectors of the card of an endpoint, likewise.
    std::vector<sonavit::Selector> selectors(const std::string& endpointId);
};

/// All problems of a card's hardware: its own, and those of its controls and selectors.
std::vector<sonavit::Problem> problemsOf(const sonavit::Hardware& hardware);

std::vector<std::string> namesOf(const std::vector<sonavit::Control>& controls);
std::vector<std::string> namesOf(const std::vector<sonavit::SelectorInput>& inputs);

/// "Speakers -> Volume" for a wire, "=" for a join, "~" for a path; parts by their names, or by their numbers.
std::vector<std::string> edgesOf(const sonavit::Graph& graph);

/// The part of that name; fails the test if there is none.
const sonavit::Graph::Part& partNamed(const sonavit::Graph& graph, const std::string& name);

/// The calls that the journal has recorded, but for those that only free memory; it records no Release.
std::size_t costOf(const sim::Journal& journal);
