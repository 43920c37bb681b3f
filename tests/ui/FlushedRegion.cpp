#include "ui/FlushedRegion.h"

#include <QRegion>

#include <dlfcn.h>

class QBackingStore;
class QPoint;
class QWindow;

namespace brindle {

namespace {

bool isWatching = false;
QRect flushed;

} // namespace

FlushedRegion::FlushedRegion()
{
    isWatching = true;
    flushed = {};
}

FlushedRegion::~FlushedRegion()
{
    isWatching = false;
}

QRect FlushedRegion::bounds() const
{
    return flushed;
}

} // namespace brindle

// QBackingStore::flush(), by which all painting goes to the screen: a program's own function stands before a library's.
extern "C" void flushBackingStore(
    QBackingStore *store, const QRegion &region, QWindow *window,
    const QPoint &offset) __asm__("_ZN13QBackingStore5flushERK7QRegionP7QWindowRK6QPoint");

void flushBackingStore(QBackingStore *store, const QRegion &region, QWindow *window, const QPoint &offset)
{
    if (brindle::isWatching)
        brindle::flushed |= region.boundingRect();
    static const auto real = reinterpret_cast<decltype(&flushBackingStore)>(
        dlsym(RTLD_NEXT, "_ZN13QBackingStore5flushERK7QRegionP7QWindowRK6QPoint"));
    real(store, region, window, offset);
}
