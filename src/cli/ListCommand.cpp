#include "cli/ListCommand.h"

#include "assembly/Assembly.h"
#include "base/BlockOn.h"
#include "cli/DiskTable.h"
#include "cli/Terminal.h"

#include <cstdio>
#include <utility>

namespace brindle {

ExitStatus listCommand(Platform platform, const ListOptions &options)
{
    Assembly assembly(std::move(platform));
    DiskManager &manager = assembly.diskManager();
    blockOn(manager.startScan(false));

    const std::string text = options.asJson ? encodeDisks(manager.disks(), JSONLayout::Indented) + '\n'
                                            : diskTable(manager.disks(), Terminal::ofStandardOutput());
    std::fwrite(text.data(), 1, text.size(), stdout);
    return ExitStatus::done;
}

} // namespace brindle
