# Sourced by the Windows suites (run_suite, run_controls): the project's quiet Wine prefix, and
# QorvelOLE.dll with the simulated hosts registered in it as an installer would.
#   source windows/tests/wine_session.sh
#   wine_session ROOT                 WINEPREFIX and a quiet wine for this shell
#   install_server ROOT BUILD         the simulated hosts installed, any earlier registration
#                                     of the DLL undone (call register_server next)
#   register_server BUILD, unregister_server BUILD
# BUILD is a windows-x64 build directory.

winpath() { echo "Z:$1" | tr / '\\'; }

wine_session() {
  export WINEPREFIX WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml="
  WINEPREFIX=$("$1/tools/wine_prefix" "$1/build/wine")
}

server_dll() { echo "$1/windows/server/QorvelOLE.dll"; }

install_server() {
  "$1/windows/hosts/install_sim_hosts" "$WINEPREFIX" "$2" >/dev/null
  wineserver -k 2>/dev/null || true  # a host program left from an earlier run
  wine regsvr32 /u /s "$(winpath "$(server_dll "$2")")" || true  # an earlier run's registration
}

register_server() { wine regsvr32 /s "$(winpath "$(server_dll "$1")")"; }

unregister_server() {
  wineserver -k 2>/dev/null || true
  wine regsvr32 /u /s "$(winpath "$(server_dll "$1")")"
}
