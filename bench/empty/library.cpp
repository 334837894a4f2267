#include <QtCore/QtGlobal>

// A library must have something in it.
extern "C" Q_DECL_EXPORT int benchEmptyLibrary()
{
    return 0;
}
