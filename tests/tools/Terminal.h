#ifndef TESTS_TERMINAL_H
#define TESTS_TERMINAL_H

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QScopedPointer>
#include <QtCore/QStringList>
#include <QtCore/QtGlobal>

class QProcess;

// A terminal of its own that a program writes to; what the program reads does not come from there.
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

    // Runs program to its end; gives all that reached the terminal, as it was written.
    QByteArray run(const QString& program, const QStringList& arguments);

    // The same step by step: begins a program, gives it input, waits until it has written text.
    void start(const QString& program, const QStringList& arguments);
    void write(const QByteArray& input);
    bool waitForText(const QByteArray& text);
    // Ends the input; gives all that was written.
    QByteArray finish();

    // What a person sees in the end, as the lines of the screen without trailing blanks. A carriage
    // return goes back to the begin of the line, whose characters stay until others cover them.
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
