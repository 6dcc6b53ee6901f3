#pragma once

#include <exception>
#include <functional>

namespace sonavit::program
{
/// What the process does if the language ends it, as on an exception that leaves a destructor while another one is
/// under way: it calls a function and exits with code 1 instead of aborting. One object at a time.
class LastWords
{
public:
    explicit LastWords(std::function<void()> speak);
    ~LastWords();
    LastWords(const LastWords&) = delete;
    LastWords& operator=(const LastWords&) = delete;

private:
    std::terminate_handler m_before;
};
}
