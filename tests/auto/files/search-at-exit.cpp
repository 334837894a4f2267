// Searches in the destructor of a file-scope object: that of a program with such objects runs after
// Qt's own globals are gone, the locale's text codec among them.

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
