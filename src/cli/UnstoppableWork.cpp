#include "cli/UnstoppableWork.h"

#include "cli/Terminal.h"

#include <fmt/format.h>

#include <csignal>
#include <cstdio>
#include <utility>

namespace brindle {

UnstoppableWork::UnstoppableWork(std::string complaint, std::function<bool()> stop)
    : m_complaint(std::move(complaint)),
      m_stop(std::move(stop)),
      m_interruption([this](int signalNumber) { return interrupt(signalNumber); })
{
}

Interruption::Then UnstoppableWork::interrupt(int signalNumber)
{
    if (m_stop())
        return Interruption::Then::goOn;
    if (!std::exchange(m_isWaitedFor, true)) {
        tell(stderr,
             fmt::format("brindlectl: {}: waiting for the end. Interrupt again to leave at once.\n", m_complaint));
        return Interruption::Then::goOn;
    }
    return signalNumber == SIGINT ? Interruption::Then::endBySignal : Interruption::Then::goOn;
}

} // namespace brindle
