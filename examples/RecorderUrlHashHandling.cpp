// Creates an identifier from a recorder's URL: the same one for the same URL, on every device.

#include <RecorderUrlHashHandling.h>

#include <cstdio>

int main()
{
    //! [identifier]
    const QByteArray hash = RecorderUrlHashHandling::createUrlHash("http://10.0.0.5/trend/1");
    const QString id = RecorderUrlHashHandling::buildUUIDFromByteArray(hash);
    std::printf("id %s\n", qPrintable(id));
    //! [identifier]

    // Parts of a URL are concatenated without separators, so they have the hash of the entire URL.
    const QByteArray ofParts =
        RecorderUrlHashHandling::createUrlHash("http://10.0.0.5", "/trend/", "1");
    std::printf("of its parts: %s\n", ofParts == hash ? "the same" : "another");

    // Only a hash of 16 bytes has an identifier; for any other length, the string is null.
    const QString none = RecorderUrlHashHandling::buildUUIDFromByteArray("12345");
    std::printf("of 5 bytes: %s\n", none.isNull() ? "none" : "an identifier");
    return 0;
}
