#include "supervisor/posix/CCrew.h"

#include <zel/CError.h>

#include "supervisor/posix/CInterrupts.h"
#include "supervisor/posix/CKeeper.h"
#include "supervisor/posix/CRunTerminal.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <system_error>
#include <thread>

#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

namespace qix
{

namespace
{

/// In bytes of what has been told and printed and is not played back yet.
constexpr std::size_t mostKept = 64U << 20U;

constexpr std::size_t roomWorthCompacting = 1U << 16U;
constexpr int longestWait = 50; ///< milliseconds
constexpr std::size_t unitsBetweenLooks = 128;
constexpr char const interruptedText[] = "the run was interrupted";
/// What comes behind the waiting may be printed.
class CProgressHider
{
public:
    explicit CProgressHider(CRunTerminal& terminal) noexcept : m_terminal(terminal) {}
    CProgressHider(CProgressHider const&) = delete;
    CProgressHider& operator=(CProgressHider const&) = delete;
    ~CProgressHider() { m_terminal.hideProgress(); }

private:
    CRunTerminal& m_terminal;
};

constexpr char const lostText[] = "the process that watches over the test's process was ended";

} // namespace

CCrew::CCrew(std::vector<Unit> const& units, CrewOptions const& options, IUnitRunner& runner,
             CRunTerminal& terminal)
    : m_units(units), m_options(options), m_runner(runner), m_terminal(terminal), m_wake(makePipe())
{
    fcntl(m_wake.reader.get(), F_SETFL, O_NONBLOCK);
    fcntl(m_wake.writer.get(), F_SETFL, O_NONBLOCK);
    std::size_t const count = std::min<std::size_t>(options.processes, units.size());
    m_places.resize(count);
    for (std::size_t i = 0; i < count; ++i)
    {
        m_places[i].slot = std::make_unique<CSlot>(options.firstSlot + static_cast<unsigned>(i),
                                                   *m_state, m_wake.writer.get());
        startKeeper(m_places[i]);
    }
    m_terminal.add(*this);
}

CCrew::~CCrew()
{
    finish();
    m_terminal.remove(*this);
}

/// What waits in a buffer would be printed by both processes.
void CCrew::startKeeper(Place& place)
{
    std::fflush(nullptr);
    pid_t const supervisor = getpid();
    place.keeper = fork();
    if (place.keeper == -1)
    {
        throw std::system_error(errno, std::generic_category(), "no process for tests");
    }
    if (place.keeper == 0)
    {
        SlotWork const work = {*place.slot, *m_state, m_units, m_options, m_runner};
        CKeeper(work, supervisor).run();
    }
}

IMessageSource& CCrew::open(std::size_t unit)
{
    m_state->wantedUnit = unit;
    m_isAtEnd = false;
    m_leftovers.clear();
    if (unit % unitsBetweenLooks == 0)
    {
        drainAll();
    }
    CProgressHider const hider(m_terminal);
    m_terminal.stopIfAsked();
    for (;;)
    {
        auto const found =
            std::find_if(m_places.begin(), m_places.end(),
                         [this, unit](Place& place) { return hasBegun(place, unit); });
        if (found != m_places.end())
        {
            m_open = &*found;
            return *this;
        }
        if (m_isInterrupted && !areKeepersLeft())
        {
            return openNothing();
        }
        wait(nullptr);
    }
}

/// A unit that nobody will run.
IMessageSource& CCrew::openNothing()
{
    m_open = &m_places.front();
    m_open->message =
        CMessageWriter(MessageKind::Died).add(std::string_view(interruptedText)).bytes();
    m_isAtEnd = true;
    return *this;
}

bool CCrew::areKeepersLeft() const
{
    return std::any_of(m_places.begin(), m_places.end(),
                       [](Place const& place)
                       { return place.keeper > 0 || !place.slot->ring().isEmpty(); });
}

/// Ends what is running, as if it had taken too long.
void CCrew::endIfInterrupted()
{
    if (CInterrupts::signal() == 0 || m_isInterrupted)
    {
        return;
    }
    m_isInterrupted = true;
    m_state->isStopped = 1;
    for (Place const& place : m_places)
    {
        if (place.keeper > 0)
        {
            kill(place.keeper, SIGTERM);
        }
    }
}

/// Takes what belongs to units that nobody wants to know of.
bool CCrew::hasBegun(Place& place, std::size_t unit)
{
    while (place.unit < unit || place.isBetween)
    {
        if (!takeMessage(place))
        {
            return false;
        }
        CMessageReader message(place.message);
        switch (message.kind())
        {
        case MessageKind::UnitBegin:
            place.unit = message.number();
            place.isBetween = false;
            break;
        case MessageKind::Printed:
            takePrinted(place, message);
            break;
        case MessageKind::UnitEnd:
        case MessageKind::Died:
            place.isBetween = true;
            break;
        default:
            break;
        }
    }
    return place.unit == unit;
}

CMessageReader CCrew::next()
{
    CProgressHider const hider(m_terminal);
    while (!m_isAtEnd)
    {
        if (!takeMessage(*m_open))
        {
            std::fflush(stdout);
            wait(m_open);
            continue;
        }
        CMessageReader message(m_open->message);
        switch (message.kind())
        {
        case MessageKind::Printed:
            print(takePrinted(*m_open, message));
            break;
        case MessageKind::Leftover:
            m_leftovers.emplace_back(message.text());
            break;
        case MessageKind::UnitEnd:
        case MessageKind::Died:
            m_isAtEnd = true;
            m_open->isBetween = true;
            break;
        default:
            return message;
        }
    }
    return CMessageReader(m_open->message);
}

PrintedText CCrew::takePrinted(Place& place, CMessageReader message)
{
    std::uint64_t const out = message.number();
    return {place.slot->out().take(out), place.slot->err().take(message.number())};
}

void CCrew::print(PrintedText const& text) const
{
    if (m_isMuted)
    {
        return;
    }
    if (m_printed == nullptr)
    {
        m_terminal.hideProgress();
        text.print();
        return;
    }
    m_printed->out += text.out;
    m_printed->err += text.err;
}

void CCrew::close(std::function<void(std::string const&)> const& tellLeftover)
{
    while (!m_isAtEnd)
    {
        next();
    }
    std::for_each(m_leftovers.begin(), m_leftovers.end(), tellLeftover);
}

/// False when the next message is not there as a whole.
bool CCrew::takeMessage(Place& place)
{
    std::uint64_t size = 0;
    auto const isWhole = [&]
    {
        std::size_t const there = place.taken.size() - place.told;
        if (there < sizeof size)
        {
            return false;
        }
        std::memcpy(&size, place.taken.data() + place.told, sizeof size);
        return there - sizeof size >= size;
    };
    if (!isWhole())
    {
        place.taken.erase(0, std::exchange(place.told, 0));
        place.slot->ring().takeInto(place.taken);
        if (!isWhole())
        {
            return false;
        }
    }
    place.message.assign(place.taken, place.told + sizeof size, size);
    place.told += sizeof size + size;
    place.consumed += sizeof size + size;
    bool const isTorn = place.consumed == place.slot->state().endOfTorn;
    return isTorn ? takeMessage(place) : true;
}

/// Sleeps until there is something to do.
/// \param hungry  the place whose messages have all been played back, if any has
void CCrew::wait(Place* hungry)
{
    m_terminal.stopIfAsked();
    if (!m_options.isInteractive)
    {
        m_terminal.showProgress();
    }
    m_state->isWaiting = 1;
    if (hungry != nullptr)
    {
        hungry->slot->state().isHungry = 1;
    }
    bool const isThere = std::any_of(m_places.begin(), m_places.end(),
                                     [hungry](Place const& place)
                                     {
                                         bool const matters = hungry == nullptr || hungry == &place;
                                         return matters && !place.slot->ring().isEmpty();
                                     });
    bool const isIdle = !isThere && sleepUntilWoken(longestWait);
    m_state->isWaiting = 0;
    if (hungry != nullptr)
    {
        hungry->slot->state().isHungry = 0;
    }
    takeAll();
    endIfInterrupted();
    if (isIdle || m_isInterrupted)
    {
        checkKeepers();
    }
}

/// True when nothing has happened.
bool CCrew::sleepUntilWoken(int milliseconds)
{
    std::vector<pollfd> descriptors = {{m_wake.reader.get(), POLLIN, 0}};
    for (Place const& place : m_places)
    {
        descriptors.push_back({place.slot->out().reader(), POLLIN, 0});
        descriptors.push_back({place.slot->err().reader(), POLLIN, 0});
    }
    int const count = poll(descriptors.data(), descriptors.size(), milliseconds);
    std::array<char, 64> ignored{};
    while (read(m_wake.reader.get(), ignored.data(), ignored.size()) > 0)
    {
    }
    if (count > 0)
    {
        drainAll();
    }
    return count == 0;
}

void CCrew::drainAll()
{
    for (Place const& place : m_places)
    {
        place.slot->out().drain();
        place.slot->err().drain();
    }
}

/// Nobody who runs tests waits for room as long as there is memory for what they tell.
void CCrew::takeAll()
{
    std::size_t kept = 0;
    for (Place& place : m_places)
    {
        if (place.told > roomWorthCompacting)
        {
            place.taken.erase(0, std::exchange(place.told, 0));
        }
        place.slot->ring().takeInto(place.taken);
        kept += place.taken.size() + place.slot->out().kept() + place.slot->err().kept();
    }
    m_state->isOverfull = kept > mostKept ? 1 : 0;
}

void CCrew::checkKeepers()
{
    for (Place& place : m_places)
    {
        int status = 0;
        if (place.keeper > 0 && waitpid(place.keeper, &status, WNOHANG) == place.keeper)
        {
            place.keeper = 0;
            bool const hasEndedWell = WIFEXITED(status) && WEXITSTATUS(status) == 0;
            if (!hasEndedWell && !m_isFinished && !m_isInterrupted)
            {
                replaceKeeper(place);
            }
        }
    }
    if (!areKeepersLeft() && !m_isFinished && !m_isInterrupted)
    {
        throw zel::CError("The processes that run tests have ended before the tests.");
    }
}

/// The process that runs tests ends with its keeper.
void CCrew::replaceKeeper(Place& place)
{
    constexpr unsigned mostReplaced = 100;
    if (++m_replaced > mostReplaced)
    {
        throw zel::CError("The processes that watch over tests are ended again and again.");
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(longestWait));
    SlotState& state = place.slot->state();
    if (state.isInUnit != 0)
    {
        takeAll();
        place.slot->ring().completeTorn();
        place.slot->ring().send(
            CMessageWriter(MessageKind::Died).add(std::string_view(lostText)).bytes());
        state.isInUnit = 0;
        state.isUnitLeft = 0;
    }
    startKeeper(place);
}

void CCrew::finish()
{
    if (std::exchange(m_isFinished, true))
    {
        return;
    }
    awaitEnd();
    skipUntold();
    printRest();
}

/// What has run ahead of a run that has stopped is not told, nor what it has printed.
void CCrew::skipUntold()
{
    drainAll();
    for (Place& place : m_places)
    {
        while (takeMessage(place))
        {
            CMessageReader message(place.message);
            if (message.kind() == MessageKind::Printed)
            {
                takePrinted(place, message);
            }
        }
    }
}

void CCrew::awaitEnd()
{
    m_state->isStopped = 1;
    for (Place const& place : m_places)
    {
        if (place.keeper > 0 && place.slot->state().isInUnit != 0)
        {
            kill(place.keeper, SIGTERM);
        }
    }
    while (std::any_of(m_places.begin(), m_places.end(),
                       [](Place const& place) { return place.keeper > 0; }))
    {
        sleepUntilWoken(1);
        takeAll();
        endIfInterrupted();
        checkKeepers();
    }
}

/// What has been taken begins in the order in which it was taken.
bool CCrew::hasBegun(std::size_t unit) const
{
    return unit < m_state->nextUnit &&
           std::none_of(m_places.begin(), m_places.end(),
                        [unit](Place const& place)
                        {
                            SlotState const& state = place.slot->state();
                            return state.isUnitLeft != 0 && state.unit == unit;
                        });
}

void CCrew::printRest()
{
    drainAll();
    std::fflush(stdout);
    for (Place const& place : m_places)
    {
        SlotState const& state = place.slot->state();
        PrintedText{place.slot->out().take(state.out.read), place.slot->err().take(state.err.read)}
            .print();
    }
}

} // namespace qix
