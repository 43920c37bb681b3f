#include "views/DiskRowsModel.h"

#include "views/Shown.h"

#include <algorithm>
#include <utility>

namespace brindle {

namespace {

/// Where the row of \a identifier stands among \a rows from \a first on; their number where there is none.
std::size_t find(const std::vector<std::unique_ptr<DiskRowPresenter>> &rows, const QString &identifier,
                 std::size_t first)
{
    std::size_t index = first;
    while (index < rows.size() && rows[index]->identifier() != identifier)
        ++index;
    return index;
}

bool beginsWith(const RowPresenter &row, const QString &typed)
{
    return row.accessibleName().startsWith(typed, Qt::CaseInsensitive) ||
           row.identifier().startsWith(typed, Qt::CaseInsensitive);
}

} // namespace

DiskRowsModel::DiskRowsModel(RowSurroundings &surroundings, QObject *parent)
    : QAbstractListModel(parent),
      m_surroundings(surroundings)
{
}

void DiskRowsModel::setDisks(const std::vector<PhysicalDisk> &disks, const std::set<std::string> &expandedDisks)
{
    for (std::size_t place = 0; place < disks.size(); ++place) {
        const PhysicalDisk &disk = disks[place];
        const int to = static_cast<int>(place);
        const std::size_t found = brindle::find(m_rows, shown(disk.identifier), place);
        if (found == m_rows.size()) {
            beginInsertRows({}, to, to);
            auto row = std::make_unique<DiskRowPresenter>(disk, m_surroundings);
            row->setColorScheme(m_colorScheme);
            m_rows.insert(m_rows.begin() + to, std::move(row));
            endInsertRows();
        } else if (found != place) {
            const int from = static_cast<int>(found);
            beginMoveRows({}, from, from, {}, to);
            std::rotate(m_rows.begin() + to, m_rows.begin() + from, m_rows.begin() + from + 1);
            endMoveRows();
        }
        m_rows[place]->setDisk(disk);
        m_rows[place]->setIsExpanded(expandedDisks.contains(disk.identifier));
    }
    removeRowsFrom(disks.size());
}

void DiskRowsModel::removeRowsFrom(std::size_t first)
{
    if (first == m_rows.size())
        return;
    beginRemoveRows({}, static_cast<int>(first), static_cast<int>(m_rows.size()) - 1);
    const auto begin = m_rows.begin() + static_cast<std::ptrdiff_t>(first);
    m_goneRows.assign(std::make_move_iterator(begin), std::make_move_iterator(m_rows.end()));
    m_rows.erase(begin, m_rows.end());
    endRemoveRows();
}

void DiskRowsModel::setColorScheme(ColorScheme colorScheme)
{
    m_colorScheme = colorScheme;
    for (const auto &row : m_rows)
        row->setColorScheme(colorScheme);
}

int DiskRowsModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

QVariant DiskRowsModel::data(const QModelIndex &index, int role) const
{
    return role == rowRole && index.isValid() ? QVariant::fromValue(&row(index.row())) : QVariant();
}

QHash<int, QByteArray> DiskRowsModel::roleNames() const
{
    return {{rowRole, "row"}};
}

int DiskRowsModel::indexOf(const QString &identifier) const
{
    for (std::size_t index = 0; index < m_rows.size(); ++index) {
        const auto &partitions = m_rows[index]->partitionRows();
        const auto isThis = [&](const auto &row) { return row->identifier() == identifier; };
        if (isThis(m_rows[index]) || std::ranges::any_of(partitions, isThis))
            return static_cast<int>(index);
    }
    return -1;
}

QString DiskRowsModel::neighbour(const QString &identifier, int steps) const
{
    const std::vector<RowPresenter *> rows = allRows();
    if (rows.empty())
        return {};
    const auto place = std::ranges::find(rows, identifier, &RowPresenter::identifier);
    if (place == rows.end())
        return rows.front()->identifier();
    const auto last = static_cast<std::ptrdiff_t>(rows.size()) - 1;
    const std::ptrdiff_t wanted = std::clamp<std::ptrdiff_t>(place - rows.begin() + steps, 0, last);
    return rows[static_cast<std::size_t>(wanted)]->identifier();
}

QString DiskRowsModel::find(const QString &identifier, const QString &typed, bool isNext) const
{
    std::vector<RowPresenter *> rows = allRows();
    auto first = std::ranges::find(rows, identifier, &RowPresenter::identifier);
    if (first != rows.end() && isNext)
        ++first;
    std::rotate(rows.begin(), first, rows.end());
    const auto found = std::ranges::find_if(rows, [&](const RowPresenter *row) { return beginsWith(*row, typed); });
    return found == rows.end() ? QString() : (*found)->identifier();
}

std::vector<RowPresenter *> DiskRowsModel::allRows() const
{
    std::vector<RowPresenter *> rows;
    for (const auto &row : m_rows) {
        rows.push_back(row.get());
        for (const auto &partition : row->partitionRows())
            rows.push_back(partition.get());
    }
    return rows;
}

} // namespace brindle
