#include "views/DiskRowPresenter.h"

#include "shell/ViewHeightCalculator.h"
#include "views/Shown.h"

#include <algorithm>
#include <utility>

namespace brindle {

namespace {

DiskRowContent contentOf(const PhysicalDisk &disk)
{
    return {.disk = disk,
            .efiMounted = mountedEFIPartition(disk) != nullptr,
            .iconSize = DiskRowPresenter::kIconSize,
            .showEFIIndicator = true};
}

} // namespace

DiskRowPresenter::DiskRowPresenter(PhysicalDisk disk, RowSurroundings &surroundings, QObject *parent)
    : RowPresenter(RowActions::Row::disk, surroundings, parent),
      m_disk(std::move(disk)),
      m_content(contentOf(m_disk), surroundings.userDefaults)
{
    connect(&m_content, &DiskRowContentPresenter::changed, this, &DiskRowPresenter::changed);
}

void DiskRowPresenter::setDisk(PhysicalDisk disk)
{
    const std::vector<RowButton> buttons = rowButtons();
    const bool hadChevron = hasChevron();
    const bool hadUUID = m_disk.mediaUUID.has_value();
    const double wholeHeightBefore = wholeHeight();
    m_disk = std::move(disk);
    updatePartitions();
    const DiskRowContent content = contentOf(m_disk);
    const bool isTold = m_content.setDisk(content.disk, content.efiMounted);
    if (!isTold && (buttons != rowButtons() || hadChevron != hasChevron() || hadUUID != m_disk.mediaUUID.has_value() ||
                    wholeHeightBefore != wholeHeight()))
        Q_EMIT changed();
}

void DiskRowPresenter::setIsExpanded(bool isExpanded)
{
    if (std::exchange(m_isExpanded, isExpanded) == isExpanded)
        return;
    updatePartitions();
    Q_EMIT changed();
}

void DiskRowPresenter::updatePartitions()
{
    const std::vector<EFIPartition> &wanted = isExpanded() ? m_disk.efiPartitions : std::vector<EFIPartition>();
    const bool isSame = std::ranges::equal(
        m_partitions, wanted, {}, [](const auto &row) { return row->identifier(); },
        [](const EFIPartition &partition) { return shown(partition.identifier); });
    if (isSame) {
        for (std::size_t i = 0; i < wanted.size(); ++i)
            m_partitions[i]->setPartition(m_disk, wanted[i]);
        return;
    }
    const auto old = std::exchange(m_partitions, {});
    for (const EFIPartition &partition : wanted)
        m_partitions.push_back(std::make_unique<EFIPartitionRowPresenter>(m_disk, partition, surroundings()));
    Q_EMIT partitionsChanged();
}

QString DiskRowPresenter::identifier() const
{
    return shown(m_disk.identifier);
}

QString DiskRowPresenter::chevron() const
{
    return isExpanded() ? QStringLiteral("chevron.down") : QStringLiteral("chevron.right");
}

QList<QObject *> DiskRowPresenter::partitions() const
{
    QList<QObject *> list;
    for (const auto &row : m_partitions)
        list << row.get();
    return list;
}

double DiskRowPresenter::height() const
{
    return ViewHeightCalculator(surroundings().userDefaults).rowHeight(m_disk);
}

double DiskRowPresenter::wholeHeight() const
{
    return isExpanded() ? height() + ViewHeightCalculator::expansionHeight(m_disk) : height();
}

QString DiskRowPresenter::toolTip() const
{
    return shown(diskToolTip(m_disk));
}

QString DiskRowPresenter::accessibleName() const
{
    return QStringLiteral("%1, %2").arg(m_content.name().text, m_content.volumeLabel().text);
}

QString DiskRowPresenter::accessibleDescription() const
{
    QStringList parts{identifier()};
    for (const QVariant &detail : m_content.details())
        parts << detail.value<RowTextValue>().text;
    if (m_content.hasSpaceBar())
        parts << m_content.space().text << m_content.percent().text;
    if (!m_disk.efiPartitions.empty())
        parts << (mountedEFIPartition(m_disk) ? QStringLiteral("EFI mounted") : QStringLiteral("EFI not mounted"));
    return parts.join(QStringLiteral(", "));
}

std::vector<RowMenuEntry> DiskRowPresenter::menu() const
{
    return diskMenu(m_disk, isExpanded(), isAutoMount(), surroundings().offers);
}

void DiskRowPresenter::doubleClick()
{
    if (m_disk.efiPartitions.size() == 1)
        perform(RowAction::toggleMount);
}

void DiskRowPresenter::activateNow()
{
    if (hasChevron())
        perform(RowAction::toggleExpanded);
    else
        doubleClick();
}

void DiskRowPresenter::setOpen(bool isOpen)
{
    if (hasChevron() && isOpen != m_isExpanded)
        perform(RowAction::toggleExpanded);
}

std::vector<RowButton> DiskRowPresenter::rowButtons() const
{
    return diskButtons(m_disk, surroundings().offers);
}

const EFIPartition *DiskRowPresenter::partitionFor(RowAction action) const
{
    if (action == RowAction::copyEFI)
        return mountedEFIPartition(m_disk);
    return m_disk.efiPartitions.empty() ? nullptr : &m_disk.efiPartitions.front();
}

} // namespace brindle
