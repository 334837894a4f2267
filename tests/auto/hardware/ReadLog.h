#ifndef TESTS_READLOG_H
#define TESTS_READLOG_H

#include <QtCore/QString>
#include <QtCore/QVector>

// One read as it was asked of the kernel.
struct Read
{
    qint64 offset;
    qint64 size;
};

inline bool operator==(const Read& left, const Read& right)
{
    return left.offset == right.offset && left.size == right.size;
}

/*
 * Notes each read() of one file while it lives, in the order of the calls. The program's own read()
 * stands before the C library's, so what Qt asks for is seen before any buffer answers.
 */
class ReadLog
{
public:
    explicit ReadLog(const QString& filePath);
    ~ReadLog();

    QVector<Read> reads() const;

private:
    Q_DISABLE_COPY(ReadLog)
};

#endif
