#ifndef TESTS_READLOG_H
#define TESTS_READLOG_H

#include <QtCore/QString>
#include <QtCore/QVector>

// One read() call.
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
 * Records each read() of one file during its lifetime, in order. The program interposes read() of
 * the C library, so reads from Qt's buffers are not in the log.
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
