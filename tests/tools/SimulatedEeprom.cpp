// Preloaded into a program, makes a file named "eeprom" behave like the kernel's file of an EEPROM:
// seeking beyond its end fails. Environment variables:
//   EEPROM_LOG       a file to which each write appends a line "OFFSET SIZE"
//   EEPROM_FAILS     offset of a write that fails
//   EEPROM_SIGNALS   offset of a write during which SIGTERM arrives
//   EEPROM_PROTECTS  offset of a write that has no effect
#include <dlfcn.h>
#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

template <typename Function>
Function* original(const char* name)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

bool isEeprom(const char* path)
{
    const char* name = std::strrchr(path, '/');
    return std::strcmp(name == nullptr ? path : name + 1, "eeprom") == 0;
}

bool isAt(const char* variable, off64_t offset)
{
    const char* value = std::getenv(variable);
    return value != nullptr && std::strtol(value, nullptr, 10) == offset;
}

void log(off64_t offset, size_t size)
{
    if (FILE* file = std::fopen(std::getenv("EEPROM_LOG"), "a")) {
        std::fprintf(file, "%ld %zu\n", long(offset), size);
        std::fclose(file);
    }
}

} // namespace

extern "C" __attribute__((visibility("default"))) int statfs64(const char* path,
                                                               struct statfs64* result)
{
    const int status = original<int(const char*, struct statfs64*)>("statfs64")(path, result);
    if (isEeprom(path)) {
        result->f_type = SYSFS_MAGIC;
    }
    return status;
}

extern "C" __attribute__((visibility("default"))) off64_t lseek64(int file, off64_t offset,
                                                                  int from)
{
    char path[4096] = "";
    struct stat64 status = {};
    const std::string link = "/proc/self/fd/" + std::to_string(file);
    if (readlink(link.c_str(), path, sizeof path - 1) > 0 && isEeprom(path) && from == SEEK_SET &&
        fstat64(file, &status) == 0 && offset > status.st_size) {
        errno = EINVAL;
        return -1;
    }
    return original<off64_t(int, off64_t, int)>("lseek64")(file, offset, from);
}

extern "C" __attribute__((visibility("default"))) ssize_t pwrite64(int file, const void* bytes,
                                                                   size_t size, off64_t offset)
{
    log(offset, size);
    if (isAt("EEPROM_SIGNALS", offset)) {
        std::raise(SIGTERM);
    }
    if (isAt("EEPROM_FAILS", offset)) {
        errno = EREMOTEIO;
        return -1;
    }
    if (isAt("EEPROM_PROTECTS", offset)) {
        return ssize_t(size);
    }
    return original<ssize_t(int, const void*, size_t, off64_t)>("pwrite64")(file, bytes, size,
                                                                            offset);
}
