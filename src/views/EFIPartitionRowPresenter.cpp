#include "views/EFIPartitionRowPresenter.h"

#include "shell/Color.h"
#include "shell/ViewHeightCalculator.h"
#include "views/Shown.h"

#include <utility>

namespace brindle {

EFIPartitionRowPresenter::EFIPartitionRowPresenter(PhysicalDisk disk, EFIPartition partition,
                                                   RowSurroundings &surroundings, QObject *parent)
    : RowPresenter(RowActions::Row::efiPartition, surroundings, parent),
      m_disk(std::move(disk)),
      m_partition(std::move(partition))
{
}

void EFIPartitionRowPresenter::setPartition(PhysicalDisk disk, EFIPartition partition)
{
    const bool looksAlike = m_partition == partition && m_partition.volumeName == partition.volumeName;
    m_disk = std::move(disk);
    m_partition = std::move(partition);
    if (!looksAlike)
        Q_EMIT changed();
}

QString EFIPartitionRowPresenter::identifier() const
{
    return shown(m_partition.identifier);
}

QString EFIPartitionRowPresenter::symbol() const
{
    return m_partition.isMounted ? QStringLiteral("checkmark.circle.fill") : QStringLiteral("circle");
}

QString EFIPartitionRowPresenter::symbolColor() const
{
    return shown((m_partition.isMounted ? Colors::kGreen : Colors::kSecondary).value);
}

QString EFIPartitionRowPresenter::label() const
{
    return shown(m_partition.volumeName.value_or(""));
}

double EFIPartitionRowPresenter::height() const
{
    return ViewHeightCalculator::rowHeight(m_partition);
}

QString EFIPartitionRowPresenter::accessibleName() const
{
    return QStringLiteral("EFI partition %1").arg(shown(m_partition.displayName()));
}

QString EFIPartitionRowPresenter::accessibleDescription() const
{
    return m_partition.isMounted ? QStringLiteral("Mounted") : QStringLiteral("Not mounted");
}

std::vector<RowMenuEntry> EFIPartitionRowPresenter::menu() const
{
    return partitionMenu(m_disk, m_partition, surroundings().offers);
}

void EFIPartitionRowPresenter::doubleClick()
{
    perform(RowAction::toggleMount);
}

std::vector<RowButton> EFIPartitionRowPresenter::rowButtons() const
{
    return partitionButtons(m_partition, surroundings().offers);
}

} // namespace brindle
