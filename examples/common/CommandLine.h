#ifndef EXAMPLES_COMMANDLINE_H
#define EXAMPLES_COMMANDLINE_H

#include <QtCore/QCoreApplication>
#include <QtCore/QFileInfo>
#include <QtCore/QString>

#include <cstdio>

// What every example program says and reads the same way.
namespace CommandLine {

// Text that stays on its line whatever it holds: a file's name may contain line feeds and the
// commands of a terminal. They are shown as \x0a and the like.
inline QString printable(const QString& text)
{
    QString result;
    for (const QChar& character : text) {
        if (character.category() == QChar::Other_Control) {
            result += QStringLiteral("\\x%1").arg(character.unicode(), 2, 16, QLatin1Char('0'));
        } else {
            result += character;
        }
    }
    return result;
}

inline void writeLine(FILE* stream, const QString& line)
{
    std::fputs((line + QLatin1Char('\n')).toUtf8().constData(), stream);
    std::fflush(stream);
}

// A result, on standard output.
inline void print(const QString& line)
{
    writeLine(stdout, line);
}

// Trouble, on standard error, with the program's name in front.
inline void complain(const QString& trouble)
{
    const QString program = QFileInfo(QCoreApplication::applicationFilePath()).fileName();
    writeLine(stderr, program + QStringLiteral(": ") + trouble);
}

inline void complainOfUsage(const QString& trouble)
{
    complain(trouble);
    complain(QStringLiteral("try --help"));
}

// Reads a whole number from 1 upwards; tells whether text is one.
inline bool readPositive(const QString& text, int& number)
{
    bool isNumber = false;
    number = text.toInt(&isNumber);
    return isNumber && number > 0;
}

} // namespace CommandLine

#endif
