/// @file
/// A question to the worker and the wait for its answer.
#pragma once

#include "client/worker/worker.h"
#include "sonavit/result.h"

#include <condition_variable>
#include <exception>
#include <memory>
#include <mutex>
#include <new>
#include <optional>
#include <string>
#include <utility>

namespace sonavit::worker
{
/// The answer to one question: shared by the one who waits and the worker.
template<class T>
class Answer
{
public:
    /// Whether its caller has given up waiting.
    bool isLeft() const
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_isLeft;
    }

    /// On the worker: @p question gives the answer.
    template<class Question>
    void give(const std::string& operation, Question& question) noexcept
    {
        try
        {
            set(question());
        }
        catch (const std::bad_alloc&)
        {
            fail(std::current_exception());
        }
        catch (const std::exception& failure)
        {
            try
            {
                set(Problem(Problem::Kind::internal, operation, "", failure.what()));
            }
            catch (...)
            {
                fail(std::current_exception());
            }
        }
        catch (...)
        {
            try
            {
                set(Problem(Problem::Kind::internal, operation, "", "an exception that is no std::exception"));
            }
            catch (...)
            {
                fail(std::current_exception());
            }
        }
    }

    /// Waits for the answer until @p deadline. Throws std::bad_alloc if the worker has run out of memory.
    std::optional<Result<T>> wait(Clock& clock, Clock::Time deadline)
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_isLeft = !waitUntil(clock, m_changed, lock, deadline, [this] { return m_result || m_failure != nullptr; });
        if (m_failure != nullptr)
            std::rethrow_exception(m_failure);
        return std::move(m_result);
    }

private:
    void set(Result<T> result)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_result.emplace(std::move(result));
        m_changed.notify_all();
    }

    void fail(std::exception_ptr failure) noexcept
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_failure = std::move(failure);
        m_changed.notify_all();
    }

    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    std::optional<Result<T>> m_result;
    std::exception_ptr m_failure;
    bool m_isLeft = false;
};

/// Runs @p question, which returns Result<T>, on @p worker and waits for it, at most until @p deadline: then the answer
/// is Problem::Kind::noAnswer, and a reading that has not begun is never made. On the worker it is Kind::wouldWait.
template<class T, class Question>
Result<T> ask(Worker& worker, Urgency urgency, Clock::Time deadline, const std::string& operation,
              const std::string& object, Question question)
{
    if (worker.isThisThread())
        return Problem(Problem::Kind::wouldWait, operation, object, "the operation would wait for its own thread");
    const auto answer = std::make_shared<Answer<T>>();
    worker.post(urgency,
                [answer, urgency, operation, question = std::move(question)]() mutable
                {
                    if (urgency != Urgency::reading || !answer->isLeft())
                        answer->give(operation, question);
                });
    if (std::optional<Result<T>> result = answer->wait(worker.clock(), deadline))
        return *std::move(result);
    return Problem(Problem::Kind::noAnswer, operation, object, "the platform has not answered yet");
}
}
