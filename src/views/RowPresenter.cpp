#include "views/RowPresenter.h"

#include "base/Error.h"
#include "base/Spawn.h"
#include "base/Text.h"
#include "detectors/DiskDetails.h"
#include "state/AutoMountMarks.h"
#include "views/Shown.h"

#include <QPointer>

#include <fmt/format.h>

#include <utility>

namespace brindle {

namespace {

QCoro::Task<> showDiskDetails(Dialogs &dialogs, PhysicalDisk disk)
{
    auto showing = dialogs.alert({.messageText = fmt::format("{} — Disk Details", disk.name),
                                  .informativeText = diskDetailsText(disk),
                                  .style = AlertStyle::informational,
                                  .buttons = {"OK"}});
    co_await showing;
}

/// Keeps \a actions until \a work is done. What fails has been logged by then.
QCoro::Task<> run(std::shared_ptr<RowActions> actions, RowPresenter::Work work)
{
    try {
        auto task = work(*actions);
        co_await task;
    } catch (const Error &) {
    }
}

/// Does \a work; where that fails, an alert says so with \a words and gives the reason.
QCoro::Task<> telling(RowActions &actions, RowPresenter::Work work, std::string words, Dialogs &dialogs)
{
    std::string reason;
    try {
        auto task = work(actions);
        co_await task;
        co_return;
    } catch (const Error &error) {
        reason = trimmedWithNewlines(error.localizedDescription());
    }
    auto alert = dialogs.alert(
        {.messageText = std::move(words), .informativeText = reason.empty() ? "Unknown error" : std::move(reason)});
    co_await alert;
}

bool isExpanded(const DiskManager &manager, const std::string &identifier)
{
    return manager.expandedDisks().contains(identifier);
}

/// Nothing for a disk without an UUID.
void setIsAutoMount(UserDefaults &defaults, const PhysicalDisk &disk, bool isAutoMount)
{
    if (!disk.mediaUUID)
        return;
    AutoMountMarks marks = autoMountMarks(defaults);
    marks.erase(*disk.mediaUUID);
    if (isAutoMount)
        marks.emplace(*disk.mediaUUID, disk.name);
    setAutoMountMarks(defaults, marks);
}

QCoro::Task<> ignoreOutput(QCoro::Task<std::string> task)
{
    co_await task;
}

} // namespace

RowPresenter::RowPresenter(RowActions::Row row, RowSurroundings &surroundings, QObject *parent)
    : QObject(parent),
      m_surroundings(surroundings),
      m_actions(std::make_shared<RowActions>(row, surroundings.model, callbacks()))
{
}

QVariantList RowPresenter::buttons() const
{
    QVariantList list;
    for (const RowButton &button : rowButtons())
        list << QVariant::fromValue(RowButtonValue{.name = shown(button.name),
                                                   .symbol = shown(button.symbol),
                                                   .tip = shown(button.tip),
                                                   .action = static_cast<int>(button.action)});
    return list;
}

void RowPresenter::activate()
{
    if (m_surroundings.takesKeys())
        activateNow();
}

std::function<void()> RowPresenter::prepare(RowAction action)
{
    switch (action) {
    case RowAction::open:
    case RowAction::quickEdit:
        return [this, action] { // where it is mounted by then
            if (const EFIPartition *partition = partitionFor(action))
                performOnPartition(action, disk(), *partition);
        };
    case RowAction::toggleMount:
    case RowAction::copyEFI:
    case RowAction::renameEFI:
    case RowAction::eraseEFI:
        if (const EFIPartition *partition = partitionFor(action))
            return
                [this, action, disk = disk(), partition = *partition] { performOnPartition(action, disk, partition); };
        return [] {};
    case RowAction::toggleExpanded:
        return [&manager = m_surroundings.model.diskManager, identifier = disk().identifier,
                wasExpanded = isExpanded(m_surroundings.model.diskManager, disk().identifier)] {
            if (isExpanded(manager, identifier) == wasExpanded)
                manager.toggleExpanded(identifier);
        };
    case RowAction::toggleAutoMount:
        return [&defaults = m_surroundings.userDefaults, disk = disk(), wasAutoMount = isAutoMount()] {
            setIsAutoMount(defaults, disk, !wasAutoMount);
        };
    case RowAction::viewDetails:
    case RowAction::renameVolume:
    case RowAction::eject:
    case RowAction::eraseDisk:
    case RowAction::refresh:
        return [this, action, disk = disk()] { performOnDisk(action, disk); };
    }
    return [] {};
}

void RowPresenter::performOnPartition(RowAction action, const PhysicalDisk &disk, const EFIPartition &partition)
{
    if (action == RowAction::toggleMount)
        beginTelling([disk, partition](RowActions &actions) { return actions.toggle(disk, partition); },
                     fmt::format("The EFI partition ({}) on {} could not be {}", partition.identifier, disk.name,
                                 partition.isMounted ? "unmounted" : "mounted"));
    else if (action == RowAction::open)
        begin([partition](RowActions &actions) { return actions.open(partition); });
    else if (action == RowAction::copyEFI)
        m_surroundings.onCopyEFI(disk, partition);
    else if (action == RowAction::quickEdit)
        begin([partition](RowActions &actions) { return actions.quickEdit(partition); });
    else if (action == RowAction::renameEFI)
        begin([disk, partition](RowActions &actions) { return actions.askToRenameEFI(disk, partition); });
    else
        m_surroundings.eraseFlow.openForEFIPartition(disk, partition,
                                                     {m_surroundings.onOperationStart, m_surroundings.onOperationEnd});
}

void RowPresenter::performOnDisk(RowAction action, const PhysicalDisk &disk)
{
    if (action == RowAction::viewDetails)
        begin([&dialogs = m_surroundings.model.dialogs, disk](RowActions &) { return showDiskDetails(dialogs, disk); });
    else if (action == RowAction::renameVolume)
        begin([disk](RowActions &actions) { return actions.askToRenameVolume(disk); });
    else if (action == RowAction::eject)
        beginTelling([disk](RowActions &actions) { return ignoreOutput(actions.eject(disk)); },
                     fmt::format("{} could not be ejected", disk.name));
    else if (action == RowAction::eraseDisk)
        m_surroundings.eraseFlow.openForDisk(disk, {m_surroundings.onOperationStart, m_surroundings.onOperationEnd});
    else
        m_surroundings.onRefresh();
}

bool RowPresenter::isAutoMount() const
{
    return disk().mediaUUID && autoMountMarks(m_surroundings.userDefaults).contains(*disk().mediaUUID);
}

void RowPresenter::begin(Work work)
{
    spawn([actions = m_actions, work = std::move(work)] { return run(actions, work); });
}

void RowPresenter::beginTelling(Work work, std::string words)
{
    begin([work = std::move(work), words = std::move(words), &dialogs = m_surroundings.model.dialogs](
              RowActions &actions) { return telling(actions, work, words, dialogs); });
}

RowActions::Callbacks RowPresenter::callbacks()
{
    const QPointer<RowPresenter> self(this);
    const auto tell = [self] {
        if (self)
            Q_EMIT self->isLoadingChanged();
    };
    return {.onOperationStart =
                [tell, report = m_surroundings.onOperationStart](const std::string &status) {
                    tell();
                    report(status);
                },
            .onOperationEnd =
                [tell, report = m_surroundings.onOperationEnd] {
                    tell();
                    report();
                }};
}

} // namespace brindle
