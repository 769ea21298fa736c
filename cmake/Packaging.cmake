# The Debian package, made by CPack's DEB generator from the install rules above
# (scripts/package-deb runs it). Library dependencies come from dpkg-shlibdeps; what the
# program loads at run time without linking it is named here:
#   libqt6sql6-sqlite  the QSQLITE driver that opens tb2.mdb (a plugin)
#   libcurl4           FTP, web pages and mail; opened on the first transfer (CurlOnDemand)
#   xdg-utils          xdg-open, which shows listings, pages and the guide in the browser
# The xcb and offscreen platform plugins and the GIF and JPEG readers for the media are
# plugins too, but they ship in libqt6gui6, which shlibdeps names for the linked library.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME tallybid)
set(CPACK_PACKAGE_VENDOR "The Tallybid developers")
set(CPACK_PACKAGE_CONTACT "The Tallybid developers <maintainers@tallybid.org>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "keep auction items and sell them online")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION misc)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libqt6sql6-sqlite, libcurl4, xdg-utils")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "ca-certificates")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "qt6-wayland")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
string(CONCAT CPACK_PACKAGE_DESCRIPTION
    "Tallybid is a desktop program for people who sell goods through online auctions.\n"
    "It keeps one record per item in a local database, writes each item's advertisement\n"
    "as HTML from a theme, uploads the pictures by FTP, fills the auction site's start\n"
    "form, reads the site's pages back and sends the standard notes to the buyer by mail.")
include(CPack)
