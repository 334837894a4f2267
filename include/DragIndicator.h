#ifndef MISCTOOLS_DRAGINDICATOR_H
#define MISCTOOLS_DRAGINDICATOR_H

#include "MiscToolsGlobal.h"

#include <QtCore/QDateTime>
#include <QtCore/QJsonArray>
#include <QtCore/QList>
#include <QtCore/QString>

/*!
 * \brief Keeps the lowest and the highest value that a measured value ever had, and when.
 *
 * \snippet DragIndicator.cpp compute
 *
 * Like the drag pointers of an instrument. Two records take the same values; reset() clears the
 * first of them, while the second goes on.
 *
 * \par Contract
 * - **Threads:** one object, one thread.
 * - **Ownership:** a value that may be copied.
 * - **Errors:** nothing throws; each function says what it warns of. A negative index is no error
 *   that is reported: it ends the process, in every build.
 * - **Units and formats:** values in the caller's unit; dates are local, but one that was imported
 *   with a zone keeps it. Dates are what the clock says at the moment: when the clock is set back,
 *   a later extreme has an earlier date. A NaN as the first value of a record stays its minimum and
 *   maximum until reset(); later NaNs are passed over.
 *
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
        double minValue = 0.0;    /*!< The lowest value; means nothing before initialized. */
        double maxValue = 0.0;    /*!< The highest value; means nothing before initialized. */
        bool initialized = false; /*!< Whether there was a value yet. */
    };

    /*! \brief The records, by their place in the list. */
    enum DragIndicatorInstances : int
    {
        ResettableInstance = 0, /*!< The one that reset() clears. */
        PermanentInstance = 1   /*!< The one that reset() leaves alone. */
    };

    /*! \brief Two empty records. */
    DragIndicator();
    virtual ~DragIndicator();

    /*! \brief An independent copy. */
    DragIndicator(const DragIndicator&) = default;
    /*! \brief Makes this an independent copy. */
    DragIndicator& operator=(const DragIndicator&) = default;

    /*! \brief Appends two empty records to those that are there. */
    void initObject();

    /*! \brief Empties the first record; the others stay. */
    void reset();

    /*!
     * \brief Takes \a value into every record.
     *
     * \return whether any record changed, so that it is worth saving; also true once after an
     *         import of dates in the older text form
     */
    bool compute(double value);

    /*!
     * \brief Takes \a value into the record \a instance, which is changed in place.
     *
     * The first value becomes both minimum and maximum; later ones only widen the range. A value
     * that equals an extreme does not renew its date. The result is that of compute().
     */
    bool checkInstance(DragIndicator::DragIndicatorInstance& instance, double value);

    /*!
     * \brief The minimum of a record.
     *
     * Where there is no such record, warns "Error on reading min value for instance", the number,
     * "!", and gives 0.0.
     */
    double getMinValue(DragIndicator::DragIndicatorInstances instance) const;

    /*! \brief The maximum of a record; as getMinValue(), with "max value" in the warning. */
    double getMaxValue(DragIndicator::DragIndicatorInstances instance) const;

    /*!
     * \brief Whether a record has taken a value yet.
     *
     * Where there is no such record, warns as getMaxValue() does, and gives false.
     */
    bool isInitialized(DragIndicator::DragIndicatorInstances instance) const;

    /*! \brief Whether \a dateString begins with a decimal digit, of any script. */
    bool isIsoFormat(const QString& dateString) const;

    /*!
     * \brief The records as an array with one object each.
     *
     * Members: "MinValue" and "MaxValue" (numbers), "MinValueDate" and "MaxValueDate" (texts such
     * as 2024-03-01T12:30:05, local time, empty without a date), "Initialized" (bool). JSON knows
     * no NaN and no infinity: in a document such a value becomes null, which cannot be read
     * back. A record that has no value yet has empty dates, and fromJsonArray() counts these as an
     * error: save records that have a value.
     */
    QJsonArray asJsonArray() const;

    /*!
     * \brief Replaces the records by those of \a jsonArray.
     *
     * \return whether everything was there: two objects with every member, and no empty date. An
     *         error is warned of and does not end the reading: objects are taken as far as they
     *         go, and other elements are left out. After a wrong number of elements there is no
     *         record at all.
     *
     * A date that does not begin with a digit is read in the older text form (Fri Mar 1 12:30:05
     * 2024). Each error warns, in the order of reading, and "Resetting drag indicator due to errors
     * on importing json data!" comes last; the records are nevertheless left as they are.
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
