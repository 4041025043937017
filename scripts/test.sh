#!/usr/bin/env bash
# Installs, builds and runs the whole test suite, on SQLite and on a private PostgreSQL
# server started here for the run (and stopped at the end). Run it as root or as a user
# allowed to use sudo; the server runs as the postgres user either way.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/comun.sh
bash scripts/setup.sh

pgbin=$(ls -d /usr/lib/postgresql/*/bin 2>/dev/null | sort -V | tail -n 1 || true)
if [ -n "$pgbin" ] && id postgres > /dev/null 2>&1; then
    dir=$(mktemp -d /tmp/asientos-pg.XXXXXX)
    # The server's folder; the tests connect through the socket folder inside, so it is
    # open to every user.
    chmod 755 "$dir"
    como_root chown postgres "$dir"
    como_postgres mkdir "$dir/sock"
    puerto=$((54000 + RANDOM % 1000))
    como_postgres "$pgbin/initdb" -D "$dir/data" -U postgres -A trust -E UTF8 --locale=C.UTF-8 --no-sync > /dev/null
    como_postgres "$pgbin/pg_ctl" -D "$dir/data" -l "$dir/log" -w -o \
        "-p $puerto -k $dir/sock -c listen_addresses= -c fsync=off -c synchronous_commit=off -c full_page_writes=off" start > /dev/null
    detener() {
        como_postgres "$pgbin/pg_ctl" -D "$dir/data" -m immediate stop > /dev/null 2>&1 || true
        como_postgres rm -rf "$dir" || true
    }
    trap detener EXIT
    "$pgbin/psql" -h "$dir/sock" -p "$puerto" -U postgres -q -c "CREATE DATABASE asientos_pruebas" > /dev/null
    export ASIENTOS_TEST_PG="postgresql://postgres@/asientos_pruebas?host=$dir/sock&port=$puerto"
    echo "PostgreSQL de pruebas: $ASIENTOS_TEST_PG"
else
    echo "Sin PostgreSQL: las pruebas corren solo sobre SQLite."
fi

como_usuario ctest --test-dir build --output-on-failure --timeout 300 -j2

# The suite again with the machine's clock on two other days, on SQLite only, each day taking
# every other test so that every test runs once more on another day. The tests fix the
# program's clock, so they pass whatever the date; code that read the system date instead of
# its clock sees another day here and fails.
mitad=1
for momento in '2028-02-29 23:59:30' '2025-02-28 12:00:00'; do
    if [ "$(faketime "$momento" date +%F)" != "${momento%% *}" ]; then
        echo "faketime no cambia la fecha de los programas" >&2
        exit 1
    fi
    echo "Pruebas con el reloj del sistema en $momento (solo SQLite)"
    como_usuario env -u ASIENTOS_TEST_PG faketime "$momento" \
        ctest --test-dir build --output-on-failure --timeout 300 -j2 -I "$mitad,,2" -E PostgreSQL
    mitad=2
done
