################################################################################
#
# misctools
#
################################################################################

MISCTOOLS_VERSION = 1.0.0
MISCTOOLS_SOURCE = misctools-$(MISCTOOLS_VERSION).tar.xz
# The directory with the source archive from script/package.
MISCTOOLS_SITE = $(MISCTOOLS_PKGDIR)
MISCTOOLS_SITE_METHOD = file
MISCTOOLS_INSTALL_STAGING = YES
MISCTOOLS_DEPENDENCIES = qt5base

# The device software supplies the platform functions.
MISCTOOLS_CONF_OPTS = \
	-DBUILD_TESTING=OFF \
	-DMISCTOOLS_BUILD_TOOLS=OFF \
	-DMISCTOOLS_PLATFORM=external

$(eval $(cmake-package))
