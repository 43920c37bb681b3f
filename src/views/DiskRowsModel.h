#pragma once

#include "views/DiskRowPresenter.h"

#include <QAbstractListModel>

#include <memory>
#include <set>
#include <string>
#include <vector>

namespace brindle {

/// The rows of the list of disks, in the order of the disks. A row lasts as long as its disk is listed: it is known by
/// the identifier.
class DiskRowsModel : public QAbstractListModel {
    Q_OBJECT

public:
    enum Role { rowRole = Qt::UserRole }; ///< "row" in QML: a DiskRowPresenter.

    explicit DiskRowsModel(RowSurroundings &surroundings, QObject *parent = nullptr); ///< Outlives the model.

    void setDisks(const std::vector<PhysicalDisk> &disks, const std::set<std::string> &expandedDisks);
    void setColorScheme(ColorScheme colorScheme);

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    [[nodiscard]] DiskRowPresenter &row(int index) const { return *m_rows[static_cast<std::size_t>(index)]; }

    // For the keyboard. All rows are meant, also those of partitions, by their identifiers.

    /// Of the disk that \a identifier is, or is a partition of; -1 where it is not listed.
    Q_INVOKABLE [[nodiscard]] int indexOf(const QString &identifier) const;

    /// The row \a steps down from \a identifier, or up where it is negative, as far as there are any; the first one
    /// where \a identifier is not listed; empty without rows.
    Q_INVOKABLE [[nodiscard]] QString neighbour(const QString &identifier, int steps) const;

    /// The next row after \a identifier, from the top again after the last one, whose text begins with \a typed in any
    /// case: the identifier or what stands in the row first. \a identifier itself is asked first unless \a isNext.
    Q_INVOKABLE [[nodiscard]] QString find(const QString &identifier, const QString &typed, bool isNext) const;

private:
    void removeRowsFrom(std::size_t first);
    [[nodiscard]] std::vector<RowPresenter *> allRows() const;

    RowSurroundings &m_surroundings;
    ColorScheme m_colorScheme = ColorScheme::light;
    std::vector<std::unique_ptr<DiskRowPresenter>> m_rows;
    /// Those that went last: a view shows them until it is drawn the next time.
    std::vector<std::unique_ptr<DiskRowPresenter>> m_goneRows;
};

} // namespace brindle
