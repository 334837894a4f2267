#ifndef TESTS_TERMINAL_H
#define TESTS_TERMINAL_H

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QScopedPointer>
#include <QtCore/QStringList>
#include <QtCore/QtGlobal>

class QProcess;

// A pseudo-terminal that shows the output of a program. The program's input does not come from it.
class Terminal
{
public:
    // Which of a program's streams goes to the terminal.
    enum Stream
    {
        StandardOutput,
        StandardError
    };

    explicit Terminal(int columns, Stream stream = StandardOutput);
    ~Terminal();

    // Runs program until it exits; returns all bytes that it wrote to the terminal.
    QByteArray run(const QString& program, const QStringList& arguments);

    // The same in steps: starts a program, writes to its input, waits until it has written text.
    void start(const QString& program, const QStringList& arguments);
    void write(const QByteArray& input);
    bool waitForText(const QByteArray& text);
    // Closes the input; returns all bytes that the program wrote.
    QByteArray finish();

    // The lines of the screen without trailing spaces. Characters after a carriage return overwrite
    // those of the line.
    static QList<QByteArray> screenAfter(const QByteArray& written);

private:
    Q_DISABLE_COPY(Terminal)

    QByteArray readAll() const;

    const Stream m_stream;
    int m_screen;
    int m_line;
    QByteArray m_written;
    QScopedPointer<QProcess> m_process;
};

#endif
