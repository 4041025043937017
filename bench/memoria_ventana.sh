#!/usr/bin/env bash
# The program's memory with a view of every line of a two-year database on screen, as a user
# gets there: the window starts, Ctrl+B opens the search, the two years are typed and accepted.
# Prints the resident memory at start and once the grid is filled (VmRSS, from /proc).
#   bash bench/memoria_ventana.sh [BUILD] [DATABASE]
# Needs xvfb, openbox, xdotool and the sqlite3 shell; the database is written with
# BUILD/bench/generar_base when it does not exist.
set -euo pipefail
build=$(realpath "${1:-build}")
base=${2:-/tmp/asientos-dos-anios.sqlite}
for programa in xvfb-run openbox xdotool sqlite3; do
    command -v "$programa" > /dev/null || { echo "falta $programa (apt-get install xvfb openbox xdotool sqlite3)" >&2; exit 1; }
done
[ -f "$base" ] || "$build/bench/generar_base" "$base"
desde=$(sqlite3 "$base" "Select strftime('%d/%m/%Y', Min(AsiFechaAsiento)) From cceAsientos")
hasta=$(sqlite3 "$base" "Select strftime('%d/%m/%Y', Max(AsiFechaAsiento)) From cceAsientos")
lineas=$(sqlite3 "$base" "Select Count(*) From cceAsientoCuenta")
carpeta=$(mktemp -d)
trap 'rm -rf "$carpeta"' EXIT
cp "$base" "$carpeta/base.sqlite"

cat > "$carpeta/sesion.sh" <<FIN
openbox > /dev/null 2>&1 &
sleep 1
HOME="$carpeta" "$build/app/asientos" --db "$carpeta/base.sqlite" --settings "$carpeta/ajustes.ini" > /dev/null 2>&1 &
programa=\$!
ventana=
for _ in \$(seq 50); do
    ventana=\$(xdotool search --pid \$programa --onlyvisible 2> /dev/null | head -n 1) && [ -n "\$ventana" ] && break
    sleep 0.2
done
xdotool windowactivate --sync \$ventana
sleep 1
echo "al empezar:       \$(awk '/VmRSS/ {printf "%.1f MiB", \$2 / 1024}' /proc/\$programa/status)"
xdotool key ctrl+b
sleep 1
xdotool key Tab type --delay 20 "$desde"
xdotool key Tab type --delay 20 "$hasta"
xdotool key alt+a
# The grid is full once the memory stops growing.
antes=0
while :; do
    sleep 2
    ahora=\$(awk '/VmRSS/ {print \$2}' /proc/\$programa/status)
    [ "\$ahora" = "\$antes" ] && break
    antes=\$ahora
done
echo "con $lineas líneas: \$(awk '/VmRSS/ {printf "%.1f MiB", \$2 / 1024}' /proc/\$programa/status)"
kill \$programa
FIN
xvfb-run -a -s "-screen 0 1366x800x24" bash "$carpeta/sesion.sh"
