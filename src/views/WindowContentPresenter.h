#pragma once

#include "base/NotificationCenter.h"
#include "base/UnfinishedWork.h"
#include "efi/EFICopyManager.h"
#include "efi/EraseOperationManager.h"
#include "platform/WindowHost.h"
#include "views/DiskRowsModel.h"
#include "views/EFICopyFlow.h"
#include "views/EFICopyFlowPresenter.h"
#include "views/EraseProgressPresenter.h"
#include "views/FooterStatus.h"

#include <QObject>

#include <chrono>
#include <memory>
#include <optional>
#include <string>

namespace brindle {

/// What the window shows: the list of disks with its header and footer, or the copy or erase dialog in its place; and
/// how high the window is for that. Owns the status line of the rows' operations. Main thread only.
class WindowContentPresenter : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString content READ content NOTIFY contentChanged) // "diskList", "efiCopy" or "erase"
    Q_PROPERTY(brindle::DiskRowsModel *rows READ rows CONSTANT)
    Q_PROPERTY(QString listState READ listState NOTIFY listStateChanged) // "firstScan", "rows", "scanning" or "empty"
    Q_PROPERTY(bool isLoading READ isLoading NOTIFY listStateChanged)    // a scan runs
    Q_PROPERTY(double spinnerScale READ spinnerScale NOTIFY footerChanged)
    Q_PROPERTY(QString statusSymbol READ statusSymbol NOTIFY footerChanged)
    Q_PROPERTY(QString statusColor READ statusColor NOTIFY footerChanged)
    Q_PROPERTY(QString statusText READ statusText NOTIFY footerChanged)
    Q_PROPERTY(QString quitNotice READ quitNotice NOTIFY quitNoticeChanged) // empty while none is shown
    Q_PROPERTY(brindle::EFICopyFlowPresenter *copy READ copy CONSTANT)
    Q_PROPERTY(brindle::EraseProgressPresenter *erase READ erase CONSTANT)

public:
    /// Changes that come together lead to one change of the height.
    static constexpr std::chrono::milliseconds kHeightDelay{50};

    /// A change of the height up to this, in points, leaves the window alone.
    static constexpr double kHeightTolerance = 2;

    /// How long the rows can't be pressed by a key after the dialog of a copy that succeeded: it closes by itself, and
    /// a key that was meant for its "Close" comes when the list has the keyboard.
    static constexpr std::chrono::milliseconds kRestAfterCopy{500};

    /// What the window shows and acts on; all of it outlives the window.
    struct Surroundings {
        RowActions::Model model;
        EFICopyManager &efiCopyManager;
        EraseOperationManager &eraseManager;
        EraseFlow &eraseFlow;
        UserDefaults &userDefaults;
        Scheduler &scheduler;
        WindowHost &windowHost;
        UnfinishedWork &unfinishedWork;
        NotificationCenter &notifications;
    };

    explicit WindowContentPresenter(const Surroundings &surroundings, QObject *parent = nullptr);

    [[nodiscard]] QString content() const;
    [[nodiscard]] DiskRowsModel *rows() { return &m_rows; }
    [[nodiscard]] QString listState() const;
    [[nodiscard]] bool isLoading() const { return m_diskManager.isLoadingDisks(); }
    [[nodiscard]] double spinnerScale() const { return footer().spinnerScale; }
    [[nodiscard]] QString statusSymbol() const;
    [[nodiscard]] QString statusColor() const;
    [[nodiscard]] QString statusText() const;

    [[nodiscard]] QString quitNotice() const;

    [[nodiscard]] EFICopyFlow &copyFlow() { return m_copyFlow; }
    [[nodiscard]] EFICopyFlowPresenter *copy() { return &m_copy; }
    [[nodiscard]] EraseProgressPresenter *erase() { return &m_erase; }

    /// The window shows its content from now on; its height follows the content and the screen.
    void appear();

    /// Whether the window can go. Not while work is unfinished, which stays in sight: to close it is to quit then.
    [[nodiscard]] bool mayClose();

    void setColorScheme(ColorScheme colorScheme) { m_rows.setColorScheme(colorScheme); }

    // What header and footer offer.
    Q_INVOKABLE void refresh(); ///< Nothing while a scan runs.
    Q_INVOKABLE void quit();

Q_SIGNALS:
    void contentChanged();
    void listStateChanged();
    void footerChanged();
    void quitNoticeChanged();
    void quitRequested();

private:
    void observe();
    void setStatus(std::string statusMessage, bool isPerformingOperation);
    void updateRows();
    void restAfterCopy();
    void requestHeight();
    void requestHeightAfter(Scheduler::Duration delay);
    void updateHeight();
    [[nodiscard]] std::optional<WindowHost::WindowID> window() const;
    [[nodiscard]] double rawHeight() const;
    [[nodiscard]] double listHeight() const;
    [[nodiscard]] double cutToScreen(double height) const;
    [[nodiscard]] FooterStatus footer() const;

    DiskManager &m_diskManager;
    EFICopyManager &m_efiCopyManager;
    EraseOperationManager &m_eraseManager;
    UserDefaults &m_userDefaults;
    Scheduler &m_scheduler;
    WindowHost &m_windowHost;
    UnfinishedWork &m_unfinishedWork;
    EFICopyFlow m_copyFlow;
    EFICopyFlowPresenter m_copy{m_copyFlow, m_efiCopyManager};
    EraseProgressPresenter m_erase{m_eraseManager};
    RowSurroundings m_rowSurroundings;
    DiskRowsModel m_rows;
    std::string m_statusMessage;
    bool m_isPerformingOperation = false;
    bool m_takesKeys = true;
    bool m_hasAppeared = false;
    double m_currentHeight = 0; ///< The one now applied, in points.
    std::unique_ptr<Scheduler::Timer> m_heightUpdate;
    std::unique_ptr<Scheduler::Timer> m_rest;
    std::unique_ptr<NotificationCenter::Observation> m_recalculation;
};

} // namespace brindle
