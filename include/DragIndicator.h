#ifndef MISCTOOLS_DRAGINDICATOR_H
#define MISCTOOLS_DRAGINDICATOR_H

#include "MiscToolsGlobal.h"

#include <QtCore/QDateTime>
#include <QtCore/QJsonArray>
#include <QtCore/QList>
#include <QtCore/QString>

/*!
 * \brief Records the minimum and the maximum of a measured value, and when they occurred.
 *
 * Use it like the drag pointers of an instrument: pass every value to compute() and save the
 * records when it returns true. All values go into two records; reset() clears the first, and the
 * second one keeps the range since the first value. Do not use it as a log of values: only the
 * extremes are kept.
 *
 * \snippet DragIndicator.cpp compute
 *
 * \par Contract
 * - **Threads:** reentrant; one object must not be used in two threads at a time.
 * - **Ownership:** copies are independent.
 * - **Errors:** nothing throws; each function documents its warnings. A negative index is a
 *   programming error: it aborts the process, in release builds too.
 * - **Log messages:** \ref log-messages-dragindicator "log messages of DragIndicator".
 * - **Units and formats:** values are in the caller's unit. Dates are in local time; an imported
 *   date that has a zone keeps it. System time is not validated: if the clock is set back, a later
 *   extreme has an earlier date. A NaN as the first value of a record remains its minimum and
 *   maximum until reset(); later NaNs are ignored.
 *
 * \sa \ref drag-indicator, \ref formats, \ref gotchas
 * \since 1.0
 */
class MISCTOOLS_EXPORT DragIndicator
{
public:
    /*! \brief One record. */
    struct DragIndicatorInstance
    {
        QDateTime minValueDate;   /*!< When minValue was last lowered, or first set. */
        QDateTime maxValueDate;   /*!< When maxValue was last raised, or first set. */
        double minValue = 0.0;    /*!< The minimum; meaningless until initialized is true. */
        double maxValue = 0.0;    /*!< The maximum; meaningless until initialized is true. */
        bool initialized = false; /*!< True once the record has a value. */
    };

    /*! \brief The indexes of the records. */
    enum DragIndicatorInstances : int
    {
        ResettableInstance = 0, /*!< The record that reset() clears. */
        PermanentInstance = 1   /*!< The record that reset() does not change. */
    };

    /*! \brief Creates two empty records. */
    DragIndicator();
    virtual ~DragIndicator();

    /*! \brief Copies the records. */
    DragIndicator(const DragIndicator&) = default;
    /*! \brief Copies the records. */
    DragIndicator& operator=(const DragIndicator&) = default;

    /*! \brief Appends two empty records to the existing ones. */
    void initObject();

    /*! \brief Clears the first record; the others are unchanged. */
    void reset();

    /*!
     * \brief Adds \a value to every record.
     *
     * \return true if a record changed and should be saved; also true once after an import of dates
     *         in the older text form
     */
    bool compute(double value);

    /*!
     * \brief Adds \a value to the record \a instance.
     *
     * The first value becomes both minimum and maximum; later values only widen the range. A value
     * equal to an extreme does not update its date.
     *
     * \return as compute(), for this record
     */
    bool checkInstance(DragIndicator::DragIndicatorInstance& instance, double value);

    /*!
     * \brief Returns the minimum of a record.
     *
     * If there is no such record, returns 0.0 and warns "Error on reading min value for instance",
     * the index, "!".
     */
    double getMinValue(DragIndicator::DragIndicatorInstances instance) const;

    /*!
     * \brief Returns the maximum of a record.
     *
     * If there is no such record, returns 0.0 and warns as getMinValue() does, with "max value".
     */
    double getMaxValue(DragIndicator::DragIndicatorInstances instance) const;

    /*!
     * \brief Returns true if a record has a value.
     *
     * If there is no such record, returns false and warns as getMaxValue() does.
     */
    bool isInitialized(DragIndicator::DragIndicatorInstances instance) const;

    /*! \brief Returns true if \a dateString begins with a decimal digit of any script. */
    bool isIsoFormat(const QString& dateString) const;

    /*!
     * \brief Returns the records as an array with one object each.
     *
     * Members: "MinValue" and "MaxValue" (numbers), "MinValueDate" and "MaxValueDate" (strings such
     * as 2024-03-01T12:30:05, local time, empty without a date), "Initialized" (bool). JSON has no
     * NaN and no infinity: in a document such a value becomes null, which cannot be read back. A
     * record without a value has empty dates, which fromJsonArray() treats as an error: save only
     * records that have a value.
     */
    QJsonArray asJsonArray() const;

    /*!
     * \brief Replaces the records with those of \a jsonArray.
     *
     * \return true if the array is complete: two objects with all members and no empty date
     *
     * An error does not stop the import: of an incomplete object, the members that could be read
     * are kept, and an element that is no object is skipped. If the number of elements is wrong,
     * there are no records afterwards.
     *
     * A date that does not begin with a digit is parsed in the older text form (Fri Mar 1 12:30:05
     * 2024). Each error logs a warning, in the order of reading. "Resetting drag indicator due to
     * errors on importing json data!" is logged last; despite this text, what could be read is
     * kept.
     */
    bool fromJsonArray(const QJsonArray& jsonArray);

private:
    static const QString sm_KeyMinValue;
    static const QString sm_KeyMaxValue;
    static const QString sm_KeyMinValueDate;
    static const QString sm_KeyMaxValueDate;
    static const QString sm_KeyInitialized;

    QList<DragIndicatorInstance> m_instances;
    bool m_textDateImported;
};

#endif
