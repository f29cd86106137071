# The layers of src/ in machine form: which folders each folder may include, and which Qt
# modules. The build links each library along these lines, and the layering check
# (CheckLayers.cmake, run by `make test`) reads every #include of src/ against them, since a
# shared include root would otherwise let any file include anything.
#
#   ports      src/platform/*.h: the port interfaces
#   platform   src/platform/<folder>/: the adapters (linux/, macos/, and those shared by both)
#   common ... the subsystems: values, parsers and monitors, QtCore only
#   daemon     the background daemon's samplers and loop; agent: installing it as the user's agent
#   compose    the one wiring of the monitors from the ports, shared by every entry point
#   menubar    the status item's presentation: its picture and texts (QtGui, no widgets)
#   ui         the status item and the dashboard (Qt Widgets)
#   app        the entry points: the tray app and the reports, on the real adapters
#
# A folder may always include its own files. Later subsystems add a line here.

set(ZELVAR_LAYERS ports platform common config alerts disk process network power audio focus daemon agent compose menubar ui app)

set(ZELVAR_LAYER_ports_DEPENDS "")
set(ZELVAR_LAYER_platform_DEPENDS ports)
set(ZELVAR_LAYER_common_DEPENDS ports)
set(ZELVAR_LAYER_config_DEPENDS common ports)
set(ZELVAR_LAYER_alerts_DEPENDS config common ports)
set(ZELVAR_LAYER_disk_DEPENDS common ports)
set(ZELVAR_LAYER_process_DEPENDS alerts config disk common ports)
set(ZELVAR_LAYER_network_DEPENDS common ports)
set(ZELVAR_LAYER_power_DEPENDS common ports)
set(ZELVAR_LAYER_audio_DEPENDS common ports)
set(ZELVAR_LAYER_focus_DEPENDS common ports)
set(ZELVAR_LAYER_daemon_DEPENDS power network disk common ports)
set(ZELVAR_LAYER_agent_DEPENDS daemon common ports)
set(ZELVAR_LAYER_compose_DEPENDS audio focus power network process disk alerts config common ports)
set(ZELVAR_LAYER_menubar_DEPENDS network common ports)
set(ZELVAR_LAYER_ui_DEPENDS menubar audio focus power network process disk alerts config common ports)
set(ZELVAR_LAYER_app_DEPENDS ui agent daemon compose menubar audio focus power network process disk alerts config common ports platform)

set(ZELVAR_LAYER_ports_QT Core)
set(ZELVAR_LAYER_platform_QT Core Gui DBus)
set(ZELVAR_LAYER_common_QT Core)
set(ZELVAR_LAYER_config_QT Core)
set(ZELVAR_LAYER_alerts_QT Core)
set(ZELVAR_LAYER_disk_QT Core)
set(ZELVAR_LAYER_process_QT Core)
set(ZELVAR_LAYER_network_QT Core)
set(ZELVAR_LAYER_power_QT Core)
set(ZELVAR_LAYER_audio_QT Core)
set(ZELVAR_LAYER_focus_QT Core)
set(ZELVAR_LAYER_daemon_QT Core)
set(ZELVAR_LAYER_agent_QT Core)
set(ZELVAR_LAYER_compose_QT Core)
set(ZELVAR_LAYER_menubar_QT Core Gui)
set(ZELVAR_LAYER_ui_QT Core Gui Widgets)
set(ZELVAR_LAYER_app_QT Core Gui Widgets)

# Headers of operating-system services that only the adapters may include.
set(ZELVAR_OS_SERVICE_HEADERS
    canberra.h systemd/ xcb/ dbus/ libudev.h pulse/ alsa/ X11/
    AppKit/ Cocoa/ Foundation/ IOKit/ CoreAudio/ CoreFoundation/ UserNotifications/
    AVFoundation/ libproc.h mach/ sys/sysctl.h
)
