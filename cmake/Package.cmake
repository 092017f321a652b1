# SPDX-License-Identifier: GPL-3.0-or-later
# The Debian package. What the programs link is found in them by dpkg-shlibdeps; what Qt only loads
# while they run is looked up here, by the package that the file of each plug-in comes from.
function(m47_plugin_packages result)
    get_target_property(core Qt6::Core LOCATION)
    get_filename_component(libraries ${core} DIRECTORY)
    foreach(plugin sqldrivers/libqsqlite iconengines/libqsvgicon imageformats/libqsvg)
        execute_process(COMMAND dpkg-query -S ${libraries}/qt6/plugins/${plugin}.so
            OUTPUT_VARIABLE owner ERROR_QUIET)
        if(owner MATCHES "^([^:, ]+)")
            list(APPEND packages ${CMAKE_MATCH_1})
        else()
            message(STATUS "No Debian package has Qt's plug-in ${plugin}: cpack will lack it")
        endif()
    endforeach()
    list(REMOVE_DUPLICATES packages)
    list(JOIN packages ", " packages)
    set(${result} "${packages}" PARENT_SCOPE)
endfunction()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME ${PROJECT_NAME})
set(CPACK_PACKAGE_CONTACT "${M47_MAINTAINER}")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "remote control for the M47 TV signal level meter")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE
    GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION electronics)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
m47_plugin_packages(CPACK_DEBIAN_PACKAGE_DEPENDS)
# A session without an X server shows windows through the one; the other has Qt's own words in
# Italian.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "qt6-translations-l10n, qt6-wayland")
# The transponders of the satellites, to import into a plan.
set(CPACK_DEBIAN_PACKAGE_SUGGESTS dtv-scan-tables)
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
"The M47 is a portable TV signal level meter for satellite and terrestrial
reception with an RS232 line. This program tunes it, measures level, channel
power, BER and MER against alarm limits, keeps every measurement on a page and
in a log, fetches what the meter's own logger has recorded, and exchanges plans
of programs and lists of satellites with it. Plans can be measured at fixed
times with nobody at the screen, also by m47-probe, which needs no windows.
.
A simulated meter, m47-meter, comes along to try everything without a device.")
include(CPack)
