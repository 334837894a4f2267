// Preloaded into a program, omits flushes: those of directories with FLUSH_VOID=directories, all
// with FLUSH_VOID=all.
#include <dlfcn.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>

namespace {

bool isVoid(int descriptor)
{
    const char* const omitted = std::getenv("FLUSH_VOID");
    if (omitted == nullptr) {
        return false;
    }
    struct stat status = {};
    return std::strcmp(omitted, "all") == 0 ||
           (fstat(descriptor, &status) == 0 && S_ISDIR(status.st_mode));
}

int flush(const char* function, int descriptor)
{
    return isVoid(descriptor)
               ? 0
               : reinterpret_cast<int (*)(int)>(dlsym(RTLD_NEXT, function))(descriptor);
}

} // namespace

extern "C" __attribute__((visibility("default"))) int fsync(int descriptor)
{
    return flush("fsync", descriptor);
}

extern "C" __attribute__((visibility("default"))) int fdatasync(int descriptor)
{
    return flush("fdatasync", descriptor);
}
