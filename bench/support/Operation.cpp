#include "Operation.h"

#include "Messages.h"

Meter::~Meter() = default;

Contender& Contender::atMost(double ratio)
{
    m_target = ratio;
    return *this;
}

Contender& Contender::noDearer()
{
    m_target = 1.0;
    m_tolerance = 1.03;
    return *this;
}

bool Contender::isRight()
{
    if (m_before) {
        m_before();
    }
    return m_isRight();
}

void Contender::run(qint64 calls, Meter& meter)
{
    const qint64 callsAtOnce = m_before ? 1 : calls;
    for (qint64 done = 0; done < calls; done += callsAtOnce) {
        if (m_before) {
            m_before();
        }
        meter.begin();
        m_run(callsAtOnce);
        meter.end();
    }
}

QString nameOf(Measure measure)
{
    switch (measure) {
    case Measure::Instructions:
        return QStringLiteral("instructions");
    case Measure::Allocations:
        return QStringLiteral("allocations");
    case Measure::SystemCalls:
        return QStringLiteral("system calls");
    case Measure::BytesAsked:
        return QStringLiteral("bytes asked of files");
    case Measure::PeakMemory:
        return QStringLiteral("peak memory, KiB");
    case Measure::FileSize:
        return QStringLiteral("file size, bytes");
    }
    return QString();
}

Operation::Operation(const QString& name, const std::function<void(Contenders&)>& setUp)
    : m_name(name), m_setUp(setUp)
{
}

Operation& Operation::inTable()
{
    m_isInTable = true;
    return *this;
}

Operation& Operation::inPlot(const QString& plot, const QString& unit, qint64 size)
{
    m_plot = plot;
    m_unit = unit;
    m_size = size;
    return *this;
}

Operation& Operation::counted(qint64 calls)
{
    m_countedCalls = calls;
    return *this;
}

Operation& Operation::peakMeasured()
{
    m_isPeakMeasured = true;
    return *this;
}

Operation& Operation::measured(Measure measure, const std::function<qint64()>& find)
{
    m_ownMeasures.insert(measure, find);
    return *this;
}

Operation& Operation::logs(int messages)
{
    m_messages = messages;
    return *this;
}

Operation& Operation::limit(Measure measure, qint64 count)
{
    m_limits.insert(measure, count);
    return *this;
}

std::deque<Contender> Operation::contenders() const
{
    Contenders contenders;
    m_setUp(contenders);
    return contenders.all();
}

void Operation::check(Contender& contender, bool isSubject) const
{
    Messages::forget();
    if (!contender.isRight()) {
        qFatal("%s, %s: the result is wrong", qPrintable(m_name), qPrintable(contender.name()));
    }
    if (isSubject && Messages::count() != m_messages) {
        qFatal("%s: %d messages instead of %d, the last one: %s", qPrintable(m_name),
               Messages::count(), m_messages, qPrintable(Messages::last()));
    }
}
