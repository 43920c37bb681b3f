#pragma once

#include "platform/Workspace.h"

namespace brindle {

/// Opens nothing: for programs that nobody has asked to.
class NoWorkspace final : public Workspace {
public:
    void openFile(const std::string & /*path*/) override {}
};

} // namespace brindle
