#ifndef BENCH_OPERATION_H
#define BENCH_OPERATION_H

#include <QtCore/QMap>
#include <QtCore/QString>

#include <deque>
#include <functional>
#include <vector>

/*
 * An operation of the library: the subject, and its peers that do the same work by other means. It
 * may be timed beside them, be a point of a plot, and be counted.
 */

// What surrounds the calls that are measured.
class Meter
{
public:
    virtual ~Meter();

    virtual void begin() = 0;
    virtual void end() = 0;
};

// Keeps the compiler from leaving out what makes the value.
template <typename Value>
void keep(const Value& value)
{
    asm volatile("" : : "g"(&value) : "memory");
}

// Accepts one result.
template <typename Value>
auto equals(const Value& expected)
{
    return [expected](const Value& result) { return result == expected; };
}

class Contender
{
public:
    // The result of call goes to isRight, once, before anything is measured. What before does
    // precedes each call and is not measured; it puts back what the call changes.
    template <typename Call, typename IsRight>
    Contender(const QString& name, Call call, IsRight isRight, const std::function<void()>& before)
        : m_name(name)
        , m_isRight([call, isRight]() mutable { return isRight(call()); })
        , m_before(before)
        , m_run([call](qint64 calls) mutable {
            for (qint64 i = 0; i < calls; ++i) {
                const auto& result = call();
                keep(result);
            }
        })
    {
    }

    // The most that the subject may cost, as a multiple of this peer.
    Contender& atMost(double ratio);
    // The subject may cost as much as this peer, as far as a clock can tell.
    Contender& noDearer();

    const QString& name() const { return m_name; }
    double target() const { return m_target; }
    bool isMet(double ratio) const { return ratio <= m_target * m_tolerance; }

    bool isRight();
    void run(qint64 calls, Meter& meter);

private:
    QString m_name;
    std::function<bool()> m_isRight;
    std::function<void()> m_before;
    std::function<void(qint64)> m_run;
    double m_target = 0;
    double m_tolerance = 1;
};

// The subject and its peers, in the order in which they were added.
class Contenders
{
public:
    template <typename Call, typename IsRight>
    void subject(Call call, IsRight isRight, const std::function<void()>& before = {})
    {
        m_all.emplace_front(QStringLiteral("MiscTools"), call, isRight, before);
    }

    template <typename Call, typename IsRight>
    Contender& peer(const QString& name, Call call, IsRight isRight,
                    const std::function<void()>& before = {})
    {
        m_all.emplace_back(name, call, isRight, before);
        return m_all.back();
    }

    // The subject comes first.
    std::deque<Contender>& all() { return m_all; }

private:
    std::deque<Contender> m_all;
};

// What does not depend on how busy the machine is.
enum class Measure
{
    Instructions,
    Allocations,
    SystemCalls, // but for those that manage memory
    BytesAsked,  // of files in the workspace
    PeakMemory,  // KiB above what there was before
    FileSize     // bytes
};

QString nameOf(Measure measure);

class Operation
{
public:
    // setUp adds the contenders, and is called only when they are wanted.
    Operation(const QString& name, const std::function<void(Contenders&)>& setUp);

    // Where it is used; in nothing unless it is said.
    Operation& inTable();
    Operation& inPlot(const QString& plot, const QString& unit, qint64 size);
    // Everything but peak memory is counted, per call.
    Operation& counted(qint64 calls);
    Operation& peakMeasured();
    // A count that a function of its own finds.
    Operation& measured(Measure measure, const std::function<qint64()>& find);

    // The messages that one call logs; none unless it is said.
    Operation& logs(int messages);
    // The most that the count is to be.
    Operation& limit(Measure measure, qint64 count);

    const QString& name() const { return m_name; }
    bool isInTable() const { return m_isInTable; }
    const QString& plot() const { return m_plot; }
    const QString& unit() const { return m_unit; }
    qint64 size() const { return m_size; }
    qint64 countedCalls() const { return m_countedCalls; }
    bool isPeakMeasured() const { return m_isPeakMeasured; }
    const QMap<Measure, std::function<qint64()>>& ownMeasures() const { return m_ownMeasures; }
    const QMap<Measure, qint64>& limits() const { return m_limits; }

    // The contenders, made anew; the subject comes first.
    std::deque<Contender> contenders() const;
    // Ends the program unless the contender gives the right result, and the subject the right
    // number of messages.
    void check(Contender& contender, bool isSubject) const;

private:
    QString m_name;
    std::function<void(Contenders&)> m_setUp;
    bool m_isInTable = false;
    QString m_plot;
    QString m_unit;
    qint64 m_size = 0;
    qint64 m_countedCalls = 0;
    bool m_isPeakMeasured = false;
    QMap<Measure, std::function<qint64()>> m_ownMeasures;
    int m_messages = 0;
    QMap<Measure, qint64> m_limits;
};

using Operations = std::vector<Operation>;

#endif
