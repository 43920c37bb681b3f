#include "views/DiskRowContentPresenter.h"

#include "views/Shown.h"

#include <numeric>
#include <utility>

namespace brindle {

namespace {

QString weightName(FontWeight weight)
{
    switch (weight) {
    case FontWeight::medium:
        return QStringLiteral("medium");
    case FontWeight::bold:
        return QStringLiteral("bold");
    case FontWeight::regular:
        break;
    }
    return QStringLiteral("regular");
}

RowTextValue valueOf(const RowText &text)
{
    return {.text = shown(text.text),
            .size = text.size,
            .weight = weightName(text.weight),
            .color = shown(text.color.value)};
}

RowSymbolValue valueOf(const RowSymbol &symbol)
{
    return {.name = shown(symbol.name), .size = symbol.size, .color = shown(symbol.color.value)};
}

bool looksLike(const DiskRowContent &one, const DiskRowContent &other)
{
    return one.icon() == other.icon() && one.name() == other.name() && one.volumeLabel() == other.volumeLabel() &&
           one.details() == other.details() && one.spaceBar() == other.spaceBar() &&
           one.efiIndicator() == other.efiIndicator();
}

} // namespace

DiskRowContentPresenter::DiskRowContentPresenter(DiskRowContent content, const UserDefaults &defaults, QObject *parent)
    : QObject(parent),
      m_content(std::move(content)),
      m_defaults(defaults)
{
    m_content.readSettings(m_defaults);
    connect(&defaults, &UserDefaults::valueChanged, this, &DiskRowContentPresenter::readSettings);
}

bool DiskRowContentPresenter::setDisk(PhysicalDisk disk, bool efiMounted)
{
    DiskRowContent before = m_content;
    m_content.disk = std::move(disk);
    m_content.efiMounted = efiMounted;
    const bool isChange = !looksLike(before, m_content);
    if (isChange)
        Q_EMIT changed();
    return isChange;
}

void DiskRowContentPresenter::setColorScheme(ColorScheme colorScheme)
{
    if (std::exchange(m_content.colorScheme, colorScheme) != colorScheme)
        Q_EMIT changed();
}

void DiskRowContentPresenter::readSettings()
{
    const auto settings = [this] { return std::pair(m_content.showDiskSpaceIndicator, m_content.showSMARTStatus); };
    const auto before = settings();
    m_content.readSettings(m_defaults);
    if (settings() != before)
        Q_EMIT changed();
}

RowSymbolValue DiskRowContentPresenter::icon() const
{
    return valueOf(m_content.icon());
}

RowTextValue DiskRowContentPresenter::name() const
{
    return valueOf(m_content.name());
}

RowTextValue DiskRowContentPresenter::volumeLabel() const
{
    return valueOf(m_content.volumeLabel());
}

QVariantList DiskRowContentPresenter::details() const
{
    QVariantList list;
    for (const RowText &item : m_content.details())
        list << QVariant::fromValue(valueOf(item));
    return list;
}

QList<int> DiskRowContentPresenter::hiddenDetails(const QList<double> &widths, double bulletWidth, double moreWidth,
                                                  double availableWidth) const
{
    QList<int> hidden;
    double width = std::accumulate(widths.begin(), widths.end(), bulletWidth * static_cast<double>(widths.size() - 1));
    for (qsizetype i = widths.size() - 1; i >= 0 && width > availableWidth; --i) {
        if (m_content.isEssentialDetail(static_cast<std::size_t>(i)))
            continue;
        width -= widths.at(i) + bulletWidth;
        if (hidden.isEmpty())
            width += moreWidth + bulletWidth;
        hidden.prepend(static_cast<int>(i));
    }
    return hidden;
}

RowTextValue DiskRowContentPresenter::bullet() const
{
    return valueOf(DiskRowContent::bullet());
}

bool DiskRowContentPresenter::hasSpaceBar() const
{
    return m_content.spaceBar().has_value();
}

double DiskRowContentPresenter::usedRatio() const
{
    return m_content.spaceBar().value_or(SpaceBar()).ratio;
}

QString DiskRowContentPresenter::barColor() const
{
    return shown(m_content.spaceBar().value_or(SpaceBar()).color.value);
}

RowTextValue DiskRowContentPresenter::space() const
{
    return valueOf(m_content.spaceBar().value_or(SpaceBar()).space);
}

RowTextValue DiskRowContentPresenter::percent() const
{
    return valueOf(m_content.spaceBar().value_or(SpaceBar()).percent);
}

double DiskRowContentPresenter::fillWidth(double ratio, double availableWidth) const
{
    return hasSpaceBar() ? SpaceBar{.ratio = ratio}.fillWidth(availableWidth) : 0;
}

bool DiskRowContentPresenter::hasEFIIndicator() const
{
    return m_content.efiIndicator().has_value();
}

RowSymbolValue DiskRowContentPresenter::efiSymbol() const
{
    return valueOf(m_content.efiIndicator().value_or(EFIIndicator()).symbol.value_or(RowSymbol()));
}

RowTextValue DiskRowContentPresenter::efiCount() const
{
    return valueOf(m_content.efiIndicator().value_or(EFIIndicator()).count.value_or(RowText()));
}

RowTextValue DiskRowContentPresenter::efiLabel() const
{
    return valueOf(m_content.efiIndicator().value_or(EFIIndicator()).label);
}

} // namespace brindle
