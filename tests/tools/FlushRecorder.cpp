// Preloaded into a program, appends a line to the file FLUSH_LOG for each directory that the
// program flushes: its path.
#include <dlfcn.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

extern "C" __attribute__((visibility("default"))) int fsync(int descriptor)
{
    struct stat status = {};
    if (fstat(descriptor, &status) == 0 && S_ISDIR(status.st_mode)) {
        char path[4096];
        const std::string link = "/proc/self/fd/" + std::to_string(descriptor);
        const ssize_t size = readlink(link.c_str(), path, sizeof path);
        if (FILE* file = std::fopen(std::getenv("FLUSH_LOG"), "a")) {
            std::fprintf(file, "%.*s\n", int(size), path);
            std::fclose(file);
        }
    }
    return reinterpret_cast<int (*)(int)>(dlsym(RTLD_NEXT, "fsync"))(descriptor);
}
