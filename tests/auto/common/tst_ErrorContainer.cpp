#include "ChildProcess.h"
#include "DestructionProbe.h"
#include "ErrorContainer.h"
#include "TestCase.h"

#include <QtCore/QThread>

#include <thread>
#include <type_traits>
#include <vector>

namespace {

// The fields of an ErrorContainer, in declaration order.
struct Layout
{
    virtual ~Layout() = default;
    int errorCode;
    QString errorMessage;
};

struct TypeBefore
{
};

struct TypeAfter
{
};

ErrorContainer makeError(int code, const QString& message)
{
    ErrorContainer error;
    error.setError(code, message);
    return error;
}

int registeredType()
{
    return QMetaType::type("ErrorContainer");
}

} // namespace

Q_DECLARE_METATYPE(TypeBefore)
Q_DECLARE_METATYPE(TypeAfter)

static_assert(std::has_virtual_destructor<ErrorContainer>::value, "virtual destructor");
static_assert(sizeof(ErrorContainer) == sizeof(Layout), "an int and a text");
static_assert(std::is_copy_constructible<ErrorContainer>::value, "a value");
static_assert(std::is_copy_assignable<ErrorContainer>::value, "a value");
static_assert(
    std::is_same<decltype(std::declval<const ErrorContainer&>().getErrorMessage()), QString>::value,
    "a copy of the text");
static_assert(QMetaTypeId<ErrorContainer>::Defined, "usable in a QVariant");

class ErrorChannel : public QObject
{
    Q_OBJECT

Q_SIGNALS:
    void happened(const ErrorContainer& error);

public Q_SLOTS:
    void take(const ErrorContainer& error)
    {
        code = error.getErrorCode();
        message = error.getErrorMessage();
        thread = QThread::currentThread();
        QThread::currentThread()->quit();
    }

public:
    int code = 0;
    QString message;
    QThread* thread = nullptr;
};

class tst_ErrorContainer : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void typeIsRegisteredByFirstUse_data(); // must be first: later functions register the type
    void typeIsRegisteredByFirstUse();
    void typeIsRegisteredOnce();
    void codesAreFixed();
    void newContainerHasNoError();
    void setErrorStoresCodeAndMessage_data();
    void setErrorStoresCodeAndMessage();
    void setCodeWithoutMessageClearsMessage();
    void setMessageWithoutCodeSetsDefaultCode();
    void copiesAreIndependent();
    void destructorIsVirtual();
    void variantHoldsACopy();
    void queuedSignalDeliversACopy_data();
    void queuedSignalDeliversACopy();
    void debugOutputFollowsStreamFormat_data();
    void debugOutputFollowsStreamFormat();
    void debugOutputKeepsStreamState();
    void messageContainsCodeAndText();
};

void tst_ErrorContainer::typeIsRegisteredByFirstUse_data()
{
    QTest::addColumn<bool>("constructs");
    QTest::addColumn<int>("threads");

    QTest::newRow("construction") << true << 1;
    QTest::newRow("explicit registration") << false << 1;
    QTest::newRow("construction in 8 threads") << true << 8;
    QTest::newRow("explicit registration in 8 threads") << false << 8;
}

void tst_ErrorContainer::typeIsRegisteredByFirstUse()
{
    QFETCH(bool, constructs);
    QFETCH(int, threads);

    QCOMPARE(registeredType(), int(QMetaType::UnknownType));
    // In a child process, so that each row is the first use of the type.
    const ChildResult result = ChildProcess::run([constructs, threads] {
        std::vector<int> types(size_t(threads), QMetaType::UnknownType);
        std::vector<std::thread> users;
        for (int& type : types) {
            users.emplace_back([constructs, &type] {
                if (constructs) {
                    ErrorContainer();
                } else {
                    ErrorContainer::registerTypes();
                }
                type = registeredType();
            });
        }
        for (std::thread& user : users) {
            user.join();
        }
        for (const int type : types) {
            if (type < QMetaType::User || type != types.front()) {
                return 1;
            }
        }
        return QByteArray(QMetaType::typeName(types.front())) == "ErrorContainer" ? 0 : 2;
    });
    QVERIFY(result.exited);
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(result.output, QByteArray());
    QCOMPARE(registeredType(), int(QMetaType::UnknownType));
}

