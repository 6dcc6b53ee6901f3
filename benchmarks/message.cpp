#include "qor/logstatement.h"
#include "suites.h"
#include "threshold.h"

#define SPDLOG_ACTIVE_LEVEL SPDLOG_LEVEL_DEBUG // its statements are disabled at run time, like ours
#include <spdlog/sinks/null_sink.h>
#include <spdlog/spdlog.h>

#include <memory>
#include <string>

/// Log channel of the messages in this file, which are never written.
namespace benchmarklog
{
inline constexpr const char* channel = "benchmark";
inline qor::LoggerSlot logger;
}

namespace bench
{
namespace
{
/// Operands as the library has them: a number, and a string that must be made first.
std::string operand(unsigned int number)
{
    return "device " + std::to_string(number) + " with a text too long to be stored in place";
}

void ourMessage(benchmark::State& state)
{
    unsigned int number = 1;
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(number);
        SONAVIT_LOG(benchmarklog, LOG_DEBUG, out.append(operand(number).c_str()), out + number);
    }
}

void nothing(benchmark::State& state)
{
    unsigned int number = 1;
    for (auto _ : state)
        benchmark::DoNotOptimize(number);
}

void callAndCompare(benchmark::State& state)
{
    unsigned int number = 1;
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(number);
        if (threshold() <= 1)
            benchmark::DoNotOptimize(operand(number));
    }
}

std::shared_ptr<spdlog::logger> silentLogger()
{
    auto logger = std::make_shared<spdlog::logger>("benchmark", std::make_shared<spdlog::sinks::null_sink_mt>());
    logger->set_level(spdlog::level::err);
    return logger;
}

/// The operands are evaluated behind the same question that the logger asks itself.
void theirMessage(benchmark::State& state)
{
    const std::shared_ptr<spdlog::logger> logger = silentLogger();
    unsigned int number = 1;
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(number);
        if (logger->should_log(spdlog::level::debug))
            SPDLOG_LOGGER_DEBUG(logger, "{} {}", operand(number), number);
    }
}

/// The same without the expensive operand.
void ourPlainMessage(benchmark::State& state)
{
    unsigned int number = 1;
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(number);
        SONAVIT_LOG(benchmarklog, LOG_DEBUG, out.append("device "), out + number);
    }
}

void theirPlainMessage(benchmark::State& state)
{
    const std::shared_ptr<spdlog::logger> logger = silentLogger();
    unsigned int number = 1;
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(number);
        if (logger->should_log(spdlog::level::debug))
            SPDLOG_LOGGER_DEBUG(logger, "device {}", number);
    }
}

void ourTrace(benchmark::State& state)
{
    unsigned int number = 1;
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(number);
        SONAVIT_TRACE(benchmarklog, "ourTrace");
    }
}
}

void addDisabledMessages(Comparisons& comparisons)
{
    comparisons.add("disabled message", ourMessage, "an empty loop", nothing);
    comparisons.add("disabled message", ourMessage, "a call and a compare", callAndCompare);
    comparisons.add("disabled message", ourMessage, "spdlog, should_log()", theirMessage);
    comparisons.add("disabled message, plain operand", ourPlainMessage, "spdlog, should_log()", theirPlainMessage);
    comparisons.add("disabled trace scope", ourTrace, "an empty loop", nothing);
    comparisons.add("disabled trace scope", ourTrace, "spdlog, should_log()", theirPlainMessage);
}
}
