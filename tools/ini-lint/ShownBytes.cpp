#include "ShownBytes.h"

#include "common/CommandLine.h"

#include <QtCore/QTextCodec>

QString ShownBytes::shown(const QByteArray& bytes)
{
    QTextCodec::ConverterState state(QTextCodec::IgnoreHeader);
    const QString text =
        QTextCodec::codecForName("UTF-8")->toUnicode(bytes.constData(), bytes.size(), &state);
    if (state.invalidChars == 0 && state.remainingChars == 0) {
        return CommandLine::printable(text).replace(QChar(QChar::ByteOrderMark),
                                                    QStringLiteral("\\xef\\xbb\\xbf"));
    }
    QString result;
    for (const char byte : bytes) {
        const bool isAscii = quint8(byte) < 0x80;
        result += isAscii ? CommandLine::printable(QString(QLatin1Char(byte)))
                          : QStringLiteral("\\x%1").arg(quint8(byte), 2, 16, QLatin1Char('0'));
    }
    return result;
}
