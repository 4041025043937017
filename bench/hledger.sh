#!/usr/bin/env bash
# The command-line export against hledger, the plain-text accounting tool a user might pick
# instead, on the same entries.
#
#   bench/hledger.sh BASE.sqlite [AAAA-MM] [VECES]
#
# BASE.sqlite is a database written by `build/bench/generar_base`. The script writes its
# entries as an hledger journal (date, legend, each line's account and amount in the
# accounting currency, debit positive), checks that `hledger print` accepts it, then times,
# VECES runs each (7 unless told), side by side:
#   a) a month (the one in the middle of the entries unless told): `asientos --exportar x.csv
#      --mes M` against `hledger print -O csv -b M-01 -e <next month>-01`;
#   b) every entry: `asientos --exportar x.csv --desde .. --hasta ..` against `hledger print -O csv`.
# The two take turns run by run. It prints the median and the spread of each, wall-clock and
# CPU (user + system), the ratios, and the peak memory of each run (/usr/bin/time -v). The
# program is build/app/asientos unless ASIENTOS names another.
set -euo pipefail

base=${1:?"uso: $0 BASE.sqlite [AAAA-MM] [VECES]"}
aqui=$(cd "$(dirname "$0")" && pwd)
programa=${ASIENTOS:-$aqui/../build/app/asientos}
veces=${3:-7}

for herramienta in sqlite3 hledger "$programa"; do
    command -v "$herramienta" >/dev/null || { echo "falta $herramienta" >&2; exit 1; }
done
if [[ ! -x /usr/bin/time ]]; then
    echo "falta /usr/bin/time para medir la memoria: apt-get install time" >&2
    exit 1
fi

trabajo=$(mktemp -d)
trap 'rm -rf "$trabajo"' EXIT
diario=$trabajo/asientos.journal

# Amounts go in cents so that they add up exactly; an entry whose lines, each rounded to the
# cent, do not add up to zero gets a last line with the difference, since hledger refuses a
# transaction that does not balance. Annulled entries (state 9) are left out, as the export
# leaves them out.
sqlite3 -batch -noheader -list "$base" >"$diario" <<'SQL'
WITH l AS (
    SELECT a.AsiID AS id, a.AsiFechaAsiento AS f, coalesce(a.AsiLeyenda, '') AS ley,
           c.CueCodigo || ' ' || c.CueNombre AS cuenta, ac.ACuOrden AS o,
           CAST(round(ac.ACuImporteMC * 100) AS INTEGER) * (CASE WHEN ac.ACuDebe IS NOT NULL THEN 1 ELSE -1 END) AS cent
    FROM cceAsientos a
    JOIN cceAsientoCuenta ac ON ac.ACuIDAsiento = a.AsiID
    JOIN cceCuentas c ON c.CueID = ac.ACuCuenta
    WHERE a.AsiEmpresa = 1 AND a.AsiEstado <> 9
)
SELECT t FROM (
    SELECT f, id, 0 AS k, 0 AS o, f || ' ' || replace(replace(ley, ';', ','), '|', '/') AS t FROM l GROUP BY id
    UNION ALL
    SELECT f, id, 1, o, '    ' || replace(replace(cuenta, '  ', ' '), ';', ',') || '  ' || printf('%.2f', cent / 100.0) FROM l
    UNION ALL
    SELECT f, id, 2, 0, '    redondeo  ' || printf('%.2f', -sum(cent) / 100.0) FROM l GROUP BY id HAVING sum(cent) <> 0
    UNION ALL
    SELECT f, id, 3, 0, '' FROM l GROUP BY id
) ORDER BY f, id, k, o;
SQL