void tst_ErrorContainer::typeIsRegisteredOnce()
{
    ErrorContainer::registerTypes();
    const int type = registeredType();
    QCOMPARE(type, qMetaTypeId<ErrorContainer>());

    // Type IDs are consecutive, so no type may be registered between these two.
    const int before = qRegisterMetaType<TypeBefore>();
    for (int i = 0; i < 1000; ++i) {
        const ErrorContainer error;
        ErrorContainer::registerTypes();
        QCOMPARE(registeredType(), type);
    }
    QCOMPARE(qRegisterMetaType<TypeAfter>(), before + 1);
}

void tst_ErrorContainer::codesAreFixed()
{
    QCOMPARE(ErrorContainer::getErrorCodeNoError(), 0);
    QCOMPARE(ErrorContainer::getDefaultErrorCode(), -1);
    QCOMPARE(ErrorContainer::getErrorCodeNoSuchFileOrDirectory(), -2);
    QCOMPARE(ErrorContainer::getErrorCodeOutOfMemory(), -12);
    QCOMPARE(ErrorContainer::getErrorCodeResourceBusy(), -16);
    QCOMPARE(ErrorContainer::getErrorCodeFunctionNotImplemented(), -38);
}

void tst_ErrorContainer::newContainerHasNoError()
{
    const ErrorContainer error;
    QCOMPARE(error.getErrorCode(), 0);
    QVERIFY(error.getErrorMessage().isNull());
    QVERIFY(!error.isError());
}

void tst_ErrorContainer::setErrorStoresCodeAndMessage_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("message");
    QTest::addColumn<bool>("isError");

    const QString text = "text";
    QTest::newRow("success") << 0 << QString() << false;
    QTest::newRow("success with a text") << 0 << text << false;
    QTest::newRow("default code without a text") << -1 << QString() << true;
    QTest::newRow("default code") << -1 << text << true;
    QTest::newRow("no such file") << -2 << text << true;
    QTest::newRow("code without a constant") << -5 << text << true;
    QTest::newRow("positive") << 1 << text << true;
    QTest::newRow("largest") << std::numeric_limits<int>::max() << text << true;
    QTest::newRow("smallest") << std::numeric_limits<int>::min() << text << true;
    QTest::newRow("non-ASCII text with a zero character")
        << -1 << QString::fromUtf16(u"\u00E4\0\u20AC", 3) << true;
}

void tst_ErrorContainer::setErrorStoresCodeAndMessage()
{
    QFETCH(int, code);
    QFETCH(QString, message);
    QFETCH(bool, isError);

    ErrorContainer error;
    error.setError(-99, "earlier");
    error.setError(code, message);
    QCOMPARE(error.getErrorCode(), code);
    QCOMPARE(error.getErrorMessage(), message);
    QCOMPARE(error.isError(), isError);
}

void tst_ErrorContainer::setCodeWithoutMessageClearsMessage()
{
    ErrorContainer error;
    for (const int code : {-2, -12, 7, 0}) {
        error.setError(-99, "earlier");
        error.setError(code);
        QCOMPARE(error.getErrorCode(), code);
        QVERIFY(error.getErrorMessage().isNull());
        QCOMPARE(error.isError(), code != 0);
    }
}

void tst_ErrorContainer::setMessageWithoutCodeSetsDefaultCode()
{
    ErrorContainer error;
    for (const int earlier : {0, -2, 7}) {
        for (const QString& message : {QStringLiteral("x"), QStringLiteral(""), QString()}) {
            error.setError(earlier, "earlier");
            error.setError(message);
            QCOMPARE(error.getErrorCode(), -1);
            QCOMPARE(error.getErrorMessage(), message);
            QCOMPARE(error.getErrorMessage().isNull(), message.isNull());
            QVERIFY(error.isError());
        }
    }
}

void tst_ErrorContainer::copiesAreIndependent()
{
    ErrorContainer original = makeError(-2, "first");
    const ErrorContainer copy = original;
    ErrorContainer assigned;
    assigned = original;
    original.setError(-16, "second");

    QCOMPARE(original.getErrorCode(), -16);
    QCOMPARE(original.getErrorMessage(), QStringLiteral("second"));
    for (const ErrorContainer& error : {copy, assigned}) {
        QCOMPARE(error.getErrorCode(), -2);
        QCOMPARE(error.getErrorMessage(), QStringLiteral("first"));
    }
}

void tst_ErrorContainer::destructorIsVirtual()
{
    QVERIFY(isDestroyedThroughBase<ErrorContainer>());
}

