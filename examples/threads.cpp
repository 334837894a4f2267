#include <IniFileManager.h>

#include <cstdio>
#include <thread>
#include <vector>

int main()
{
    IniFileManager settings(QStringLiteral("shared.ini"), "UTF-8");
    std::vector<std::thread> threads;
    for (int number = 0; number < 4; ++number) {
        threads.emplace_back([&settings, number] {
            const QString group = QStringLiteral("Thread%1").arg(number);
            settings.setValue(group, QStringLiteral("Number"), number);
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    std::printf("%d groups: %s\n", settings.getCount(),
                qPrintable(settings.getGroups().join(QLatin1Char(' '))));
    return 0;
}
