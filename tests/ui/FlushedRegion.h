#pragma once

#include <QRect>

namespace brindle {

/// What windows have handed to the screen while this lives, one at a time: what has been repainted.
class FlushedRegion {
public:
    FlushedRegion();
    ~FlushedRegion();
    FlushedRegion(const FlushedRegion &) = delete;
    FlushedRegion &operator=(const FlushedRegion &) = delete;

    [[nodiscard]] QRect bounds() const; ///< In points, of all windows; empty where nothing was.
};

} // namespace brindle
