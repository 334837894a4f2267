// Searches in the destructor of a file-scope object, which runs after Qt has destroyed its own
// globals, such as the locale's text codec.

#include "WildcardFilter.h"

#include <QtCore/QCoreApplication>

#include <cstdio>

namespace {

struct SearchAtExit
{
    QString path;

    ~SearchAtExit()
    {
        QStringList found;
        searchFilesOnPathRecursive(path, QStringList(), found);
        std::printf("%d entries\n", found.size());
    }
};

SearchAtExit searchAtExit;

} // namespace

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    searchAtExit.path = QCoreApplication::arguments().value(1);
    return 0;
}
