#pragma once

#include "views/RowPresenter.h"

namespace brindle {

/// The row of one EFI partition, under the row of a disk that has several.
class EFIPartitionRowPresenter : public RowPresenter {
    Q_OBJECT
    Q_PROPERTY(QString symbol READ symbol NOTIFY changed)
    Q_PROPERTY(QString symbolColor READ symbolColor NOTIFY changed)
    Q_PROPERTY(QString label READ label NOTIFY changed)  // empty: not shown
    Q_PROPERTY(double height READ height NOTIFY changed) // points

public:
    EFIPartitionRowPresenter(PhysicalDisk disk, EFIPartition partition, RowSurroundings &surroundings,
                             QObject *parent = nullptr);

    void setPartition(PhysicalDisk disk, EFIPartition partition); ///< A newer record of the same partition.

    [[nodiscard]] QString identifier() const override;
    [[nodiscard]] QString symbol() const;
    [[nodiscard]] QString symbolColor() const;
    [[nodiscard]] QString label() const;
    [[nodiscard]] double height() const;
    [[nodiscard]] QString toolTip() const override { return {}; }
    [[nodiscard]] QString accessibleName() const override;
    [[nodiscard]] QString accessibleDescription() const override;
    [[nodiscard]] std::vector<RowMenuEntry> menu() const override;

    /// The toggle action.
    void doubleClick() override;

private:
    [[nodiscard]] std::vector<RowButton> rowButtons() const override;
    [[nodiscard]] const PhysicalDisk &disk() const override { return m_disk; }
    [[nodiscard]] const EFIPartition *partitionFor(RowAction) const override { return &m_partition; }

    PhysicalDisk m_disk;
    EFIPartition m_partition;
};

} // namespace brindle