void tst_ErrorContainer::variantHoldsACopy()
{
    const QVariant variant = QVariant::fromValue(makeError(-16, "busy"));
    QCOMPARE(QByteArray(variant.typeName()), QByteArray("ErrorContainer"));
    const QVariant copy = variant;
    const ErrorContainer error = copy.value<ErrorContainer>();
    QCOMPARE(error.getErrorCode(), -16);
    QCOMPARE(error.getErrorMessage(), QStringLiteral("busy"));

    const QVariant fresh(registeredType(), nullptr);
    QVERIFY(fresh.canConvert<ErrorContainer>());
    QVERIFY(!fresh.value<ErrorContainer>().isError());
}

void tst_ErrorContainer::queuedSignalDeliversACopy_data()
{
    QTest::addColumn<bool>("byName");

    QTest::newRow("connected by pointer") << false;
    // Qt looks the type up by its name.
    QTest::newRow("connected by name") << true;
}

void tst_ErrorContainer::queuedSignalDeliversACopy()
{
    QFETCH(bool, byName);

    QThread thread;
    ErrorChannel sender;
    ErrorChannel receiver;
    receiver.moveToThread(&thread);
    if (byName) {
        QVERIFY(connect(&sender, SIGNAL(happened(ErrorContainer)), &receiver,
                        SLOT(take(ErrorContainer)), Qt::QueuedConnection));
    } else {
        QVERIFY(connect(&sender, &ErrorChannel::happened, &receiver, &ErrorChannel::take,
                        Qt::QueuedConnection));
    }
    {
        ErrorContainer error = makeError(-12, "no room");
        Q_EMIT sender.happened(error);
        error.setError(0); // the queued error is a copy
    }
    QVERIFY(receiver.thread == nullptr);
    thread.start();
    QVERIFY(thread.wait(30000));
    QCOMPARE(receiver.code, -12);
    QCOMPARE(receiver.message, QStringLiteral("no room"));
    QVERIFY(receiver.thread == &thread);
}

void tst_ErrorContainer::debugOutputFollowsStreamFormat_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("message");
    QTest::addColumn<bool>("quotes");
    QTest::addColumn<bool>("spaces");
    QTest::addColumn<QString>("output");

    const QString abc = "abc";
    QTest::newRow("default format") << -2 << abc << true << true << "-2 \"abc\" ";
    QTest::newRow("no quotes") << -2 << abc << false << true << "-2 abc ";
    QTest::newRow("no spaces") << -2 << abc << true << false << "-2\"abc\"";
    QTest::newRow("no quotes, no spaces") << -2 << abc << false << false << "-2abc";
    QTest::newRow("no error") << 0 << QString() << true << true << "0 \"\" ";
    QTest::newRow("no error, no quotes") << 0 << QString() << false << true << "0  ";
    QTest::newRow("spaces and special characters") << -38 << " a \"b\"\n"
                                                   << true << true << "-38 \" a \\\"b\\\"\\n\" ";
    QTest::newRow("spaces and special characters, no quotes") << -38 << " a \"b\"\n"
                                                              << false << true << "-38  a \"b\"\n ";
}

void tst_ErrorContainer::debugOutputFollowsStreamFormat()
{
    QFETCH(int, code);
    QFETCH(QString, message);
    QFETCH(bool, quotes);
    QFETCH(bool, spaces);
    QFETCH(QString, output);

    QString text;
    {
        QDebug debug(&text);
        debug.setAutoInsertSpaces(spaces);
        (quotes ? debug.quote() : debug.noquote()) << makeError(code, message);
    }
    QCOMPARE(text, output);
}

void tst_ErrorContainer::debugOutputKeepsStreamState()
{
    const ErrorContainer error = makeError(-2, "abc");
    QString text;
    QDebug(&text) << "before" << error << QStringLiteral("after") << error;
    QCOMPARE(text, QStringLiteral("before -2 \"abc\" \"after\" -2 \"abc\" "));

    text.clear();
    QDebug(&text).noquote().nospace() << error << '|' << error << QStringLiteral("|after");
    QCOMPARE(text, QStringLiteral("-2abc|-2abc|after"));
}

void tst_ErrorContainer::messageContainsCodeAndText()
{
    messages().expect(QtWarningMsg, "failed: -2 \"abc\"");
    qWarning() << "failed:" << makeError(-2, "abc");
}

QTEST_GUILESS_MAIN(tst_ErrorContainer)
#include "tst_ErrorContainer.moc"
