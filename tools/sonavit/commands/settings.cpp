#include "tools/sonavit/choice.h"
#include "tools/sonavit/commands/commands.h"
#include "tools/sonavit/failure.h"
#include "tools/sonavit/output/modeljson.h"
#include "tools/sonavit/output/table.h"
#include "tools/sonavit/output/tableprinter.h"
#include "tools/sonavit/output/text.h"
#include "tools/sonavit/simulationnote.h"
#include "tools/sonavit/textfile.h"

#include <algorithm>
#include <string>

namespace sonavit::program
{
namespace
{
Settings readSettings(const Context& context)
{
    const std::string& file = context.arguments.file;
    const Result<Settings> settings = Settings::parse(file.empty() ? context.environment.readInput() : readFile(file));
    if (settings)
        return *settings;
    const std::string where = file.empty() ? "standard input" : "the file " + inQuotes(file);
    throw UsageError(where + " does not contain what save has saved: " + settings.problem().sentence());
}

Paint paintOf(RestoredSetting::Outcome outcome)
{
    switch (outcome)
    {
    case RestoredSetting::Outcome::restored:
        return Paint::green;
    case RestoredSetting::Outcome::unchanged:
        return Paint::dim;
    default:
        return Paint::red;
    }
}

const char* wordsOf(RestoredSetting::Outcome outcome)
{
    return outcome == RestoredSetting::Outcome::notFound ? "not found" : keyOf(outcome);
}

/// What was changed, and what could not be.
void show(const Environment& environment, const RestoreReport& report)
{
    Table table({{Table::Column::Align::left, 0, 0, 0}, {}, {}});
    for (const RestoredSetting& setting : report.settings)
    {
        if (setting.outcome != RestoredSetting::Outcome::unchanged)
            table.add({{printable(setting.what), Paint::none},
                       {wordsOf(setting.outcome), paintOf(setting.outcome)},
                       {setting.problem ? printable(setting.problem->sentence()) : "", Paint::none}});
    }
    printTable(environment, table);
    environment.out << report.sentence() << "\n";
}

std::size_t count(const RestoreReport& report, RestoredSetting::Outcome outcome)
{
    return static_cast<std::size_t>(std::count_if(report.settings.begin(), report.settings.end(),
                                                  [&](const RestoredSetting& setting)
                                                  { return setting.outcome == outcome; }));
}

Json reportJson(const Context& context, const RestoreReport& report)
{
    Json settings = Json::array();
    for (const RestoredSetting& setting : report.settings)
        settings.append(Json::object({{"what", setting.what},
                                      {"outcome", keyOf(setting.outcome)},
                                      {"problem", setting.problem ? problemJson(*setting.problem) : Json()}}));
    using Outcome = RestoredSetting::Outcome;
    return machineDocument(context.session.machineName())
        .set("settings", settings)
        .set("restored", count(report, Outcome::restored))
        .set("unchanged", count(report, Outcome::unchanged))
        .set("notFound", count(report, Outcome::notFound))
        .set("failed", count(report, Outcome::failed));
}
}

void runSave(Context& context)
{
    reportDenied(context, readSnapshot(context).cards());
    const Result<Settings> settings = context.session.audio().settings();
    if (!settings)
        raise(settings.problem(), "the settings cannot be read");
    if (context.arguments.file.empty())
        context.environment.out << settings->text();
    else
        writeFile(context.arguments.file, settings->text());
}

/// Exit code 1 if something could not be put back; the report is printed nevertheless.
void runRestore(Context& context)
{
    const Settings settings = readSettings(context);
    const Result<RestoreReport> report = context.session.audio().restore(settings);
    if (!report)
        raise(report.problem(), "the settings cannot be restored");
    if (count(*report, RestoredSetting::Outcome::restored) > 0)
        announceTemporaryChange(context);
    if (context.arguments.isJson)
        context.environment.out << reportJson(context, *report).text() << "\n";
    else
        show(context.environment, *report);
    if (!report->isComplete())
        throw Answered(exitFailed);
}
}
