#pragma once

#include "views/DiskRowContentPresenter.h"
#include "views/EFIPartitionRowPresenter.h"
#include "views/RowPresenter.h"

#include <QList>

namespace brindle {

/// The row of one disk, with the rows of its EFI partitions where it has several and is open.
class DiskRowPresenter : public RowPresenter {
    Q_OBJECT
    Q_PROPERTY(brindle::DiskRowContentPresenter *content READ content CONSTANT)
    Q_PROPERTY(bool hasChevron READ hasChevron NOTIFY changed)
    Q_PROPERTY(bool isExpanded READ isExpanded NOTIFY changed)                       // with a chevron alone
    Q_PROPERTY(QString chevron READ chevron NOTIFY changed)                          // symbol
    Q_PROPERTY(QList<QObject *> partitions READ partitions NOTIFY partitionsChanged) // shown ones
    Q_PROPERTY(double height READ height NOTIFY changed)                             // points; of the disk's own row
    Q_PROPERTY(double wholeHeight READ wholeHeight NOTIFY changed)                   // with the partitions

public:
    /// Of the disk's symbol, in points.
    static constexpr double kIconSize = 24;

    DiskRowPresenter(PhysicalDisk disk, RowSurroundings &surroundings, QObject *parent = nullptr);

    void setDisk(PhysicalDisk disk); ///< A newer record of the same disk.
    void setIsExpanded(bool isExpanded);
    void setColorScheme(ColorScheme colorScheme) { m_content.setColorScheme(colorScheme); }

    [[nodiscard]] QString identifier() const override;
    [[nodiscard]] DiskRowContentPresenter *content() { return &m_content; }
    [[nodiscard]] bool hasChevron() const { return m_disk.efiPartitions.size() > 1; }
    [[nodiscard]] bool isExpanded() const { return m_isExpanded && hasChevron(); }
    [[nodiscard]] QString chevron() const;
    [[nodiscard]] QList<QObject *> partitions() const;
    [[nodiscard]] const std::vector<std::unique_ptr<EFIPartitionRowPresenter>> &partitionRows() const
    {
        return m_partitions;
    }
    [[nodiscard]] double height() const;
    [[nodiscard]] double wholeHeight() const;
    [[nodiscard]] QString toolTip() const override;
    [[nodiscard]] QString accessibleName() const override;
    [[nodiscard]] QString accessibleDescription() const override;
    [[nodiscard]] std::vector<RowMenuEntry> menu() const override;

    /// Mounts or unmounts the EFI partition of a disk that has exactly one.
    void doubleClick() override;

    void setOpen(bool isOpen) override; ///< Nothing for a disk without a chevron.

Q_SIGNALS:
    void partitionsChanged();

private:
    void activateNow() override; ///< A disk with several is opened or closed instead.
    [[nodiscard]] std::vector<RowButton> rowButtons() const override;
    [[nodiscard]] const PhysicalDisk &disk() const override { return m_disk; }
    [[nodiscard]] const EFIPartition *partitionFor(RowAction action) const override;
    void updatePartitions();

    PhysicalDisk m_disk;
    bool m_isExpanded = false;
    DiskRowContentPresenter m_content;
    std::vector<std::unique_ptr<EFIPartitionRowPresenter>> m_partitions; ///< Empty unless the row is open.
};

} // namespace brindle
