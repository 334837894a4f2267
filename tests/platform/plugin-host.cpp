// A program that is not linked against the library: it loads a plugin that is linked against it,
// calls it, unloads it, and then uses what the plugin left in Qt's process-wide caches.

#include <QtCore/QFile>
#include <QtCore/QMetaType>
#include <QtCore/QSettings>

#include <cstdio>

#include <dlfcn.h>

int main(int argc, char* argv[])
{
    // As RaucSystemConfigIniManager reads it; Qt does not cache a missing file.
    const QString filePath = "/etc/rauc/system.conf";
    if (!QFile::exists(filePath)) {
        std::puts("device root: not available; this test needs one");
        return qEnvironmentVariableIsEmpty("CI") ? 77 : 1;
    }
    void* const plugin = argc == 2 ? dlopen(argv[1], RTLD_NOW) : nullptr;
    if (plugin == nullptr) {
        std::puts(argc == 2 ? dlerror() : "usage: plugin-host PLUGIN");
        return 1;
    }
    const auto useLibrary = reinterpret_cast<int (*)()>(dlsym(plugin, "useLibrary"));
    const int type = useLibrary();
    if (dlclose(plugin) != 0) {
        std::puts(dlerror());
        return 1;
    }

    const QVariant index = QSettings(filePath, QSettings::IniFormat).value("system/compatible");
    void* const error = QMetaType::create(type);
    QMetaType::destroy(type, error);
    std::printf("device index %s, error container %s\n", qPrintable(index.toString()),
                error != nullptr ? "created" : "not created");
    return index.isValid() && error != nullptr ? 0 : 1;
}
