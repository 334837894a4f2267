#ifndef TESTS_TERMINAL_H
#define TESTS_TERMINAL_H

#include <QtCore/QByteArray>
#include <QtCore/QStringList>
#include <QtCore/QtGlobal>

// A terminal of its own that a program writes to.
class Terminal
{
public:
    explicit Terminal(int columns);
    ~Terminal();

    // Runs program to its end; gives all that reached the terminal, as it was written.
    QByteArray run(const QString& program, const QStringList& arguments);

private:
    Q_DISABLE_COPY(Terminal)

    QByteArray readAll() const;

    int m_screen;
    int m_line;
};

#endif
