#include "views/WindowContentPresenter.h"

#include "base/DefaultsKeys.h"
#include "base/NotificationNames.h"
#include "base/Spawn.h"
#include "base/Text.h"
#include "shell/EFICopyState.h"
#include "shell/ViewHeightCalculator.h"
#include "shell/WindowHeight.h"
#include "views/Shown.h"

#include <QPointer>

#include <algorithm>
#include <cmath>
#include <utility>

namespace brindle {

WindowContentPresenter::WindowContentPresenter(const Surroundings &surroundings, QObject *parent)
    : QObject(parent),
      m_diskManager(surroundings.model.diskManager),
      m_efiCopyManager(surroundings.efiCopyManager),
      m_eraseManager(surroundings.eraseManager),
      m_userDefaults(surroundings.userDefaults),
      m_scheduler(surroundings.scheduler),
      m_windowHost(surroundings.windowHost),
      m_unfinishedWork(surroundings.unfinishedWork),
      m_copyFlow(
          m_efiCopyManager, [this]() -> const std::vector<PhysicalDisk> & { return m_diskManager.disks(); },
          m_scheduler),
      m_rowSurroundings{.model = surroundings.model,
                        .userDefaults = surroundings.userDefaults,
                        .eraseFlow = surroundings.eraseFlow,
                        .onOperationStart =
                            [self = QPointer(this)](const std::string &status) {
                                if (self)
                                    self->setStatus(status, true);
                            },
                        .onOperationEnd =
                            [self = QPointer(this)] {
                                if (self)
                                    self->setStatus({}, false);
                            },
                        .onCopyEFI = [this](const PhysicalDisk &disk,
                                            const EFIPartition &partition) { m_copyFlow.onCopyEFI(disk, partition); },
                        .onRefresh = [this] { refresh(); },
                        .takesKeys = [this] { return m_takesKeys; }},
      m_rows(m_rowSurroundings),
      m_recalculation(
          surroundings.notifications.observe(NotificationNames::kRecalculatePopoverHeight, [this] { requestHeight(); }))
{
    observe();
    updateRows();
}

void WindowContentPresenter::observe()
{
    using Self = WindowContentPresenter;
    connect(&m_diskManager, &DiskManager::disksChanged, this, &Self::updateRows);
    connect(&m_diskManager, &DiskManager::expandedDisksChanged, this, &Self::updateRows);
    for (const auto signal : {&DiskManager::isLoadingDisksChanged, &DiskManager::hasCompletedInitialScanChanged}) {
        connect(&m_diskManager, signal, this, &Self::listStateChanged);
        connect(&m_diskManager, signal, this, &Self::footerChanged);
        connect(&m_diskManager, signal, this, &Self::requestHeight);
    }
    for (const auto signal : {&EFICopyManager::operationStatusChanged, &EFICopyManager::isOperationInProgressChanged})
        connect(&m_efiCopyManager, signal, this, &Self::footerChanged);
    for (const auto signal :
         {&EFICopyManager::showConfirmationDialogChanged, &EFICopyManager::isOperationInProgressChanged})
        connect(&m_efiCopyManager, signal, this, &Self::requestHeight);
    connect(&m_copyFlow, &EFICopyFlow::changed, this, &Self::contentChanged);
    connect(&m_copyFlow, &EFICopyFlow::changed, this, &Self::requestHeight);
    connect(&m_copy, &EFICopyFlowPresenter::dialogChanged, this, &Self::restAfterCopy);
    connect(&m_eraseManager, &EraseOperationManager::isActiveChanged, this, &Self::contentChanged);
    for (const auto signal : {&EraseOperationManager::isActiveChanged, &EraseOperationManager::stageChanged})
        connect(&m_eraseManager, signal, this, &Self::requestHeight);
    connect(&m_unfinishedWork, &UnfinishedWork::endsProcessChanged, this, &Self::quitNoticeChanged);
    connect(&m_userDefaults, &UserDefaults::valueChanged, this, [this](const std::string &key) {
        if (key == DefaultsKeys::kShowDiskSpaceIndicator)
            requestHeight();
    });
}

QString WindowContentPresenter::content() const
{
    if (m_copyFlow.showingDestinationSelection())
        return QStringLiteral("efiCopy");
    return m_eraseManager.isActive() ? QStringLiteral("erase") : QStringLiteral("diskList");
}

QString WindowContentPresenter::listState() const
{
    if (!m_diskManager.hasCompletedInitialScan())
        return QStringLiteral("firstScan");
    if (!m_diskManager.disks().empty())
        return QStringLiteral("rows");
    return isLoading() ? QStringLiteral("scanning") : QStringLiteral("empty");
}

FooterStatus WindowContentPresenter::footer() const
{
    return footerStatus({.isPerformingOperation = m_isPerformingOperation,
                         .statusMessage = m_statusMessage,
                         .efiCopyStatus = m_efiCopyManager.operationStatus(),
                         .efiCopyInProgress = m_efiCopyManager.isOperationInProgress(),
                         .isLoadingDisks = isLoading()});
}

QString WindowContentPresenter::statusSymbol() const
{
    return shown(footer().symbol);
}

QString WindowContentPresenter::statusColor() const
{
    return shown(footer().symbolColor.value);
}

QString WindowContentPresenter::statusText() const
{
    return shown(footer().text);
}

void WindowContentPresenter::refresh()
{
    if (!isLoading())
        spawn([&manager = m_diskManager] { return manager.refresh(false); });
}

QString WindowContentPresenter::quitNotice() const
{
    return m_unfinishedWork.endsProcess() ? QStringLiteral("Brindle quits as soon as this is done.") : QString();
}

bool WindowContentPresenter::mayClose()
{
    if (m_unfinishedWork.isThere())
        quit();
    return !m_unfinishedWork.isThere();
}

void WindowContentPresenter::quit()
{
    Q_EMIT quitRequested();
}

void WindowContentPresenter::setStatus(std::string statusMessage, bool isPerformingOperation)
{
    m_statusMessage = std::move(statusMessage);
    m_isPerformingOperation = isPerformingOperation;
    Q_EMIT footerChanged();
}

void WindowContentPresenter::updateRows()
{
    m_rows.setDisks(m_diskManager.disks(), m_diskManager.expandedDisks());
    Q_EMIT listStateChanged();
    requestHeight();
}

void WindowContentPresenter::restAfterCopy()
{
    if (m_copy.dialog() || !contains(m_efiCopyManager.operationStatus(), "successfully"))
        return;
    m_takesKeys = false;
    m_rest = m_scheduler.after(kRestAfterCopy, [this] { m_takesKeys = true; });
}

void WindowContentPresenter::appear()
{
    if (m_hasAppeared || !window())
        return;
    m_hasAppeared = true;
    connect(&m_windowHost, &WindowHost::screenParametersChanged, this, &WindowContentPresenter::requestHeight);
    m_currentHeight = cutToScreen(listHeight());
    requestHeightAfter({});
}

void WindowContentPresenter::requestHeight()
{
    if (m_hasAppeared)
        requestHeightAfter(kHeightDelay);
}

void WindowContentPresenter::requestHeightAfter(Scheduler::Duration delay)
{
    m_heightUpdate = m_scheduler.after(delay, [this] { updateHeight(); });
}

void WindowContentPresenter::updateHeight()
{
    const std::optional<WindowHost::WindowID> id = window();
    const double height = cutToScreen(rawHeight());
    if (!id || std::abs(height - m_currentHeight) <= kHeightTolerance)
        return;
    m_currentHeight = height;
    m_windowHost.setHeight(*id, height, false);
}

std::optional<WindowHost::WindowID> WindowContentPresenter::window() const
{
    const std::vector<WindowHost::Window> windows = m_windowHost.windows();
    const auto found = std::ranges::find_if(
        windows, [](const WindowHost::Window &window) { return window.isVisible && window.title.empty(); });
    return found == windows.end() ? std::nullopt : std::optional(found->id);
}

double WindowContentPresenter::rawHeight() const
{
    const std::optional<EFICopyState> state =
        efiCopyState(m_eraseManager, m_efiCopyManager, m_copyFlow.showingDestinationSelection(),
                     m_copyFlow.availableDestinations().size());
    return state ? state->contentHeight() : listHeight();
}

double WindowContentPresenter::listHeight() const
{
    const std::vector<PhysicalDisk> &disks = m_diskManager.disks();
    return ViewHeightCalculator(m_userDefaults).contentHeight(disks.size(), m_diskManager.expandedDisks(), disks);
}

double WindowContentPresenter::cutToScreen(double height) const
{
    return windowHeight(height, m_windowHost.visibleScreenHeight());
}

} // namespace brindle
