muxcore_add_sources(
    HEADERS devicemainwindow.h datetimedialog.h loadsettingsdialog.h resetsettingsdialog.h
            statautorefreshdialog.h
    SOURCES devicemainwindow.cpp devicemainwindow.ui
            datetimedialog.cpp datetimedialog.ui
            loadsettingsdialog.cpp loadsettingsdialog.ui
            resetsettingsdialog.cpp resetsettingsdialog.ui
            statautorefreshdialog.cpp statautorefreshdialog.ui)
