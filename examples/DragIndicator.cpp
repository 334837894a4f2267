// Keeps the lowest and the highest temperature, and saves them in a file between two runs.

#include <DragIndicator.h>

#include <QtCore/QFile>
#include <QtCore/QJsonDocument>

#include <cstdio>

int main()
{
    QFile file(QStringLiteral("peaks.json"));
    if (!file.open(QIODevice::ReadWrite)) {
        return 1;
    }
    DragIndicator temperature;
    if (!temperature.fromJsonArray(QJsonDocument::fromJson(file.readAll()).array())) {
        return 1;
    }

    //! [compute]
    bool isWorthSaving = false;
    for (const double value : {21.0, 18.5, 20.0}) {
        const bool hasChanged = temperature.compute(value); // a minimum or maximum has changed
        isWorthSaving = isWorthSaving || hasChanged;
        std::printf("%4.1f %s\n", value, hasChanged ? "changes" : "-");
    }
    std::printf("since the reset %.1f to %.1f\n",
                temperature.getMinValue(DragIndicator::ResettableInstance),
                temperature.getMaxValue(DragIndicator::ResettableInstance));
    std::printf("ever %.1f to %.1f\n", temperature.getMinValue(DragIndicator::PermanentInstance),
                temperature.getMaxValue(DragIndicator::PermanentInstance));
    //! [compute]

    if (isWorthSaving) {
        file.resize(0);
        file.seek(0);
        file.write(QJsonDocument(temperature.asJsonArray()).toJson());
    }

    // The user may reset one record; the other one keeps the range since the first value.
    temperature.reset();
    const bool hasValue = temperature.isInitialized(DragIndicator::ResettableInstance);
    std::printf("after a reset: %s\n", hasValue ? "a value" : "no value yet");
    return 0;
}
