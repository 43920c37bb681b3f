#pragma once

#include "efi/EraseFlow.h"
#include "efi/RowActions.h"
#include "platform/UserDefaults.h"
#include "records/PhysicalDisk.h"
#include "views/RowMenu.h"

#include <QObject>
#include <QString>
#include <QVariantList>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace brindle {

/// A RowButton as a view reads it.
struct RowButtonValue {
    Q_GADGET
    Q_PROPERTY(QString name MEMBER name CONSTANT)
    Q_PROPERTY(QString symbol MEMBER symbol CONSTANT)
    Q_PROPERTY(QString tip MEMBER tip CONSTANT)
    Q_PROPERTY(int action MEMBER action CONSTANT) // for RowPresenter::perform()

public:
    QString name;
    QString symbol;
    QString tip;
    int action = 0;

    bool operator==(const RowButtonValue &) const = default;
};

/// What the rows of one list share. What they act on outlives the actions that they have begun; the functions of the
/// container that they report to are called also after its end.
struct RowSurroundings {
    RowActions::Model model;
    UserDefaults &userDefaults;
    EraseFlow &eraseFlow;
    RowOffers offers = {};
    std::function<void(const std::string &status)> onOperationStart = [](const std::string &) {};
    std::function<void()> onOperationEnd = [] {};
    std::function<void(const PhysicalDisk &disk, const EFIPartition &partition)> onCopyEFI =
        [](const PhysicalDisk &, const EFIPartition &) {};
    std::function<void()> onRefresh = [] {};
    std::function<bool()> takesKeys = [] { return true; }; ///< Not those that were meant for a dialog.
};

/// A row on which the user acts: of a disk, or of one of its EFI partitions. It reports, calls and cleans up; what
/// fails has been logged by whoever did it, and a mount, an unmount and an eject are told of in an alert. An action
/// goes on when its row has gone.
class RowPresenter : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString identifier READ identifier CONSTANT)
    Q_PROPERTY(bool isLoading READ isLoading NOTIFY isLoadingChanged) // an action of this row is under way
    Q_PROPERTY(QVariantList buttons READ buttons NOTIFY changed)      // of RowButtonValue
    Q_PROPERTY(QString toolTip READ toolTip NOTIFY changed)
    Q_PROPERTY(QString accessibleName READ accessibleName NOTIFY changed)
    Q_PROPERTY(QString accessibleDescription READ accessibleDescription NOTIFY changed) // all that the row shows

public:
    using Work = std::function<QCoro::Task<>(RowActions &actions)>;

    [[nodiscard]] virtual QString identifier() const = 0;
    [[nodiscard]] bool isLoading() const { return m_actions->isLoading(); }
    [[nodiscard]] QVariantList buttons() const;
    [[nodiscard]] virtual QString toolTip() const = 0;
    [[nodiscard]] virtual QString accessibleName() const = 0;
    [[nodiscard]] virtual QString accessibleDescription() const = 0;
    [[nodiscard]] virtual std::vector<RowMenuEntry> menu() const = 0;

    /// \a action on the records as they are now, to be begun later: it does what was offered then, and nothing where
    /// that has been done meanwhile. One that the row doesn't offer does nothing. The row outlives it.
    [[nodiscard]] std::function<void()> prepare(RowAction action);

    void perform(RowAction action) { prepare(action)(); }
    Q_INVOKABLE void perform(int action) { perform(static_cast<RowAction>(action)); }

    Q_INVOKABLE virtual void doubleClick() = 0;

    /// What Space does, and whoever works without a pointer. Nothing while the container takes no keys.
    Q_INVOKABLE void activate();

    Q_INVOKABLE virtual void setOpen(bool) {} ///< Of a row that has rows beneath it.

Q_SIGNALS:
    void changed();
    void isLoadingChanged();

protected:
    RowPresenter(RowActions::Row row, RowSurroundings &surroundings, QObject *parent);

    [[nodiscard]] virtual std::vector<RowButton> rowButtons() const = 0;
    [[nodiscard]] virtual const PhysicalDisk &disk() const = 0;
    [[nodiscard]] bool isAutoMount() const; ///< The disk is mounted by itself when it is plugged in.

    /// The EFI partition that \a action is for; null where there is none.
    [[nodiscard]] virtual const EFIPartition *partitionFor(RowAction action) const = 0;

    virtual void activateNow() { doubleClick(); }

    /// Lets \a work run from the next turn of the event loop on.
    void begin(Work work);

    [[nodiscard]] RowSurroundings &surroundings() const { return m_surroundings; }

private:
    [[nodiscard]] RowActions::Callbacks callbacks();
    void performOnDisk(RowAction action, const PhysicalDisk &disk);
    void performOnPartition(RowAction action, const PhysicalDisk &disk, const EFIPartition &partition);
    void beginTelling(Work work, std::string words); ///< The same; an alert with \a words tells of a failure.

    RowSurroundings &m_surroundings;
    std::shared_ptr<RowActions> m_actions; ///< Shared with the actions that are under way.
};

} // namespace brindle