transacciones=$(hledger -f "$diario" print 2>"$trabajo/errores" | grep -c '^[0-9]') || {
    echo "hledger no acepta el diario:" >&2
    head -20 "$trabajo/errores" >&2
    exit 1
}
desde=$(sqlite3 "$base" "SELECT min(AsiFechaAsiento) FROM cceAsientos WHERE AsiEmpresa = 1 AND AsiEstado <> 9")
hasta=$(sqlite3 "$base" "SELECT max(AsiFechaAsiento) FROM cceAsientos WHERE AsiEmpresa = 1 AND AsiEstado <> 9")
mes=${2:-$(sqlite3 "$base" "SELECT substr(AsiFechaAsiento, 1, 7) FROM cceAsientos WHERE AsiEmpresa = 1 AND AsiEstado <> 9
                             ORDER BY AsiFechaAsiento LIMIT 1 OFFSET (SELECT count(*) / 2 FROM cceAsientos)")}
siguiente=$(date -d "$mes-01 +1 month" +%Y-%m-01)
echo "diario: $transacciones transacciones, $(wc -l <"$diario") líneas; mes: $mes; $veces corridas de cada uno"

# Wall and CPU (user + system) milliseconds of one run of a command, its output thrown away.
una_vez() {
    local TIMEFORMAT='%3R %3U %3S'
    { time "$@" >/dev/null 2>&1; } 2>&1 | awk '{ printf "%d %d\n", $1 * 1000, ($2 + $3) * 1000 }'
}
# The median, the smallest and the largest of a column of milliseconds, in seconds.
resumen() {
    cut -d' ' -f"$1" | sort -n | awk '{ v[NR] = $1 } END {
        m = NR % 2 ? v[(NR + 1) / 2] : (v[NR / 2] + v[NR / 2 + 1]) / 2
        printf "%.3f %.3f %.3f\n", m / 1e3, v[1] / 1e3, v[NR] / 1e3 }'
}
# Peak resident memory of one run, in MiB.
memoria() {
    /usr/bin/time -v "$@" 2>&1 >/dev/null | awk -F: '/Maximum resident set size/ { printf "%.1f", $2 / 1024 }'
}

comparar() {
    local nombre=$1 n
    shift
    local -a nuestro hledger
    n=$1
    shift
    nuestro=("${@:1:n}")
    hledger=("${@:n+1}")
    # Both answer the same entries: our count from the export's last line, hledger's from
    # its transaction numbers (the first column).
    local cuantos suyos
    cuantos=$("${nuestro[@]}" 2>&1 >/dev/null | sed -n 's/^\([0-9]*\) asientos exportados.*/\1/p') ||
        { echo "falló: ${nuestro[*]}" >&2; exit 1; }
    suyos=$("${hledger[@]}" | tail -n +2 | cut -d, -f1 | sort -u | wc -l)
    # The two take turns, so that the machine's load falls on both alike.
    local i a b
    : >"$trabajo/nuestro" && : >"$trabajo/hledger"
    for ((i = 0; i < veces; i++)); do
        una_vez "${nuestro[@]}" >>"$trabajo/nuestro"
        una_vez "${hledger[@]}" >>"$trabajo/hledger"
    done
    printf '%s: %s asientos, hledger %s transacciones\n' "$nombre" "$cuantos" "$suyos"
    local na ha col etiqueta
    for col in 1 2; do
        etiqueta=$([[ $col == 1 ]] && echo 'de reloj:' || echo 'de CPU:  ')
        read -r a amin amax < <(resumen $col <"$trabajo/nuestro")
        read -r b bmin bmax < <(resumen $col <"$trabajo/hledger")
        printf '  %s asientos %.3f s (%.3f–%.3f), hledger %.3f s (%.3f–%.3f): veces_hledger %s\n' "$etiqueta" \
            "$a" "$amin" "$amax" "$b" "$bmin" "$bmax" "$(awk -v a="$a" -v b="$b" 'BEGIN { printf "%.1f", b / a }')"
    done
    na=$(memoria "${nuestro[@]}")
    ha=$(memoria "${hledger[@]}")
    printf '  memoria máxima: asientos %s MiB, hledger %s MiB\n' "$na" "$ha"
}

export QT_QPA_PLATFORM=offscreen
csv=$trabajo/x.csv
nuestro=("$programa" --db "$base" --exportar "$csv" --mes "$mes")
comparar "a) un mes ($mes)" ${#nuestro[@]} "${nuestro[@]}" \
    hledger -f "$diario" print -O csv -b "$mes-01" -e "$siguiente"
nuestro=("$programa" --db "$base" --exportar "$csv" --desde "$desde" --hasta "$hasta")
comparar "b) todo ($desde a $hasta)" ${#nuestro[@]} "${nuestro[@]}" \
    hledger -f "$diario" print -O csv
