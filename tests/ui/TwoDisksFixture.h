#pragma once

#include "ui/QmlWindow.h"
#include "views/WindowContentFixture.h"

#include <optional>

namespace brindle {

/// The list of a disk whose EFI partition is mounted (disk2) and of one that is open and shows two (disk4).
class TwoDisksFixture : public WindowContentFixture {
protected:
    QmlWindow &open()
    {
        PhysicalDisk stick = externalDisk("disk2", {{.identifier = "disk2s1", .isMounted = true}});
        stick.efiPartitions[0].mountPoint = mountPoint();
        hold({stick, externalDisk("disk4", {{.identifier = "disk4s1"}, {.identifier = "disk4s2"}})});
        manager().toggleExpanded("disk4");
        m_window.emplace("WindowContentView { width: 500; height: 600 }", 600,
                         QVariantMap{{QStringLiteral("presenter"), QVariant::fromValue(&content())}});
        return *m_window;
    }

private:
    std::optional<QmlWindow> m_window;
};

} // namespace brindle
