#include "views/WindowContentPresenter.h"

#include "base/DefaultsKeys.h"
#include "base/Spawn.h"
#include "views/Shown.h"

#include <utility>

namespace brindle {

WindowContentPresenter::WindowContentPresenter(const Surroundings &surroundings, QObject *parent)
    : QObject(parent),
      m_diskManager(surroundings.model.diskManager),
      m_efiCopyManager(surroundings.efiCopyManager),
      m_eraseManager(surroundings.eraseManager),
      m_userDefaults(surroundings.userDefaults),
      m_scheduler(surroundings.scheduler),
      m_copyFlow(
          m_efiCopyManager, [this]() -> const std::vector<PhysicalDisk> & { return m_diskManager.disks(); },
          m_scheduler),
      m_rowSurroundings{.model = surroundings.model,
                        .userDefaults = surroundings.userDefaults,
                        .eraseFlow = surroundings.eraseFlow,
                        .onOperationStart = [this](const std::string &status) { setStatus(status, true); },
                        .onOperationEnd = [this] { setStatus({}, false); },
                        .onCopyEFI = [this](const PhysicalDisk &disk,
                                            const EFIPartition &partition) { m_copyFlow.onCopyEFI(disk, partition); },
                        .onRefresh = [this] { refresh(); }},
      m_rows(m_rowSurroundings)
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
    connect(&m_eraseManager, &EraseOperationManager::isActiveChanged, this, &Self::contentChanged);
    for (const auto signal : {&EraseOperationManager::isActiveChanged, &EraseOperationManager::stageChanged})
        connect(&m_eraseManager, signal, this, &Self::requestHeight);
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

std::optional<EFICopyState> WindowContentPresenter::copyState() const
{
    return efiCopyState(m_eraseManager, m_efiCopyManager, m_copyFlow.showingDestinationSelection(),
                        m_copyFlow.availableDestinations().size());
}

double WindowContentPresenter::contentHeight() const
{
    if (const std::optional<EFICopyState> state = copyState())
        return state->contentHeight();
    const std::vector<PhysicalDisk> &disks = m_diskManager.disks();
    return ViewHeightCalculator(m_userDefaults).contentHeight(disks.size(), m_diskManager.expandedDisks(), disks);
}

void WindowContentPresenter::refresh()
{
    if (!isLoading())
        spawn([&manager = m_diskManager] { return manager.refresh(false); });
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

void WindowContentPresenter::requestHeight()
{
    m_heightUpdate = m_scheduler.after(kHeightDelay, [this] { Q_EMIT contentHeightChanged(); });
}

} // namespace brindle
