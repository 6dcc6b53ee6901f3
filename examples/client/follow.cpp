// Prints what changes, on the thread of a message loop, until Enter is pressed or a number of events has come:
// follow [<events>] [--machine <name>]
#include "simulatedmachine.h"

#include <sonavit/client.h>

#include <condition_variable>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <utility>

/// Stands for the message loop of a window; in a Windows program post() is PostMessage and wait() is GetMessage.
class MessageLoop
{
public:
    enum class Message
    {
        sound,
        quit
    };

    void post(Message message)
    {
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            (message == Message::sound ? m_hasSound : m_hasQuit) = true;
        }
        m_posted.notify_one();
    }

    Message wait()
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_posted.wait(lock, [this] { return m_hasSound || m_hasQuit; });
        if (m_hasQuit)
            return Message::quit;
        m_hasSound = false;
        return Message::sound;
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_posted;
    bool m_hasSound = false;
    bool m_hasQuit = false;
};

void printStart(const sonavit::Snapshot& start)
{
    for (const sonavit::Endpoint& endpoint : start.endpoints())
        if (endpoint.isActive())
            std::cout << endpoint.title() << ": " << (endpoint.volume() ? endpoint.volume()->sentence() : "no volume")
                      << "\n";
    for (const sonavit::Problem& problem : start.problems())
        std::cout << "not read: " << problem.sentence() << "\n";
    std::cout << std::flush;
}

int main(int count, char** words)
{
    const auto machine = machineOf(count, words); // without this line: the hardware of a Windows computer
    const unsigned long limit = count > 1 ? std::strtoul(words[1], nullptr, 10) : 0; // 0: until Enter
    // The loop is shared with the thread that waits for Enter, which may outlive main().
    const auto loop = std::make_shared<MessageLoop>();

    sonavit::System::Options options;
    options.delivery = sonavit::Delivery::poll;
    options.wake = [loop] { loop->post(MessageLoop::Message::sound); };
    sonavit::System audio(std::move(options));

    unsigned long printed = 0;
    const sonavit::Subscription subscription = audio.subscribe(
        [&](const sonavit::Change& change)
        {
            for (const sonavit::Event& event : change.events())
            {
                if (limit != 0 && printed == limit)
                    break;
                std::cout << event.sentence() << (event.origin == sonavit::Origin::own ? " (by this program)" : "")
                          << "\n";
                ++printed;
            }
            std::cout << std::flush;
            if (limit != 0 && printed == limit)
                loop->post(MessageLoop::Message::quit);
        });
    printStart(subscription.initial());
    if (machine)
        machine->simulation().events().playScript(); // what happens to that machine

    if (limit == 0)
        std::thread(
            [loop]
            {
                std::string line;
                std::getline(std::cin, line);
                loop->post(MessageLoop::Message::quit);
            })
            .detach();

    while (loop->wait() == MessageLoop::Message::sound)
        audio.poll(); // calls the subscriber, on this thread
    return 0;
}
