#include "client/diagnosing/explain.h"

#include "simulator/machine/file/machinefile.h"
#include "tests/support/clienttest.h"
#include "tests/support/randommachine.h"

#include <iostream>
#include <string>
#include <vector>

namespace diagnosing = sonavit::diagnosing;

namespace
{
/// A machine as a survey without failures has it.
sonavit::capturing::Survey surveyOf(sim::Machine machine)
{
    sonavit::capturing::Survey survey;
    survey.machine = std::move(machine);
    return survey;
}

class ExplainTest : public support::ClientTest
{
protected:
    /// Plays the machine, and explains all of its endpoints.
    template<class Check>
    void forEachEndpoint(const sim::Machine& machine, const Check& check)
    {
        play(machine);
        sonavit::System system(options());
        const sonavit::Snapshot snapshot = system.snapshot();
        const sonavit::capturing::Survey survey = surveyOf(machine);
        for (const sonavit::Card& card : snapshot.cards())
        {
            for (const sonavit::Endpoint& endpoint : card.endpoints())
            {
                const auto controls = system.controls(endpoint.id());
                check(diagnosing::Subject{survey, snapshot, {card, endpoint}, controls});
            }
        }
    }
};

TEST_F(ExplainTest, Prints)
{
    const char* name = std::getenv("MACHINE");
    forEachEndpoint(sim::findMachine(name),
                    [](const diagnosing::Subject& subject)
                    {
                        std::cout << "\n##### " << subject.endpoint().title() << "\n";
                        for (const sonavit::Reason& reason : diagnosing::explainEndpoint(subject))
                            std::cout << reason;
                    });
}
}
