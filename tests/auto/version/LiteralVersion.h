#ifndef TESTS_LITERALVERSION_H
#define TESTS_LITERALVERSION_H

#include "VersionManager.h"

#include <QtCore/QString>
#include <QtCore/QStringList>

// The warnings of getters that the format of a version has no part for.
constexpr char onlyOldTest[] = "Test index exist only in old version.";
constexpr char onlyNewPatch[] = "Patch version exist only in new version.";
constexpr char onlyNewBuild[] = "Build number exist only in new version.";
constexpr char onlyNewHash[] = "Git hash exist only in new version.";

/*
 * The rules, written down as plainly as they are stated, and the warnings that come with them.
 */
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

    // The warnings of the getters, in the order in which componentsOf() asks them.
    void warnAsGetters() const;
};

// What is compared: every component, a null one told apart from an empty one.
QStringList componentsOf(const LiteralVersion& version);
QStringList componentsOf(const VersionManager& version);

#endif
