SUMMARY = "Utilities for the application software of an embedded Linux device"
# No license has been chosen yet: all rights are reserved.
LICENSE = "CLOSED"

# The source archive from script/package, in misctools-1.0.0/ or files/ next to this recipe.
SRC_URI = "file://misctools-${PV}.tar.xz"

DEPENDS = "qtbase"

inherit cmake_qt5

EXTRA_OECMAKE = " \
    -DBUILD_TESTING=OFF \
    -DMISCTOOLS_BUILD_TOOLS=OFF \
    -DMISCTOOLS_PLATFORM=external \
"
