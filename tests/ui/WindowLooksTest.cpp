#include "ui/QmlWindow.h"
#include "views/WindowContentFixture.h"

#include "support/FileTree.h"
#include "support/WaitUntil.h"

#include <fmt/format.h>

#include <gmock/gmock.h>

#include <map>
#include <optional>
#include <string>

namespace brindle {
namespace {

/// What stands round the rows: items by their paths, with what each shows, its size, weight and colour.
using Looks = std::map<std::string, std::string>;

/// One state of the list and the footer; the last of its operations waits, where it has one.
struct WindowState;

class WindowLooksTest : public WindowContentFixture, public testing::WithParamInterface<WindowState> {
public:
    void beforeTheFirstScan() { defaults.set(DefaultsKeys::kIsModeSwitchRelaunch, false); }

    void withoutDisks() { findNoDisks(); }

    void inAScanThatHasFoundNothingYet()
    {
        findNoDisks();
        tools.hold(kListing);
        m_scan.emplace(manager().startScan(true));
        awaitCall(kListing);
    }

    void inACopy()
    {
        places.hold();
        copyTo(root() + "/copy", "Preparing to copy EFI folder...");
    }

    void afterACopy() { copyTo(root() + "/copy", "EFI folder copied successfully"); }

    void afterACopyThatWasCancelled() { copyTo(std::nullopt, "Operation cancelled"); }

protected:
    void TearDown() override
    {
        tools.release(kListing);
        if (m_scan)
            finished(std::move(*m_scan));
        places.release();
        waitUntil([this] { return !copyManager.isOperationInProgress(); });
    }

    void show()
    {
        m_window.emplace("WindowContentView { width: 500; height: 400; readonly property QtObject theme: Theme }", 400,
                         QVariantMap{{QStringLiteral("presenter"), QVariant::fromValue(&content())}});
    }

    [[nodiscard]] Looks looksIn(ColorScheme scheme)
    {
        setColorScheme(m_window->engine(), scheme);
        QmlWindow::settle();
        const QImage picture = m_window->picture();
        Looks looks;
        for (const char *path :
             {"header/titleSymbol", "header/title", "header/refreshSpinner", "refreshButton/buttonSymbol",
              "firstScan/noticeSpinner", "firstScan/noticeTitle", "firstScan/noticeNote", "scanning/noticeSpinner",
              "scanning/noticeTitle", "scanning/noticeNote", "noDisks/noticeSpinner", "noDisks/noticeSymbol",
              "noDisks/noticeTitle", "noDisks/noticeNote", "footer/statusSpinner", "footer/statusSymbol",
              "footer/statusText", "quitButton/buttonSymbol"}) {
            if (m_window->shows(QString::fromLatin1(path)))
                looks.emplace(path, lookOf(m_window->item(QString::fromLatin1(path)), picture));
        }
        return looks;
    }

private:
    static constexpr const char *kListing = "/usr/sbin/diskutil list physical";

    /// Copies the folder of the only disk until this is its status.
    void copyTo(std::optional<std::string> place, const std::string &status)
    {
        writeSampleEFI(mountPoint() + "/EFI");
        hold({externalDisk("disk2", {{.identifier = "disk2s1", .isMounted = true, .mountPoint = mountPoint()}})});
        dialogs.savePaths = {std::move(place)};
        row().perform(RowAction::copyEFI);
        waitUntil([&] { return copyManager.operationStatus() == status; });
    }

    [[nodiscard]] std::string lookOf(const QQuickItem &item, const QImage &picture)
    {
        const auto color = item.property("color").value<QColor>();
        const auto font = item.property("font").value<QFont>();
        const bool isText = item.property("text").isValid();
        const QString shown = item.property(isText ? "text" : "name").toString();
        return fmt::format("{} {:.3g} {}{}{}", shown.isEmpty() ? "spinner" : shown.toStdString(),
                           isText ? font.pixelSize() : item.property("size").toDouble(), nameOf(color),
                           font.weight() == QFont::Medium ? " medium" : "",
                           isDrawn(item, picture) ? "" : " (not drawn)");
    }

    [[nodiscard]] std::string nameOf(const QColor &color)
    {
        for (const char *name : {"primary", "secondary", "blue", "green", "red"}) {
            if (themeColor(name) == color)
                return name;
        }
        return color.name().toStdString();
    }

