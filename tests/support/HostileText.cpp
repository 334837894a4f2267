#include "HostileText.h"

#include <iterator>

QByteArray hostileText(QRandomGenerator& random)
{
    static const QByteArray pieces[] = {"\r",
                                        "\r",
                                        "\n",
                                        "\r\n",
                                        QByteArray(1, '\0'),
                                        "\xEF\xBB\xBF",
                                        "\xEF",
                                        "\xBB\xBF",
                                        "%",
                                        "%",
                                        "2",
                                        "2",
                                        "3",
                                        "3",
                                        "%23",
                                        ",",
                                        "\xFF",
                                        "\xC3",
                                        "\xA4",
                                        "\xC3\xA4",
                                        "a",
                                        "=",
                                        "\xE2\x82\xAC",
                                        "\xE2\x82",
                                        "\xF0\x9F\x98\x80",
                                        "\xF0\x9F",
                                        "\xED\xA0\x80",
                                        "\xC0\x80",
                                        "\xF4\x90\x80\x80"};
    QByteArray content;
    for (int count = random.bounded(24); count > 0; --count) {
        const QByteArray& piece =
            pieces[random.bounded(int(std::end(pieces) - std::begin(pieces)))];
        // Parsers ignore the text after a zero byte, so there are few of them.
        if (!piece.startsWith('\0') || random.bounded(8) == 0) {
            content += piece;
        }
    }
    return content;
}
