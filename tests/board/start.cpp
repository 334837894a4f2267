// Starts, uses the library if it is linked with it, and exits. With --memory it prints what the
// kernel reports about the memory of the process.

#include <QtCore/QCoreApplication>

#include <cstdio>
#include <cstring>

#ifdef WITH_MISCTOOLS
#include <UniqueIdGenerator.h>
#endif

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
#ifdef WITH_MISCTOOLS
    UniqueIdGenerator().getId();
#endif
    if (argc > 1 && std::strcmp(argv[1], "--memory") == 0) {
        std::FILE* status = std::fopen("/proc/self/smaps_rollup", "r");
        char line[256];
        while (status != nullptr && std::fgets(line, sizeof line, status) != nullptr) {
            std::fputs(line, stdout);
        }
        std::fclose(status);
    }
    return 0;
}