    [[nodiscard]] QColor themeColor(const char *name)
    {
        return m_window->root().property("theme").value<QObject *>()->property(name).value<QColor>();
    }

    /// Whether anything but the background is seen at the item's place.
    [[nodiscard]] bool isDrawn(const QQuickItem &item, const QImage &picture)
    {
        QImage background = picture.copy(item.mapRectToScene(item.boundingRect()).toAlignedRect());
        const QImage seen = background;
        background.fill(themeColor("window"));
        return seen != background;
    }

    std::optional<QCoro::Task<>> m_scan;
    std::optional<QmlWindow> m_window;
};

struct WindowState {
    const char *name;
    void (WindowLooksTest::*arrange)();
    Looks looks; ///< But the title and the quit button, which are always there.
};

const WindowState kStates[] = {
    {.name = "BeforeTheFirstScan",
     .arrange = &WindowLooksTest::beforeTheFirstScan,
     .looks = {{"refreshButton/buttonSymbol", "arrow.clockwise 13 secondary"},
               {"firstScan/noticeSpinner", "spinner 24 secondary"},
               {"firstScan/noticeTitle", "Scanning disks... 11 secondary"},
               {"firstScan/noticeNote", "Verifying current state 10 secondary"},
               {"footer/statusText", "Ready 12 secondary"}}},
    {.name = "InAScanThatHasFoundNothingYet",
     .arrange = &WindowLooksTest::inAScanThatHasFoundNothingYet,
     .looks = {{"header/refreshSpinner", "spinner 16 secondary"},
               {"scanning/noticeSpinner", "spinner 24 secondary"},
               {"scanning/noticeTitle", "Scanning disks... 13 secondary"},
               {"footer/statusSpinner", "spinner 10.8 secondary"},
               {"footer/statusText", "Scanning disks... 12 secondary"}}},
    {.name = "WithoutDisks",
     .arrange = &WindowLooksTest::withoutDisks,
     .looks = {{"refreshButton/buttonSymbol", "arrow.clockwise 13 secondary"},
               {"noDisks/noticeSymbol", "externaldrive.badge.questionmark 26 secondary"},
               {"noDisks/noticeTitle", "No disks found 11 secondary"},
               {"footer/statusText", "Ready 12 secondary"}}},
    {.name = "InACopy",
     .arrange = &WindowLooksTest::inACopy,
     .looks = {{"refreshButton/buttonSymbol", "arrow.clockwise 13 secondary"},
               {"footer/statusSpinner", "spinner 13.2 secondary"},
               {"footer/statusText", "Preparing to copy EFI folder... 12 secondary"}}},
    {.name = "AfterACopy",
     .arrange = &WindowLooksTest::afterACopy,
     .looks = {{"refreshButton/buttonSymbol", "arrow.clockwise 13 secondary"},
               {"footer/statusSymbol", "checkmark.circle.fill 12 green"},
               {"footer/statusText", "EFI folder copied successfully 12 secondary"}}},
    {.name = "AfterACopyThatWasCancelled",
     .arrange = &WindowLooksTest::afterACopyThatWasCancelled,
     .looks = {{"refreshButton/buttonSymbol", "arrow.clockwise 13 secondary"},
               {"footer/statusSymbol", "xmark.circle.fill 12 red"},
               {"footer/statusText", "Operation cancelled 12 secondary"}}},
};

INSTANTIATE_TEST_SUITE_P(, WindowLooksTest, testing::ValuesIn(kStates),
                         [](const auto &state) { return state.param.name; });

TEST_P(WindowLooksTest, AreThoseOfItsStateInEitherScheme)
{
    (this->*GetParam().arrange)();
    Looks expected = GetParam().looks;
    expected.insert({{"header/titleSymbol", "externaldrive.fill 14 blue"},
                     {"header/title", "Brindle 14 primary medium"},
                     {"quitButton/buttonSymbol", "power 12 secondary"}});
    show();

    EXPECT_EQ(looksIn(ColorScheme::light), expected);
    EXPECT_EQ(looksIn(ColorScheme::dark), expected);
}

} // namespace
} // namespace brindle
