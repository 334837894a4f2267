// Makes an identifier from a recorder's URL: the same one for the same URL, on every device.

#include <RecorderUrlHashHandling.h>

#include <cstdio>

int main()
{
    //! [identifier]
    const QByteArray hash = RecorderUrlHashHandling::createUrlHash("http://10.0.0.5/trend/1");
    const QString id = RecorderUrlHashHandling::buildUUIDFromByteArray(hash);
    std::printf("id %s\n", qPrintable(id));
    //! [identifier]

    // Nothing is put between the parts of a URL, so these have the same hash as the whole.
    const QByteArray ofParts =
        RecorderUrlHashHandling::createUrlHash("http://10.0.0.5", "/trend/", "1");
    std::printf("of its parts: %s\n", ofParts == hash ? "the same" : "another");

    // Only a hash of 16 bytes has an identifier; the text is null for any other length.
    const QString none = RecorderUrlHashHandling::buildUUIDFromByteArray("12345");
    std::printf("of 5 bytes: %s\n", none.isNull() ? "none" : "an identifier");
    return 0;
}
