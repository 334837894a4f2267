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

    for (const double value : {21.0, 18.5, 20.0}) {
        // True where an extreme moved, so that saving is worth it.
        std::printf("%4.1f %s\n", value, temperature.compute(value) ? "changes" : "-");
    }
    std::printf("since the reset %.1f to %.1f\n",
                temperature.getMinValue(DragIndicator::ResettableInstance),
                temperature.getMaxValue(DragIndicator::ResettableInstance));
    std::printf("ever %.1f to %.1f\n", temperature.getMinValue(DragIndicator::PermanentInstance),
                temperature.getMaxValue(DragIndicator::PermanentInstance));

    file.resize(0);
    file.seek(0);
    file.write(QJsonDocument(temperature.asJsonArray()).toJson());

    temperature.reset();
    const bool hasValue = temperature.isInitialized(DragIndicator::ResettableInstance);
    std::printf("after a reset: %s\n", hasValue ? "a value" : "no value yet");
    return 0;
}
