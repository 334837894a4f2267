################################################################################
#
# misctools
#
################################################################################

MISCTOOLS_VERSION = 1.0.0
MISCTOOLS_SOURCE = misctools-$(MISCTOOLS_VERSION).tar.xz
# The directory that holds the archive that script/package made.
MISCTOOLS_SITE = $(MISCTOOLS_PKGDIR)
MISCTOOLS_SITE_METHOD = file
MISCTOOLS_INSTALL_STAGING = YES
MISCTOOLS_DEPENDENCIES = qt5base

# The platform functions are the device software's.
MISCTOOLS_CONF_OPTS = \
	-DBUILD_TESTING=OFF \
	-DMISCTOOLS_BUILD_TOOLS=OFF \
	-DMISCTOOLS_PLATFORM=external

$(eval $(cmake-package))
