#include "HardwareInfo.h"
#include "TestCase.h"

#include <type_traits>

namespace {

using Setter = void (HardwareInfo::*)(const QString&);
using Getter = QString (HardwareInfo::*)() const;

// In the order of the record's fields.
const QVector<Setter> setters = {&HardwareInfo::setType,      &HardwareInfo::setTypeName,
                                 &HardwareInfo::setHwVersion, &HardwareInfo::setHwCompIndex,
                                 &HardwareInfo::setLpId,      &HardwareInfo::setComment};
const QVector<Getter> getters = {&HardwareInfo::type,      &HardwareInfo::typeName,
                                 &HardwareInfo::hwVersion, &HardwareInfo::hwCompIndex,
                                 &HardwareInfo::lpId,      &HardwareInfo::Comment};

QStringList values(const HardwareInfo& info)
{
    QStringList result;
    for (const Getter getter : getters) {
        result.append((info.*getter)());
    }
    return result;
}

const QStringList sixEmptyTexts = {QString(), QString(), QString(),
                                   QString(), QString(), QString()};

} // namespace

class tst_HardwareInfo : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void newRecordIsEmpty();
    void settersChangeOnlyTheirField_data();
    void settersChangeOnlyTheirField();
    void gettersReturnCopies();
    void copiesAreIndependent();
    void fieldsAreInDeclaredOrder();
};

void tst_HardwareInfo::newRecordIsEmpty()
{
    QCOMPARE(values(HardwareInfo()), sixEmptyTexts);
}

void tst_HardwareInfo::settersChangeOnlyTheirField_data()
{
    QTest::addColumn<int>("field");
    QTest::newRow("type") << 0;
    QTest::newRow("type name") << 1;
    QTest::newRow("version") << 2;
    QTest::newRow("compatibility index") << 3;
    QTest::newRow("LP-ID") << 4;
    QTest::newRow("comment") << 5;
}

void tst_HardwareInfo::settersChangeOnlyTheirField()
{
    QFETCH(int, field);
    HardwareInfo info;
    (info.*setters.at(field))("text");
    QStringList expected = sixEmptyTexts;
    expected[field] = "text";
    QCOMPARE(values(info), expected);

    (info.*setters.at(field))(QString());
    QCOMPARE(values(info), sixEmptyTexts);
}

void tst_HardwareInfo::gettersReturnCopies()
{
    HardwareInfo info;
    info.setComment("first");
    QString comment = info.Comment();
    comment.append(" changed");
    QCOMPARE(info.Comment(), QStringLiteral("first"));
}

void tst_HardwareInfo::copiesAreIndependent()
{
    HardwareInfo info;
    info.setType("original");
    const HardwareInfo constructed(info);
    HardwareInfo assigned;
    assigned = info;
    info.setType("changed");
    QCOMPARE(constructed.type(), QStringLiteral("original"));
    QCOMPARE(assigned.type(), QStringLiteral("original"));
}

void tst_HardwareInfo::fieldsAreInDeclaredOrder()
{
    static_assert(std::has_virtual_destructor<HardwareInfo>::value,
                  "may be deleted through a base pointer");
    static_assert(sizeof(HardwareInfo) == sizeof(void*) + 6 * sizeof(QString), "a fixed layout");

    HardwareInfo info;
    for (int i = 0; i < setters.size(); ++i) {
        (info.*setters.at(i))(QString::number(i));
    }
    const auto* fields =
        reinterpret_cast<const QString*>(reinterpret_cast<const char*>(&info) + sizeof(void*));
    for (int i = 0; i < setters.size(); ++i) {
        QCOMPARE(fields[i], QString::number(i));
    }
}

QTEST_GUILESS_MAIN(tst_HardwareInfo)
#include "tst_HardwareInfo.moc"
