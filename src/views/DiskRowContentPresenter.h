#pragma once

#include "platform/UserDefaults.h"
#include "views/DiskRowContent.h"

#include <QObject>
#include <QString>
#include <QVariantList>

namespace brindle {

/// A RowText as a view reads it: plain text without anything that a view would obey.
struct RowTextValue {
    Q_GADGET
    Q_PROPERTY(QString text MEMBER text CONSTANT)
    Q_PROPERTY(double size MEMBER size CONSTANT)      // points
    Q_PROPERTY(QString weight MEMBER weight CONSTANT) // "regular", "medium" or "bold"
    Q_PROPERTY(QString color MEMBER color CONSTANT)   // a Color's value

public:
    QString text;
    double size = 0;
    QString weight;
    QString color;

    bool operator==(const RowTextValue &) const = default;
};

/// A RowSymbol as a view reads it.
struct RowSymbolValue {
    Q_GADGET
    Q_PROPERTY(QString name MEMBER name CONSTANT)
    Q_PROPERTY(double size MEMBER size CONSTANT)    // points
    Q_PROPERTY(QString color MEMBER color CONSTANT) // a Color's value

public:
    QString name;
    double size = 0;
    QString color;

    bool operator==(const RowSymbolValue &) const = default;
};

/// The content of one disk's row for a view. The two settings that it depends on take effect at once.
class DiskRowContentPresenter : public QObject {
    Q_OBJECT
    Q_PROPERTY(brindle::RowSymbolValue icon READ icon NOTIFY changed)
    Q_PROPERTY(brindle::RowTextValue name READ name NOTIFY changed)
    Q_PROPERTY(brindle::RowTextValue volumeLabel READ volumeLabel NOTIFY changed)
    Q_PROPERTY(QVariantList details READ details NOTIFY changed)  // of RowTextValue
    Q_PROPERTY(brindle::RowTextValue bullet READ bullet CONSTANT) // between two details
    Q_PROPERTY(bool hasSpaceBar READ hasSpaceBar NOTIFY changed)
    Q_PROPERTY(double usedRatio READ usedRatio NOTIFY changed) // 0 to 1
    Q_PROPERTY(QString barColor READ barColor NOTIFY changed)
    Q_PROPERTY(brindle::RowTextValue space READ space NOTIFY changed)
    Q_PROPERTY(brindle::RowTextValue percent READ percent NOTIFY changed)
    Q_PROPERTY(bool hasEFIIndicator READ hasEFIIndicator NOTIFY changed)
    Q_PROPERTY(brindle::RowSymbolValue efiSymbol READ efiSymbol NOTIFY changed) // without a name beside a count
    Q_PROPERTY(brindle::RowTextValue efiCount READ efiCount NOTIFY changed)     // without a text beside a symbol
    Q_PROPERTY(brindle::RowTextValue efiLabel READ efiLabel NOTIFY changed)

public:
    /// The settings of \a content are read from \a defaults, which outlives the presenter.
    DiskRowContentPresenter(DiskRowContent content, const UserDefaults &defaults, QObject *parent = nullptr);

    /// A newer record of the disk, told as a change where anything shown differs: records that are equal may look
    /// different. Gives whether it was told.
    bool setDisk(PhysicalDisk disk, bool efiMounted);
    void setColorScheme(ColorScheme colorScheme);

    [[nodiscard]] RowSymbolValue icon() const;
    [[nodiscard]] RowTextValue name() const;
    [[nodiscard]] RowTextValue volumeLabel() const;
    [[nodiscard]] QVariantList details() const;
    /// Which details, by their index, give way in a line of \a availableWidth: from the right, and what must be read at
    /// once never. "+n" of \a moreWidth stands in place of the first of them. \a widths are those of details(),
    /// \a bulletWidth counts the gaps round it.
    Q_INVOKABLE [[nodiscard]] QList<int> hiddenDetails(const QList<double> &widths, double bulletWidth,
                                                       double moreWidth, double availableWidth) const;
    [[nodiscard]] RowTextValue bullet() const;

    // Nothing to show, 0 or empty, without a space bar.
    [[nodiscard]] bool hasSpaceBar() const;
    [[nodiscard]] double usedRatio() const;
    [[nodiscard]] QString barColor() const;
    [[nodiscard]] RowTextValue space() const;
    [[nodiscard]] RowTextValue percent() const;
    /// How much of the bar is filled, in the unit of \a availableWidth; \a ratio is usedRatio(), or on its way there.
    Q_INVOKABLE [[nodiscard]] double fillWidth(double ratio, double availableWidth) const;

    // Likewise without an EFI indicator.
    [[nodiscard]] bool hasEFIIndicator() const;
    [[nodiscard]] RowSymbolValue efiSymbol() const;
    [[nodiscard]] RowTextValue efiCount() const;
    [[nodiscard]] RowTextValue efiLabel() const;

Q_SIGNALS:
    void changed();

private:
    void readSettings();

    DiskRowContent m_content;
    const UserDefaults &m_defaults;
};

} // namespace brindle
