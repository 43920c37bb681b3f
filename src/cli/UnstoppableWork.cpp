#include "cli/UnstoppableWork.h"

#include <fmt/format.h>

#include <cstdio>
#include <utility>

namespace brindle {

UnstoppableWork::UnstoppableWork(std::string complaint, std::function<bool()> stop)
    : m_complaint(std::move(complaint)),
      m_stop(std::move(stop))
{
    m_interruption.emplace([this] { interrupt(); }, Interruption::Then::goOn);
}

void UnstoppableWork::interrupt()
{
    if (m_stop())
        return;
    fmt::print(stderr, "brindlectl: {}: waiting for the end. Interrupt again to leave at once.\n", m_complaint);
    // Not within its own call. Whoever had the signals before gets the next one.
    QMetaObject::invokeMethod(
        &m_receiver, [this] { m_interruption.reset(); }, Qt::QueuedConnection);
}

} // namespace brindle
