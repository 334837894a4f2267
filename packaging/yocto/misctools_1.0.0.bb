SUMMARY = "Utilities for the application software of an embedded Linux device"
# The project comes without a license text: whoever builds an image answers for it.
LICENSE = "CLOSED"

# The archive that script/package makes, beside this recipe in misctools-1.0.0/ or files/.
SRC_URI = "file://misctools-${PV}.tar.xz"

DEPENDS = "qtbase"

inherit cmake_qt5

EXTRA_OECMAKE = " \
    -DBUILD_TESTING=OFF \
    -DMISCTOOLS_BUILD_TOOLS=OFF \
    -DMISCTOOLS_PLATFORM=external \
"
