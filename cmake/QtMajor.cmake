# The Qt major version everything builds against, and the names that keep the
# two builds installable side by side. Included by the library and by the
# separate bench/ and fuzz/ projects, so one cache variable rules them all.

set(MUXCORE_QT_MAJOR_VERSION 5 CACHE STRING "Qt major version to build against (5 or 6)")
set_property(CACHE MUXCORE_QT_MAJOR_VERSION PROPERTY STRINGS 5 6)
if(MUXCORE_QT_MAJOR_VERSION STREQUAL "5")
    set(MUXCORE_QT_MIN_VERSION 5.15)
    set(MUXCORE_NAME_SUFFIX "")
    set(MUXCORE_PACKAGE_SUFFIX "")
elseif(MUXCORE_QT_MAJOR_VERSION STREQUAL "6")
    set(MUXCORE_QT_MIN_VERSION 6.2)
    set(MUXCORE_NAME_SUFFIX "-qt6")
    set(MUXCORE_PACKAGE_SUFFIX "Qt6")
else()
    message(FATAL_ERROR "MUXCORE_QT_MAJOR_VERSION must be 5 or 6, not '${MUXCORE_QT_MAJOR_VERSION}'")
endif()

# Package prefix for find_package (Qt5 / Qt6); link against the versionless
# Qt:: targets, which both majors provide.
set(MUXCORE_QT Qt${MUXCORE_QT_MAJOR_VERSION})
# libmuxcore / libmuxcore-qt6, include/muxcore / include/muxcore-qt6, muxcore.pc / muxcore-qt6.pc
set(MUXCORE_FILE_NAME muxcore${MUXCORE_NAME_SUFFIX})
# find_package(MuxCore) / find_package(MuxCoreQt6); both export MuxCore:: targets.
set(MUXCORE_PACKAGE_NAME MuxCore${MUXCORE_PACKAGE_SUFFIX})
