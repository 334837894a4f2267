// A plugin that uses the library: it leaves a path of the library in Qt's cache of settings files
// and a type of the library registered with Qt.

#include <ErrorContainer.h>
#include <RaucSystemConfigIniManager.h>

#include <QtCore/QMetaType>

extern "C" Q_DECL_EXPORT int useLibrary()
{
    RaucSystemConfigIniManager().getDeviceIndex();
    ErrorContainer::registerTypes();
    return QMetaType::type("ErrorContainer");
}
