#include "HardwareIdentification.h"
#include "support/Program.h"

#include <QtCore/QRegularExpression>

#include <algorithm>
#include <memory>

namespace {

QString id()
{
    return QStringLiteral("1234567891234567");
}

void addDigits(Contenders& contenders)
{
    const auto subject = std::make_shared<HardwareIdentification>(id());
    contenders.subject([subject, id = id()] { return subject->containsHardwareIDOnlyNumbers(id); },
                       equals(true));
    contenders.peer(
        QStringLiteral("QRegularExpression, compiled before"),
        [expression = QRegularExpression(QStringLiteral("[0-9]{16,16}")), id = id()] {
            return expression.match(id).hasMatch();
        },
        equals(true));
    contenders.peer(
        QStringLiteral("loop over sixteen characters"),
        [id = id()] {
            return std::all_of(id.cbegin(), id.cend(), [](const QChar& character) {
                return character >= QLatin1Char('0') && character <= QLatin1Char('9');
            });
        },
        equals(true));
}

void addConstruction(Contenders& contenders)
{
    contenders.subject([id = id()] { return HardwareIdentification(id); },
                       [](const HardwareIdentification& result) {
                           return result.isHardwareIDValid() &&
                                  result.getProductGroupNumber() == QStringLiteral("123456") &&
                                  result.getPartsListSales() == QStringLiteral("67");
                       });
}

Operations operations()
{
    return {
        Operation(QStringLiteral("containsHardwareIDOnlyNumbers"), addDigits)
            .inTable()
            .counted(100),
        Operation(QStringLiteral("construction"), addConstruction).inTable().counted(100),
    };
}

} // namespace

int main(int argc, char* argv[])
{
    return Program::run(argc, argv, operations());
}
