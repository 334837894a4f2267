#ifndef TESTS_LITERALVERSION_H
#define TESTS_LITERALVERSION_H

#include "VersionManager.h"

#include <QtCore/QString>
#include <QtCore/QStringList>

// The warnings of getters for parts that the format of the version lacks.
constexpr char onlyOldTest[] = "Test index exist only in old version.";
constexpr char onlyNewPatch[] = "Patch version exist only in new version.";
constexpr char onlyNewBuild[] = "Build number exist only in new version.";
constexpr char onlyNewHash[] = "Git hash exist only in new version.";

// A simple implementation of the rules of VersionManager and of its warnings.
struct LiteralVersion
{
    QString mainVersion;
    QString baseNumber;
    QString majorIndex;
    QString minorIndex;
    QString testIndex;
    QString patchVersion;
    QString buildNumber;
    QString gitHash;
    bool isOld = false;

    void read(const QString& version);
    void readOld(const QString& version);
    void readNew(const QString& version);

    // Logs the warnings of the getters, in the order in which componentsOf() calls them.
    void warnAsGetters() const;
};

// Every component as a text for comparison, which distinguishes null and empty.
QStringList componentsOf(const LiteralVersion& version);
QStringList componentsOf(const VersionManager& version);

#endif
