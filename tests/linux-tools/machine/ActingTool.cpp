// The acting verbs of diskutil over the machine file beside this program, and nothing else of diskutil.

#include "acting/ActingVerbs.h"
#include "machine/MachineFileActor.h"
#include "machine/MachineFileInventory.h"

#include <cstdio>

using namespace brindle::tools;

int main(int argc, char *argv[])
{
    ignoreHangUps();
    const std::vector<std::string> arguments(argv + 2, argv + argc);
    try {
        const MachineFile file(MachineFile::findRoot(programPath()).value());
        MachineFileInventory inventory(file);
        MachineFileActor actor(file, hasSimulatedPrivilege());
        const Outcome outcome = runActingVerb(argv[1], arguments, inventory, actor);
        std::fputs(outcome.output.c_str(), stdout);
        std::fputs(outcome.errors.c_str(), stderr);
        return outcome.status;
    } catch (const MachineFileError &error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
