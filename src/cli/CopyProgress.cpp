#include "cli/CopyProgress.h"

#include "base/BlockOn.h"
#include "base/Completion.h"
#include "base/Error.h"
#include "base/Text.h"
#include "base/VisibleText.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdio>

namespace brindle {

namespace {

constexpr std::size_t kWidestBar = 40;
constexpr std::size_t kRoomForPercent = 9; // brackets, a blank, "100%" and the cursor's cell

QCoro::Task<bool> awaited(Completion<bool> completion)
{
    co_return co_await completion;
}

std::size_t barWidth(const Terminal &terminal)
{
    return std::min(kWidestBar, terminal.width - std::min(terminal.width, kRoomForPercent));
}

/// After these the engine looks once more at a cancellation.
bool canBeStopped(const EFICopyManager &manager)
{
    const std::string &status = manager.operationStatus();
    return status == "Preparing EFI copy operation..." || status == "Checking destination...";
}

} // namespace

CopyProgress::CopyProgress(EFICopyManager &manager)
    : m_manager(manager),
      m_terminal(Terminal::ofStandardOutput()),
      m_work("Files are being copied, which can't be stopped", [this] { return stopUnlessBegun(); })
{
    QObject::connect(&manager, &EFICopyManager::operationStatusChanged, &m_receiver, [this] { showStatus(); });
    QObject::connect(&manager, &EFICopyManager::operationProgressChanged, &m_receiver, [this] { showBar(); });
}

CopyProgress::~CopyProgress()
{
    clearBar();
}

void CopyProgress::waitForEnd()
{
    if (!m_manager.isOperationInProgress()) // an interruption has cancelled it
        return;
    const Completion<bool> end;
    QObject::connect(&m_manager, &EFICopyManager::isOperationInProgressChanged, &m_receiver, [this, end] {
        if (!m_manager.isOperationInProgress())
            end.complete(true);
    });
    blockOn(awaited(end));
}

void CopyProgress::requireSuccess() const
{
    if (!contains(m_manager.operationStatus(), "successfully"))
        throw Error("EFICopyManager", 1, m_manager.operationStatus());
}

void CopyProgress::showStatus()
{
    if (m_manager.operationStatus().empty())
        return;
    clearBar();
    tell(stdout, visibleText(m_manager.operationStatus()) + '\n');
    showBar();
}

void CopyProgress::showBar()
{
    if (m_terminal.width == 0 || !m_manager.isOperationInProgress())
        return;
    const std::size_t width = barWidth(m_terminal);
    const auto done = static_cast<std::size_t>(m_manager.operationProgress() * static_cast<double>(width));
    tell(stdout,
         fmt::format("\r[{:#<{}}{:-<{}}] {:3.0f}%", "", done, "", width - done, m_manager.operationProgress() * 100));
    m_hasBar = true;
}

void CopyProgress::clearBar()
{
    if (!m_hasBar)
        return;
    tell(stdout, fmt::format("\r{:{}}\r", "", barWidth(m_terminal) + kRoomForPercent - 1));
    m_hasBar = false;
}

bool CopyProgress::stopUnlessBegun()
{
    const bool canStop = canBeStopped(m_manager);
    if (canStop)
        m_manager.cancelOperation();
    else
        clearBar();
    return canStop;
}

} // namespace brindle
